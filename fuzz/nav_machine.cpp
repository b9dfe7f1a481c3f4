// Fuzz harness: the navigation machine, its analysis and graph on arbitrary IFO bytes and
// navigation packs. The input is [2-byte length A][A bytes: VIDEO_TS.IFO][2-byte length B]
// [B bytes: VTS_01_0.IFO][2-byte length C][C bytes: VIDEO_TS.VOB, the menu's navigation
// packs][the rest: the keys pressed, one byte each], held in memory as a VIDEO_TS folder.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "disc/model.h"
#include "fuzz_input.h"
#include "nav/analysis.h"
#include "nav/machine.h"
#include "nav/play_output.h"

namespace {

std::vector<std::string> Keys(const std::uint8_t* data, std::size_t size) {
  static const char* const kKeys[] = {"up",   "down",  "left", "right", "enter", "skip",
                                      "menu", "title", "1",    "2",     "3",     "36"};
  std::vector<std::string> keys;
  for (std::size_t i = 0; i < size && i < 64; ++i) keys.emplace_back(kKeys[data[i] % 12]);
  return keys;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::vector<std::uint8_t> vmg = tarvex::fuzz::Take(data, size);
  std::vector<std::uint8_t> vts = tarvex::fuzz::Take(data, size);
  std::vector<std::uint8_t> menu_vob = tarvex::fuzz::Take(data, size);
  std::vector<std::pair<std::string, std::vector<std::uint8_t>>> files;
  files.emplace_back("VIDEO_TS.IFO", std::move(vmg));
  files.emplace_back("VIDEO_TS.VOB", std::move(menu_vob));
  files.emplace_back("VTS_01_0.IFO", std::move(vts));
  std::string error;
  std::optional<tarvex::Disc> disc =
      tarvex::LoadDisc(tarvex::OpenMemoryDisc(std::move(files)), "fuzz", error);
  if (!disc) return 0;
  tarvex::nav::PlayOptions options;
  options.keys = Keys(data, size);
  options.max_cells = 20;
  tarvex::nav::PlayResult result = tarvex::nav::Play(*disc, options);
  tarvex::nav::PlayJson(*disc, result);
  tarvex::nav::PlayText(result, true);
  tarvex::nav::NavAnalysis analysis = tarvex::nav::Analyze(*disc);
  tarvex::nav::BuildGraph(*disc, analysis);
  tarvex::Findings findings;
  tarvex::nav::AddNavigationFindings(*disc, analysis, findings);
  return 0;
}
