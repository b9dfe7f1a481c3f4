#include "ifo/opened_table.h"

#include "ifo/source.h"
#include "ifo/table.h"
#include "platform/bytes.h"

namespace tarvex {

namespace {

// The open step without its lines: forgets any earlier table, then (unless start_sector is 0)
// reads the header and keeps it and the body position.
void LocateCountedTable(File& ifo, std::uint32_t start_sector, OpenedTable& table) {
  table = OpenedTable{};
  if (start_sector == 0) return;
  std::int64_t pos = static_cast<std::int64_t>(start_sector) * kSectorSize;
  std::vector<std::uint8_t> bytes = ReadFileBlock(ifo, pos, 8);
  ByteView header(bytes);
  table.file = &ifo;
  table.body_pos = pos + 8;
  table.count = header.be16(0);
  table.end_address = header.be32(4);
}

}  // namespace

std::uint32_t OpenCountedTable(AppContext& ctx, File& ifo, std::uint32_t start_sector,
                               const TableNames& names, OpenedTable& table) {
  LocateCountedTable(ifo, start_sector, table);
  if (start_sector == 0) {
    AddAbsenceLine(ctx, names.name, names.absent);
  } else {
    AddHeadingLine(ctx, names.name, names.heading);
  }
  return table.end_address;
}

std::uint32_t OpenCountedTable(AppContext& ctx, File& ifo, std::uint32_t start_sector,
                               const TableLines& lines, OpenedTable& table) {
  LocateCountedTable(ifo, start_sector, table);
  ctx.AddReportLine(start_sector == 0 ? lines.absent : lines.heading);
  return table.end_address;
}

std::vector<std::uint8_t> ReadTableBody(const OpenedTable& table, std::size_t n) {
  if (table.file == nullptr) return std::vector<std::uint8_t>(n, 0);
  return ReadFileBlock(*table.file, table.body_pos, n);
}

std::uint64_t BodyBytesInFile(const OpenedTable& table) {
  if (table.file == nullptr) return 0;
  std::int64_t rest = table.file->Length() - table.body_pos;
  return rest > 0 ? static_cast<std::uint64_t>(rest) : 0;
}

std::uint32_t ItemsInFile(const OpenedTable& table, std::uint32_t item_bytes) {
  if (item_bytes == 0) return 0;
  std::uint64_t items = (BodyBytesInFile(table) + item_bytes - 1) / item_bytes;
  return items > UINT32_MAX ? UINT32_MAX : static_cast<std::uint32_t>(items);
}

ByteView BodyAt(ByteView body, std::uint32_t table_offset) {
  constexpr std::uint32_t kHeaderBytes = 8;
  return table_offset >= kHeaderBytes ? body.sub(table_offset - kHeaderBytes) : ByteView();
}

void AppendCountedHeader(ByteAppender& a, std::uint32_t count, std::uint32_t end_address) {
  a.be16(count);
  a.be16(0);
  a.be32(end_address);
}

}  // namespace tarvex
