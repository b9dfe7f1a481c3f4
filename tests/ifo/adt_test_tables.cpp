#include "ifo/adt_test_tables.h"

#include "platform/bytes.h"

namespace tarvex::test {

std::vector<std::uint8_t> MakeCAdt(std::uint16_t vob_ns, const std::vector<CellEntry>& cells,
                                   std::int64_t end_address) {
  std::vector<std::uint8_t> table;
  ByteAppender a(table);
  a.be16(vob_ns);
  a.be16(0);
  a.be32(end_address >= 0 ? static_cast<std::uint32_t>(end_address)
                          : static_cast<std::uint32_t>(8 + 12 * cells.size() - 1));
  for (const CellEntry& c : cells) {
    a.be16(c.vob);
    a.u8(c.cell);
    a.u8(0);
    a.be32(c.first_sector);
    a.be32(c.last_sector);
  }
  return table;
}

std::vector<std::uint8_t> MakeVobuAdmap(const std::vector<std::uint32_t>& sectors,
                                        std::int64_t end_address) {
  std::vector<std::uint8_t> table;
  ByteAppender a(table);
  a.be32(end_address >= 0 ? static_cast<std::uint32_t>(end_address)
                          : static_cast<std::uint32_t>(4 * sectors.size() + 3));
  for (std::uint32_t s : sectors) a.be32(s);
  return table;
}

}  // namespace tarvex::test
