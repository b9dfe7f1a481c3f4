#include "nav/nav_test_disc.h"

#include "stream/nav_layout.h"

namespace tarvex::nav::test {

NavCommand JumpTitle(std::uint8_t title) {
  return {0x30, 0x02, 0, 0, 0, title, 0, 0};
}
NavCommand JumpVmgTitleMenu() {
  return {0x30, 0x06, 0, 0, 0, 0x42, 0, 0};
}
NavCommand CallVtsRootMenu(std::uint8_t resume_cell) {
  return {0x30, 0x08, 0, 0, resume_cell, 0x83, 0, 0};
}
NavCommand LinkChain(std::uint16_t pgc) {
  return {
      0x20, 0x04, 0, 0, 0, 0, static_cast<std::uint8_t>(pgc >> 8), static_cast<std::uint8_t>(pgc)};
}
NavCommand LinkSub(std::uint8_t sub, std::uint8_t button) {
  return {0x20, 0x01, 0, 0, 0, 0, static_cast<std::uint8_t>(button << 2), sub};
}
NavCommand Exit() {
  return {0x30, 0x01, 0, 0, 0, 0, 0, 0};
}
NavCommand AddImmediate(std::uint8_t gprm, std::uint16_t value) {
  return {0x73, 0, 0, gprm, static_cast<std::uint8_t>(value >> 8), static_cast<std::uint8_t>(value),
          0,    0};
}
NavCommand IfLessLinkSub(std::uint8_t gprm, std::uint16_t value, std::uint8_t sub) {
  // Link (type 1), immediate comparison "<" (7), sub-instruction link.
  return {
      0x20, 0xF1, 0, gprm, static_cast<std::uint8_t>(value >> 8), static_cast<std::uint8_t>(value),
      0,    sub};
}

Pgc Chain(Commands pre, std::uint32_t cells, Commands post) {
  Pgc pgc;
  pgc.pre = std::move(pre);
  pgc.post = std::move(post);
  for (std::uint32_t i = 0; i < cells; ++i) {
    Cell cell;
    cell.number = i + 1;
    cell.time.seconds = 1;
    cell.time.rate_code = 1;
    cell.first_sector = 10 * i;
    cell.last_sector = 10 * i + 9;
    pgc.cells.push_back(cell);
  }
  if (cells) pgc.program_map.push_back(1);
  pgc.declared_cells = cells;
  pgc.declared_programs = cells ? 1 : 0;
  return pgc;
}

Pgc& Entry(Pgc& pgc, std::uint8_t menu) {
  pgc.category = 0x80000000u | (std::uint32_t{menu} << 24);
  return pgc;
}

DiscBuilder::DiscBuilder() {
  disc.path = "memory";
  disc.kind = "folder";
  disc.vmg.present = true;
  disc.vmg.menus.push_back(LanguageUnit{"en", 0, 0, {}});
}

DiscBuilder& DiscBuilder::FirstPlay(Commands pre) {
  disc.vmg.first_play = Chain(std::move(pre), 0, {});
  return *this;
}

DiscBuilder& DiscBuilder::VmgMenu(Pgc pgc) {
  pgc.number = static_cast<std::uint32_t>(disc.vmg.menus[0].pgcs.size() + 1);
  disc.vmg.menus[0].pgcs.push_back(std::move(pgc));
  return *this;
}

DiscBuilder& DiscBuilder::TitleSet(std::vector<Pgc> chains, std::vector<std::uint16_t> titles) {
  tarvex::TitleSet ts;
  ts.number = static_cast<std::uint32_t>(disc.title_sets.size() + 1);
  ts.present = true;
  ts.ifo_name = "VTS_0" + std::to_string(ts.number) + "_0.IFO";
  if (titles.empty()) {
    for (std::uint16_t n = 1; n <= chains.size(); ++n) titles.push_back(n);
  }
  for (std::uint32_t n = 0; n < chains.size(); ++n) chains[n].number = n + 1;
  ts.pgcs = std::move(chains);
  for (std::uint16_t pgcn : titles) {
    ts.parts.push_back({PartOfTitle{pgcn, 1}});
    TitleEntry entry;
    entry.number = static_cast<std::uint32_t>(disc.vmg.titles.size() + 1);
    entry.title_set = static_cast<std::uint8_t>(ts.number);
    entry.title_in_set = static_cast<std::uint8_t>(ts.parts.size());
    entry.chapters = 1;
    disc.vmg.titles.push_back(entry);
  }
  disc.title_sets.push_back(std::move(ts));
  return *this;
}

DiscBuilder& DiscBuilder::VtsMenu(std::uint32_t title_set, Pgc pgc) {
  tarvex::TitleSet& ts = disc.title_sets[title_set - 1];
  if (ts.menus.empty()) ts.menus.push_back(LanguageUnit{"en", 0, 0, {}});
  pgc.number = static_cast<std::uint32_t>(ts.menus[0].pgcs.size() + 1);
  ts.menus[0].pgcs.push_back(std::move(pgc));
  return *this;
}

namespace {

// A navigation pack whose PCI holds the buttons, with the highlight status set.
std::vector<std::uint8_t> NavPackWithButtons(const std::vector<TestButton>& buttons) {
  std::vector<std::uint8_t> record(2048, 0);
  std::uint8_t* pci = record.data() + kPciData;
  pci[kPciHliSs + 1] = 1;
  pci[kPciBtnNs] = static_cast<std::uint8_t>(buttons.size());
  pci[kPciNslBtnNs] = static_cast<std::uint8_t>(buttons.size());
  for (std::size_t i = 0; i < buttons.size(); ++i) {
    std::uint8_t* b = pci + kPciButtons + kButtonSize * i;
    b[0] = 0x40;  // colour group 1
    b[3] = buttons[i].auto_action ? 0x40 : 0x00;
    b[6] = buttons[i].up;
    b[7] = buttons[i].down;
    for (int k = 0; k < 8; ++k) b[10 + k] = buttons[i].command[k];
  }
  return record;
}

}  // namespace

DiscBuilder& DiscBuilder::VmgMenuButtons(const std::vector<TestButton>& buttons, bool still) {
  disc.access = OpenMemoryDisc({{"VIDEO_TS.VOB", NavPackWithButtons(buttons)}});
  disc.vmg.menu_vobs.parts.push_back({"VIDEO_TS.VOB", 2048, 0});
  disc.vmg.menu_vobs.sectors = 1;
  for (Pgc& pgc : disc.vmg.menus[0].pgcs) {
    if (pgc.cells.empty()) continue;
    pgc.cells[0].first_sector = 0;
    pgc.cells[0].last_sector = 0;
    if (still) pgc.cells[0].category[2] = 0xFF;
  }
  return *this;
}

Disc DiscBuilder::Build() {
  return std::move(disc);
}

}  // namespace tarvex::nav::test
