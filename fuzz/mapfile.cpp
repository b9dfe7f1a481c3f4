// Fuzz harness: arbitrary text read as a GNU ddrescue mapfile, its damaged blocks mapped onto
// a disc of two files in memory.
#include "archive/mapfile.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "archive/damage.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string error;
  std::optional<tarvex::Mapfile> map =
      tarvex::ParseMapfile(std::string_view(reinterpret_cast<const char*>(data), size), error);
  if (!map) return 0;
  tarvex::Disc disc;
  disc.access = tarvex::OpenMemoryDisc({{"VTS_01_0.IFO", std::vector<std::uint8_t>(4096)},
                                        {"VTS_01_1.VOB", std::vector<std::uint8_t>(8192)}});
  tarvex::Findings out;
  tarvex::AddDamageFindings(disc, tarvex::DamagedBlocks(*map), out);
  return 0;
}
