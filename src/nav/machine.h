// The navigation virtual machine: plays a disc from its first-play chain as a player does,
// through pre commands, cells with their cell commands and still times, post commands, the
// chains' next / previous / go-up links, buttons and the user's keys, and records what it plays.
// Every run ends: at an Exit ("exit"), at a chain end with nowhere to go ("stop"), when the
// machine comes back to a state it was in ("loop"), after a number of cells ("limit"), or at a
// link to something that does not exist ("error").
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "disc/model.h"
#include "nav/domains.h"

namespace tarvex::nav {

struct PlayOptions {
  std::vector<std::string> keys;  // up down left right enter skip menu title, or a button number
  std::uint32_t max_cells = 1000;
  std::string language = "en";  // menu, audio and sub-picture language (SPRM 0, 16, 18)
  unsigned region = 1;          // the player's region (SPRM 20 mask)
};

// A cell playback entered.
struct CellEvent {
  ChainRef chain;
  std::optional<std::string> language;
  std::optional<std::uint32_t> title, chapter;  // title domain only
  std::uint32_t cell = 0;
  std::uint32_t first_sector = 0;
  std::optional<std::string> key;  // the key consumed at the cell, as given
  bool implicit = false;           // the key was implied: enter at a menu, skip at a still
};

// A command executed.
struct CommandEvent {
  ChainRef chain;
  std::optional<std::string> language;
  std::string where;         // "pre", "post", "cell", "button"
  std::uint32_t number = 0;  // its line (pre, post, cell) or the button
  std::string text;
  std::string result;
  std::string registers;  // the registers it changed
};

// One line of the trace an author reads top to bottom.
struct TraceLine {
  enum class Kind : std::uint8_t { kChain, kCommand, kCell, kKey, kNote, kEnd };
  Kind kind = Kind::kNote;
  std::string text;
  std::string registers;  // the registers changed, for --registers
};

struct PlayResult {
  std::vector<std::string> keys;
  std::vector<CellEvent> cells;
  std::vector<CommandEvent> commands;
  std::vector<TraceLine> trace;
  std::string end;         // "exit", "stop", "loop", "limit", "error"
  std::string end_reason;  // one sentence
  std::optional<std::uint32_t> first_title;
};

// Whether a key is one play understands ("up", ..., "title", or a button number 1-36).
bool IsKey(const std::string& key);

PlayResult Play(const Disc& disc, const PlayOptions& options);

}  // namespace tarvex::nav
