// The checks of verify, by area. Each adds findings; none stops at the first.
#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "disc/findings.h"
#include "disc/model.h"
#include "stream/coding_headers.h"

namespace tarvex {

// The names a VOB set's findings use: its IFO and its tables.
struct VobSetNames {
  std::string ifo;         // "VTS_01_0.IFO"
  const char* c_adt;       // "VTS_C_ADT"
  const char* admap;       // "VTS_VOBU_ADMAP"
  const char* chains;      // "VTS_PGCIT" or a menu unit table
  const char* attributes;  // the table that declares the set's streams: "VTSI_MAT", "VMGI_MAT"
  const char* domain;      // "title" or "menu"
  // Cells whose VOBUs interleave with others (angle blocks): their VOBU end addresses and
  // next-VOBU pointers do not name the next navigation pack in the file.
  std::set<std::pair<std::uint16_t, std::uint8_t>> interleaved;
};

// How a finding names the language unit u of a menu table: "language unit 2 (fr): ", or
// nothing when the table has one unit only.
std::string LanguageUnitPrefix(const std::vector<LanguageUnit>& units, std::size_t u);

// A program chain of a VOB set's domain: the chains its links can name (its table or
// language unit) and the prefix of its findings.
struct DomainChain {
  const Pgc* pgc;
  std::size_t chains_in_block;
  std::string prefix;
};

// What a navigation command of a chain can reach.
struct CommandScope {
  const Disc& disc;
  std::size_t chains_in_block;  // chains a link can name (its table or language unit)
  const TitleSet* title_set;    // the title set of the domain, if any
  bool titles = false;          // a title chain (whose parts a link can name)
};
// Where a command stands: the lines of its table for a goto (pre and post commands; 0 where
// a goto has no lines to go to), or the buttons of the menu a button command belongs to.
struct CommandPlace {
  std::size_t lines = 0;
  const char* table = "";     // "pre", "post"
  std::uint32_t buttons = 0;  // btn_ns of the navigation pack
  bool button_command = false;
};
// What is wrong with where a command can send playback (the target of its link, jump, call or
// goto, whether taken always or on a comparison; the button it highlights; the chain of its
// navigation timer), or nothing.
std::optional<std::string> CommandTargetProblem(const CommandScope& scope, const Pgc& pgc,
                                                const NavCommand& command,
                                                const CommandPlace& place = {});

// A button command of a navigation pack, as first found in the VOBs.
struct ButtonCommand {
  std::pair<std::uint16_t, std::uint8_t> cell;
  std::string file;
  std::uint64_t record = 0;
  std::uint32_t button = 0;   // from 1
  std::uint32_t buttons = 0;  // the buttons of its navigation pack (btn_ns)
  NavCommand command{};
};

// What one pass over a VOB set found in the packs that a cell plays: the streams of each cell,
// where each stream was first seen.
struct StreamPresence {
  std::map<std::pair<std::uint16_t, std::uint8_t>, std::bitset<256>> cells;
  std::bitset<256> all;
  struct Where {
    std::string file;
    std::uint64_t record = 0;
  };
  std::array<std::optional<Where>, 256> first_seen;
  bool scanned = false;
  // Each distinct button command of each cell, with where it was first seen (at most
  // kMaxButtonCommands in all).
  std::vector<ButtonCommand> buttons;
  static constexpr std::size_t kMaxButtonCommands = 4096;
  // The coding of each video and audio stream, from its first complete header.
  struct Coded {
    StreamCoding coding;
    Where where;
  };
  std::map<std::uint8_t, Coded> codings;
};

// The declared audio streams and the ids their chains' control makes them play through:
// (declared stream from 0, stream id).
using AudioIds = std::set<std::pair<std::size_t, std::uint8_t>>;

void CheckFiles(const Disc& disc, Findings& out);
void CheckInformationTables(const Disc& disc, Findings& out);
void CheckTitles(const Disc& disc, Findings& out);
void CheckAddressTables(const Disc& disc, Findings& out);
void CheckChains(const Disc& disc, Findings& out);

// The sectors of a VOB set that a cell of its domain's chains plays (each cell from its first
// VOBU to the end of its last, C_FVOBU_SA to C_LVOBU_EA), as sorted, disjoint ranges.
class PlayedSectors {
 public:
  explicit PlayedSectors(const std::vector<DomainChain>& chains);
  bool Contains(std::uint64_t sector) const;

 private:
  std::vector<std::pair<std::uint64_t, std::uint64_t>> ranges_;  // first and last sector
};

// One sequential pass over the VOB files of a set: packs, navigation packs against the cell
// address table and the VOBU address map, clock references, mux rates, and the streams present
// in the packs that a cell plays (content no cell plays is one vob.unplayed finding: no player
// shows it, so its streams are not held against the declarations).
StreamPresence ScanVobSet(const Disc& disc, const VobSet& set, const VobSetNames& names,
                          const PlayedSectors& played, Findings& out);
// Declared streams against those found.
void CheckStreams(const Disc& disc, const std::vector<DomainChain>& chains,
                  const StreamDeclarations& declared, const StreamPresence& found,
                  const VobSetNames& names, Findings& out);
// Declared video and audio attributes against the codings found.
void CheckCodings(const StreamDeclarations& declared, const AudioIds& audio,
                  const StreamPresence& found, const VobSetNames& names, Findings& out);

}  // namespace tarvex
