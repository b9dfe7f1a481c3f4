#include "stream/hex_view.h"

#include <array>
#include <string_view>

#include "platform/format.h"

namespace tarvex {

std::int64_t RecordFileOffset(const AppContext& ctx, std::uint32_t record) {
  return ctx.open.file_type == kFileVob ? static_cast<std::int64_t>(record) << 11 : 0;
}

void ShowRecordHex(AppContext& ctx, bool append) {
  std::array<std::uint8_t, RECORD_SIZE> buf{};
  std::uint32_t record = ctx.open.page_end;
  std::int64_t address = RecordFileOffset(ctx, record);
  ctx.open.file_handle.Seek(address);
  ctx.open.file_handle.Read(buf.data(), buf.size());
  if (!append) ctx.ClearReportList();
  ctx.AddReportLine(Format("Hex display of record %ld at file address %ld", {record, address}));
  ctx.AddReportLine(" ");
  // Each row is "%04d -> " and "%02x " per byte, the whole text then upper-cased; the digits
  // are written here directly in upper case, which gives the same text.
  static constexpr char kHexDigits[] = "0123456789ABCDEF";
  constexpr std::size_t kPrefix = 8;  // "dddd -> "
  std::array<char, kPrefix + 16 * 3> row_text{};
  for (std::uint32_t row = 0; row < RECORD_SIZE / 16; ++row) {
    const std::uint32_t offset = row * 16;  // at most 2032: always four digits
    row_text[0] = static_cast<char>('0' + offset / 1000);
    row_text[1] = static_cast<char>('0' + offset / 100 % 10);
    row_text[2] = static_cast<char>('0' + offset / 10 % 10);
    row_text[3] = static_cast<char>('0' + offset % 10);
    row_text[4] = ' ';
    row_text[5] = '-';
    row_text[6] = '>';
    row_text[7] = ' ';
    for (std::uint32_t i = 0; i < 16; ++i) {
      const std::uint8_t byte = buf[offset + i];
      row_text[kPrefix + i * 3] = kHexDigits[byte >> 4];
      row_text[kPrefix + i * 3 + 1] = kHexDigits[byte & 15];
      row_text[kPrefix + i * 3 + 2] = ' ';
    }
    ctx.AddReportLine(std::string_view(row_text.data(), row_text.size()));
  }
}

void ShowErrorDump(AppContext& ctx, std::string_view first_line, std::int64_t position_after_read,
                   std::int32_t sector_type) {
  // File positions are 64-bit: the sector number stays right beyond 2 GB even though the
  // offset prints as its low 32 bits.
  std::int64_t offset = position_after_read - RECORD_SIZE;
  std::int64_t sector = offset / static_cast<std::int64_t>(RECORD_SIZE);
  ctx.AddReportLine(first_line);
  ctx.AddReportLine(Format("Error at: offset %d sector number %d", {offset, sector}));
  ctx.AddReportLine(
      Format("Sector type found by get_sector_type: %02x %d", {sector_type, sector_type}));
  ctx.AddReportLine("Sector data:");
  ctx.open.page_end = static_cast<std::uint32_t>(sector);
  ShowRecordHex(ctx, true);
}

}  // namespace tarvex
