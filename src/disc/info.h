// What is on a disc, for people (text) and for scripts (JSON): titles with their lengths,
// chapters, cells, video, audio and sub-picture streams (with the ids they really play through),
// palettes, and the menus.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "disc/model.h"

namespace tarvex {

// What the navigation machine says of a disc's titles, filled by the layer that runs it.
struct TitleNavigation {
  std::optional<std::uint32_t> first_title;  // the first title played with the default keys
  std::vector<bool> reachable;               // per title (TT_SRPT order): some path reaches it
};

std::string DiscInfoText(const Disc& disc, const TitleNavigation* navigation = nullptr);
std::string DiscInfoJson(const Disc& disc, const TitleNavigation* navigation = nullptr);

}  // namespace tarvex
