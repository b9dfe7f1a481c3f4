// Feeds arbitrary bytes to the program-stream record decoders: classification, the listing in
// both modes, the hex view and the details of every record, the coding headers verify reads
// from a record, and the paging commands.
//
// Input: one control byte, then the file's bytes (at most 4 records and a partial one).
// Control bits: 0 basic listing, 1 open as M2P instead of VOB, 2 stamp every record with a
// navigation pack's pack, system header and PCI start code (so the PCI length and everything
// after it come from the input).
// Configure with -DCMAKE_BUILD_TYPE=RelWithDebInfo for a useful number of runs per second.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/scripted_ui.h"
#include "state/context.h"
#include "stream/coding_headers.h"
#include "stream/details.h"
#include "stream/hex_view.h"
#include "stream/listing.h"
#include "stream/sector_type.h"

namespace {

constexpr std::size_t kMaxInput = 4 * 2048 + 2047;

void StampNavigationPack(std::vector<std::uint8_t>& bytes) {
  static const std::uint8_t kHeader[] = {0x00, 0x00, 0x01, 0xBA, 0x44, 0x00, 0x04,
                                         0x00, 0x04, 0x01, 0x01, 0x89, 0xC3, 0xF8,
                                         0x00, 0x00, 0x01, 0xBB, 0x00, 0x12};
  static const std::uint8_t kPci[] = {0x00, 0x00, 0x01, 0xBF};
  for (std::size_t at = 0; at + 2048 <= bytes.size(); at += 2048) {
    std::copy(std::begin(kHeader), std::end(kHeader), bytes.begin() + at);
    std::copy(std::begin(kPci), std::end(kPci), bytes.begin() + at + 38);
    bytes[at + 44] &= 1;  // sub-stream 0 or 1
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarvex;
  if (size == 0) return 0;
  const std::uint8_t control = data[0];
  std::vector<std::uint8_t> bytes(data + 1, data + std::min(size, kMaxInput + 1));
  if (control & 4) StampNavigationPack(bytes);

  int fd = memfd_create("records", 0);
  if (fd < 0) return 0;
  if (!bytes.empty() &&
      write(fd, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) {
    close(fd);
    return 0;
  }

  ScriptedUi ui;
  AppContext ctx(ui);
  ctx.open.file_handle = File::OpenRead("/proc/self/fd/" + std::to_string(fd));
  close(fd);
  ctx.open.file_type = (control & 2) ? kFileM2p : kFileVob;
  ctx.open.file_path = "records.vob";
  ctx.open.record_count = static_cast<std::uint32_t>(bytes.size() >> 11);
  ctx.stream.listing_mode = (control & 1) ? 0 : 1;

  const std::uint32_t records = ctx.open.record_count + 1;  // the partial one too
  for (std::uint32_t r = 0; r < records; ++r) {
    std::size_t at = std::size_t{r} * 2048;
    ByteView record(bytes.data() + std::min(at, bytes.size()),
                    at < bytes.size() ? std::min<std::size_t>(2048, bytes.size() - at) : 0);
    GetSectorType(record, ctx.stream.stream_number);
    FindStreamCoding(record);
  }
  ListPage(ctx, 0, records);
  for (std::uint32_t r = 0; r < records; ++r) {
    ctx.open.page_end = r;
    ShowRecordHex(ctx, false);
    ctx.open.page_end = r;
    ShowRecordDetails(ctx);
  }
  // Paging from the first page, and the HEX toggle on a listed line.
  ctx.open.page_end = 16;
  ScrollLineDown(ctx, 1);
  ScrollPageDown(ctx, 1);
  ScrollLineUp(ctx, 1);
  ScrollThumbReleased(ctx, 1);
  ScrollEnded(ctx);
  if (ctx.report.Select(0)) {
    SelectRecordForHex(ctx);
    SelectRecordForHex(ctx);
  }
  return 0;
}
