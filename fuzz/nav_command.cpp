// Fuzz harness: the navigation command reading and the reader of its target on any 8 bytes,
// and the navigation pack view on any record (a PCI length from the data may put the DSI block
// anywhere).
#include "ifo/nav_command.h"

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/scripted_ui.h"
#include "state/context.h"
#include "stream/nav_pack.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarvex;
  ByteView input(data, size);

  // Every 8-byte window of the input as a command (bounded: at most 64 of them).
  for (std::size_t off = 0; off < size && off < 64 * 8; off += 8) {
    std::string text = DescribeNavCommand(input.sub(off, 8));
    if (text.empty()) __builtin_trap();  // every command has a reading
    NavTarget target = ReadNavTarget(input.sub(off, 8));
    if (target.button > 63 || target.set_button > 63) __builtin_trap();  // six bits
  }

  // The input as one record, as the details view reads it: exactly 2048 bytes, the rest zero.
  std::vector<std::uint8_t> record(2048, 0);
  for (std::size_t i = 0; i < size && i < record.size(); ++i) record[i] = data[i];
  ScriptedUi ui;
  AppContext ctx(ui);
  ShowNavPackDetails(ctx, record);
  if (ctx.report.size() != 337) __builtin_trap();  // the view's line count never varies
  return 0;
}
