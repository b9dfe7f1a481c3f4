// Builders of cell address tables and VOBU address maps, and IFO images holding them, for the
// address table tests.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "app/context.h"
#include "ifo/table.h"

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

// An information table image (MakeVtsImage or MakeVmgImage) with each table appended in turn
// and its start sector stored big-endian at the given offset of the image.
std::vector<std::uint8_t> WithTables(
    std::vector<std::uint8_t> image,
    const std::vector<std::pair<std::size_t, std::vector<std::uint8_t>>>& tables);

// Writes source as the IfoSource, loads the table from it, measures and emits it into a new
// file; returns the bytes written.
std::vector<std::uint8_t> AssembleTable(AppContext& ctx, const std::string& dir, TableId id,
                                        const std::string& source, TableSize* size = nullptr);

}  // namespace tarvex::test
