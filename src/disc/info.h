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

// The bytes a rip of each title (DiscTitles() order) writes for angle 1, filled by the layer
// that rips; nothing where a title's interleaved units cannot be followed.
struct TitleRipSizes {
  std::vector<std::optional<std::uint64_t>> bytes;
};

// Lengths ("length") are the lsdvd-compatible playback times (frames at 29.97 or 25 fps, cut
// to the millisecond); durations ("duration", JSON only) are the exact sums of the cell times
// (frames of 1001/30000 or 1/25 s), rounded to the millisecond, angle blocks counting the
// cell of angle 1.
std::string DiscInfoText(const Disc& disc, const TitleNavigation* navigation = nullptr,
                         const TitleRipSizes* rip_sizes = nullptr);
std::string DiscInfoJson(const Disc& disc, const TitleNavigation* navigation = nullptr);

}  // namespace tarvex
