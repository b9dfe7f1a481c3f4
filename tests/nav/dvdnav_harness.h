// Runs the libdvdnav player of the playback tests (tarvex_dvdnav_play) and writes its cells in a
// short form that a test compares with a path written by hand.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace tarvex::test {

// The player's JSON for disc played with the comma list keys ("" for none); null after a test
// failure when it printed something else.
nlohmann::json RunDvdnav(const std::string& disc, const std::string& keys, int max_cells = 200);

// The cells of a run, space-separated: "domain/title_set/pgc cN", then " tT.C" (title and
// chapter) in titles and " [key]" where a key was consumed, "*" marking an implied key; e.g.
// "vmgm/0/1 c1 [enter*] vts/1/7 c1 t7.1".
std::string CellPath(const nlohmann::json& run);

}  // namespace tarvex::test
