// Builders of cell address tables and VOBU address maps, for the address table tests.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tarvex::test {

struct CellEntry {
  std::uint16_t vob;
  std::uint8_t cell;
  std::uint32_t first_sector;
  std::uint32_t last_sector;
};

// Header (VOB count, 0, end address 8 + 12n - 1 unless given) and the cells.
std::vector<std::uint8_t> MakeCAdt(std::uint16_t vob_ns, const std::vector<CellEntry>& cells,
                                   std::int64_t end_address = -1);
// End address 4n + 3 (unless given) and the start sectors.
std::vector<std::uint8_t> MakeVobuAdmap(const std::vector<std::uint32_t>& sectors,
                                        std::int64_t end_address = -1);

}  // namespace tarvex::test
