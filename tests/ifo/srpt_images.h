// Synthetic IFO images holding a title search pointer table, a part-of-title search pointer
// table or a time map table, for the tests of those tables.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ifo/table.h"
#include "support/test_support.h"

namespace tarvex::test {

// image with table appended at sector `sector` (the image is first padded with zeros up to
// that sector, and the table's last sector with zeros) and the big-endian start sector
// written at start_sector_at.
std::vector<std::uint8_t> WithTableAt(std::vector<std::uint8_t> image, std::size_t start_sector_at,
                                      std::uint32_t sector, const std::vector<std::uint8_t>& table);

// Writes the text as the current IfoSource of the fixture (dir/name).
void UseSource(Fixture& f, const std::string& text, const std::string& name = "SOURCE.INI");

// Loads, measures and emits one table kind into dir/name; returns the written bytes.
struct EmittedTable {
  std::uint32_t sectors = 0;
  std::uint32_t bytes = 0;
  std::vector<std::uint8_t> file;
};
EmittedTable LoadAndEmit(Fixture& f, TableId id, const std::string& name = "OUT.IFO");

// The report lines after the details of the heading line beginning with prefix.
std::vector<std::string> DetailsOf(Fixture& f, const std::string& prefix);

// The section's key=value lines of the IfoSource text, in order.
std::vector<std::string> SectionLines(const std::string& text, const std::string& section);

}  // namespace tarvex::test
