// GNU ddrescue mapfiles: comment lines (#), the status line "current_pos current_status
// [current_pass]", then one line per block "pos size status". Numbers are hexadecimal with
// 0x or decimal; a block's status is '?' (not tried), '*' (not trimmed), '/' (not scraped),
// '-' (bad sector) or '+' (finished).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarvex {

struct MapBlock {
  std::uint64_t pos = 0, size = 0;  // bytes of the image
  char status = '?';
};

struct Mapfile {
  std::uint64_t current_pos = 0;
  char current_status = '?';
  std::vector<MapBlock> blocks;
};

// The mapfile of text; nothing when it is malformed, with error naming the line ("line 7:
// ...").
std::optional<Mapfile> ParseMapfile(std::string_view text, std::string& error);

// The blocks not finished (every status but '+') that hold at least one byte.
std::vector<MapBlock> DamagedBlocks(const Mapfile& map);

}  // namespace tarvex
