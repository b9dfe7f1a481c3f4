#include "stream/subpicture_unit.h"

#include <array>

#include "platform/bytes.h"
#include "platform/format.h"

namespace tarvex {

namespace {

// Display control command codes.
constexpr std::uint8_t kForcedStart = 0x00;
constexpr std::uint8_t kStartDisplay = 0x01;
constexpr std::uint8_t kStopDisplay = 0x02;
constexpr std::uint8_t kSetColor = 0x03;
constexpr std::uint8_t kSetContrast = 0x04;
constexpr std::uint8_t kSetArea = 0x05;
constexpr std::uint8_t kSetAddress = 0x06;
constexpr std::uint8_t kChangeColorContrast = 0x07;
constexpr std::uint8_t kEnd = 0xFF;

// Prints the command at i and returns how many parameter bytes the index steps over.
std::size_t DecodeCommand(AppContext& ctx, ByteView seq, std::size_t i) {
  auto b = [&](std::size_t k) { return seq.u8(i + k); };
  switch (seq.u8(i)) {
    case kForcedStart:
      ctx.AddReportLine("Forcedly start display of this sub-picture");
      return 0;
    case kStartDisplay:
      ctx.AddReportLine("Set display start timing of pixel data.");
      return 0;
    case kStopDisplay:
      ctx.AddReportLine("Set display stop timing of pixel data.");
      return 0;
    case kSetColor:
      ctx.AddReportLine(Format("Set color code of pixel data to: %02x%02x", {b(1), b(2)}));
      return 2;
    case kSetContrast:
      ctx.AddReportLine(Format("Set pixel mix ratio to: %02x%02x", {b(1), b(2)}));
      return 2;
    case kSetArea:
      ctx.AddReportLine(Format("Set display area to: %02x%02x%02x%02x%02x%02x",
                               {b(1), b(2), b(3), b(4), b(5), b(6)}));
      return 6;
    case kSetAddress:
      // Four parameter bytes are printed, but the index steps over only two of them.
      ctx.AddReportLine(
          Format("Set display address to: %02x%02x%02x%02x", {b(1), b(2), b(3), b(4)}));
      return 2;
    case kChangeColorContrast:
      ctx.AddReportLine("Change color and contrast to: decoding break");
      return 0;
    default:
      return 0;
  }
}

}  // namespace

void DecodeSubpictureUnit(AppContext& ctx, std::uint32_t record) {
  constexpr std::size_t kSize = RECORD_SIZE;
  std::array<std::uint8_t, kSize> buf{};
  ByteView view(buf.data(), buf.size());
  File& file = ctx.open.file_handle;

  file.Seek(static_cast<std::int64_t>(record) << 11);
  ctx.ClearReportList();
  file.Read(buf.data(), buf.size());
  ctx.AddReportLine(Format("Size of sub-picture unit: %d", {view.be16(0)}));
  std::uint16_t table_offset = view.be16(2);
  ctx.AddReportLine(Format("Offset to Display Control Sequence Table: %d", {table_offset}));

  // The table offset is taken from the start of the file, not of the unit. A short read
  // leaves the earlier bytes behind the bytes it got.
  file.Seek(table_offset);
  file.Read(buf.data(), buf.size());
  ctx.AddReportLine(Format("Display Control Command Time: %d", {view.be16(0)}));
  ctx.AddReportLine(Format("Start address of next command table: %d", {view.be16(2)}));

  std::size_t i = 4;
  for (;;) {
    if (view.u8(i) == kEnd) break;
    i += DecodeCommand(ctx, view, i);
    // Also stops after a command whose last stepped-over parameter byte is 0x07.
    if (view.u8(i) == kChangeColorContrast) break;
    ++i;
    if (i >= kSize) break;
  }
}

}  // namespace tarvex
