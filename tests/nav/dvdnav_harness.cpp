#include "nav/dvdnav_harness.h"

#include <gtest/gtest.h>

#include "support/test_support.h"

namespace tarvex::test {

nlohmann::json RunDvdnav(const std::string& disc, const std::string& keys, int max_cells) {
  std::string command = "timeout 120 " + ShellQuote(TARVEX_DVDNAV_PLAY_PATH) + " " +
                        ShellQuote(disc) + " --max-cells " + std::to_string(max_cells);
  if (!keys.empty()) command += " --keys " + ShellQuote(keys);
  std::string out = CaptureCommand(command + " 2>/dev/null");
  try {
    return nlohmann::json::parse(out);
  } catch (const nlohmann::json::parse_error& e) {
    ADD_FAILURE() << command << ": not JSON: " << e.what() << "\n" << out.substr(0, 400);
    return {};
  }
}

namespace {

std::string Number(const nlohmann::json& value) {
  return value.is_number() ? std::to_string(value.get<int>()) : std::string("?");
}

std::string CellText(const nlohmann::json& cell) {
  std::string text = cell.value("domain", "?") + "/" + Number(cell["title_set"]) + "/" +
                     Number(cell["pgc"]) + " c" + Number(cell["cell"]);
  if (cell["title"].is_number()) {
    text += " t" + Number(cell["title"]) + "." + Number(cell["chapter"]);
  }
  if (cell["key"].is_string()) {
    text += " [" + cell["key"].get<std::string>() + (cell.value("implicit", false) ? "*]" : "]");
  }
  return text;
}

}  // namespace

std::string CellPath(const nlohmann::json& run) {
  std::string path;
  if (!run.is_object() || !run["cells"].is_array()) return "?";
  for (const nlohmann::json& cell : run["cells"]) {
    path += (path.empty() ? "" : " ") + CellText(cell);
  }
  return path;
}

}  // namespace tarvex::test
