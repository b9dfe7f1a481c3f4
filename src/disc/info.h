// What is on a disc, for people (text) and for scripts (JSON): titles with their lengths,
// chapters, cells, video, audio and sub-picture streams (with the ids they really play through),
// palettes, and the menus.
#pragma once

#include <string>

#include "disc/model.h"

namespace tarvex {

std::string DiscInfoText(const Disc& disc);
std::string DiscInfoJson(const Disc& disc);

}  // namespace tarvex
