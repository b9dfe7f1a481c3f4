#include "nav/domains.h"

#include "platform/format.h"

namespace tarvex::nav {

const char* DomainName(Domain domain) {
  switch (domain) {
    case Domain::kFirstPlay:
      return "fp";
    case Domain::kVmgMenu:
      return "vmgm";
    case Domain::kVtsMenu:
      return "vtsm";
    default:
      return "vts";
  }
}

const std::vector<LanguageUnit>* UnitsOf(const Disc& disc, Domain domain, std::uint32_t title_set) {
  if (domain == Domain::kVmgMenu) return &disc.vmg.menus;
  if (domain != Domain::kVtsMenu) return nullptr;
  const TitleSet* ts = disc.FindTitleSet(title_set);
  return ts && ts->present ? &ts->menus : nullptr;
}

const std::vector<Pgc>* ChainsOf(const Disc& disc, Domain domain, std::uint32_t title_set,
                                 std::uint32_t unit) {
  if (domain == Domain::kVtsTitle) {
    const TitleSet* ts = disc.FindTitleSet(title_set);
    return ts && ts->present ? &ts->pgcs : nullptr;
  }
  const std::vector<LanguageUnit>* units = UnitsOf(disc, domain, title_set);
  if (!units || unit >= units->size()) return nullptr;
  return &(*units)[unit].pgcs;
}

const Pgc* FindChain(const Disc& disc, const ChainRef& chain) {
  if (chain.domain == Domain::kFirstPlay) {
    return disc.vmg.first_play ? &*disc.vmg.first_play : nullptr;
  }
  const std::vector<Pgc>* chains = ChainsOf(disc, chain.domain, chain.title_set, chain.unit);
  if (!chains || chain.pgc < 1 || chain.pgc > chains->size()) return nullptr;
  return &(*chains)[chain.pgc - 1];
}

const VobSet* VobsOf(const Disc& disc, Domain domain, std::uint32_t title_set) {
  if (domain == Domain::kFirstPlay || domain == Domain::kVmgMenu) return &disc.vmg.menu_vobs;
  const TitleSet* ts = disc.FindTitleSet(title_set);
  if (!ts) return nullptr;
  return domain == Domain::kVtsMenu ? &ts->menu_vobs : &ts->title_vobs;
}

std::optional<std::uint32_t> ChooseUnit(const std::vector<LanguageUnit>& units,
                                        std::uint16_t language) {
  if (units.empty()) return std::nullopt;
  for (std::uint32_t i = 0; i < units.size(); ++i) {
    const std::string& code = units[i].language;
    if (code.size() == 2 && static_cast<unsigned char>(code[0]) == (language >> 8) &&
        static_cast<unsigned char>(code[1]) == (language & 0xFF)) {
      return i;
    }
  }
  return 0;
}

std::uint32_t EntryChain(const std::vector<Pgc>& chains, std::uint8_t menu) {
  for (std::uint32_t i = 0; i < chains.size(); ++i) {
    // The category's first byte: bit 7 marks an entry chain, bits 3-0 its menu.
    if ((chains[i].category >> 24) == (0x80u | menu)) return i + 1;
  }
  return 0;
}

std::uint32_t DiscTitle(const Disc& disc, std::uint32_t title_set, std::uint32_t title_in_set) {
  for (const TitleEntry& t : disc.vmg.titles) {
    if (t.title_set == title_set && t.title_in_set == title_in_set) return t.number;
  }
  return 0;
}

std::optional<std::string> UnitLanguage(const Disc& disc, const ChainRef& chain) {
  const std::vector<LanguageUnit>* units = UnitsOf(disc, chain.domain, chain.title_set);
  if (!units || chain.unit >= units->size()) return std::nullopt;
  const std::string& code = (*units)[chain.unit].language;
  auto letter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  if (code.size() != 2 || !letter(code[0]) || !letter(code[1])) return std::nullopt;
  return code;
}

std::string ChainName(const Disc& disc, const ChainRef& chain) {
  std::string unit;
  if (chain.domain == Domain::kVmgMenu || chain.domain == Domain::kVtsMenu) {
    unit = UnitLanguage(disc, chain).value_or(Format("unit %d", {chain.unit + 1})) + " ";
  }
  switch (chain.domain) {
    case Domain::kFirstPlay:
      return "first play";
    case Domain::kVmgMenu:
      return "VMGM " + unit + Format("PGC %d", {chain.pgc});
    case Domain::kVtsMenu:
      return Format("VTSM %d ", {chain.title_set}) + unit + Format("PGC %d", {chain.pgc});
    default:
      return Format("VTS %d PGC %d", {chain.title_set, chain.pgc});
  }
}

std::vector<ChainRef> AllChains(const Disc& disc) {
  std::vector<ChainRef> all;
  if (disc.vmg.first_play) all.push_back({Domain::kFirstPlay, 0, 0, 0});
  auto add_units = [&](Domain domain, std::uint32_t ts, const std::vector<LanguageUnit>& units) {
    for (std::uint32_t u = 0; u < units.size(); ++u) {
      for (std::uint32_t p = 1; p <= units[u].pgcs.size(); ++p) all.push_back({domain, ts, u, p});
    }
  };
  add_units(Domain::kVmgMenu, 0, disc.vmg.menus);
  for (const TitleSet& ts : disc.title_sets) {
    if (!ts.present) continue;
    add_units(Domain::kVtsMenu, ts.number, ts.menus);
    for (std::uint32_t p = 1; p <= ts.pgcs.size(); ++p) {
      all.push_back({Domain::kVtsTitle, ts.number, 0, p});
    }
  }
  return all;
}

}  // namespace tarvex::nav
