// The program chains of a disc as the navigation machine sees them: by domain (first play, the
// video manager's menus, a title set's menus, its titles), language unit and number.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "disc/model.h"

namespace tarvex::nav {

enum class Domain : std::uint8_t { kFirstPlay, kVmgMenu, kVtsMenu, kVtsTitle };

// "fp", "vmgm", "vtsm", "vts".
const char* DomainName(Domain domain);

struct ChainRef {
  Domain domain = Domain::kFirstPlay;
  std::uint32_t title_set = 0;  // 0 for the video manager
  std::uint32_t unit = 0;       // menus: index of the language unit
  std::uint32_t pgc = 0;        // from 1 in its table or unit; 0 for the first-play chain
  bool operator==(const ChainRef&) const = default;
  auto operator<=>(const ChainRef&) const = default;
};

// The language units of a menu domain (nullptr for the other domains or a missing title set).
const std::vector<LanguageUnit>* UnitsOf(const Disc& disc, Domain domain, std::uint32_t title_set);
// The chains of a domain's table or language unit (nullptr when there is none).
const std::vector<Pgc>* ChainsOf(const Disc& disc, Domain domain, std::uint32_t title_set,
                                 std::uint32_t unit);
const Pgc* FindChain(const Disc& disc, const ChainRef& chain);
// The VOB set a domain's cells lie in.
const VobSet* VobsOf(const Disc& disc, Domain domain, std::uint32_t title_set);
// The language unit of a menu domain a player takes for its menu language code (SPRM 0): the
// unit of that code, else the first. Nothing when the domain has no unit.
std::optional<std::uint32_t> ChooseUnit(const std::vector<LanguageUnit>& units,
                                        std::uint16_t language);
// The entry chain of a menu (2 title .. 7 chapter) in a unit's chains, 0 when none.
std::uint32_t EntryChain(const std::vector<Pgc>& chains, std::uint8_t menu);
// The title number (TT_SRPT) of a title of a title set, 0 when the disc has none.
std::uint32_t DiscTitle(const Disc& disc, std::uint32_t title_set, std::uint32_t title_in_set);
// The language code of a unit as text ("en"), or nothing when not two ASCII letters.
std::optional<std::string> UnitLanguage(const Disc& disc, const ChainRef& chain);
// "first play", "VMGM en PGC 2", "VTSM 1 en PGC 1", "VTS 1 PGC 3".
std::string ChainName(const Disc& disc, const ChainRef& chain);
// Every chain of the disc: first play, video manager menus, then per title set its menus and
// its titles' chains.
std::vector<ChainRef> AllChains(const Disc& disc);

}  // namespace tarvex::nav
