// Navigation command targets: where a command of a chain or a button can send playback,
// against what the disc holds. Every command type that carries a link, jump, call or goto is
// followed, whether it is taken always or on a comparison, through the command set's reader
// (ifo/nav_command.h).
#include "disc/checks.h"
#include "ifo/nav_command.h"
#include "platform/format.h"

namespace tarvex {

namespace {

using Problem = std::optional<std::string>;

constexpr std::uint32_t kMaxButtons = 36;  // buttons of a menu

const char* MenuName(std::uint8_t menu) {
  static constexpr const char* kNames[] = {"title menu", "root menu",  "sub-picture menu",
                                           "audio menu", "angle menu", "chapter menu"};
  return menu >= 2 && menu <= 7 ? kNames[menu - 2] : nullptr;
}

std::string MenuText(std::uint8_t menu) {
  const char* name = MenuName(menu);
  return name ? std::string(name) : Format("menu %d", {menu});
}

// Whether a chain of the language units is the entry of that menu.
bool EntersMenu(const std::vector<LanguageUnit>& units, std::uint8_t menu) {
  for (const LanguageUnit& unit : units) {
    for (const Pgc& pgc : unit.pgcs) {
      if (pgc.entry() && pgc.menu_id() == menu) return true;
    }
  }
  return false;
}

// The most parts of a title of the set that plays the chain, 0 when no title plays it.
std::size_t PartsOfTitlesPlaying(const TitleSet& ts, std::uint32_t pgcn) {
  std::size_t most = 0;
  for (const std::vector<PartOfTitle>& parts : ts.parts) {
    for (const PartOfTitle& part : parts) {
      if (part.pgcn == pgcn) {
        most = std::max(most, parts.size());
        break;
      }
    }
  }
  return most;
}

// A link by sub-instruction: the cells, programs and chains it moves to relative to the
// current ones exist where the chain has any (which cell or program is current depends on
// playback); the next, previous and go-up chains where the chain names one.
Problem SubInstructionProblem(const Pgc& pgc, std::uint8_t sub) {
  switch (sub) {
    case kLinkNoLink:
    case kLinkTopChain:
    case kLinkTailChain:
    case kLinkResume:
      return std::nullopt;
    case kLinkTopCell:
    case kLinkNextCell:
    case kLinkPreviousCell:
      if (pgc.declared_cells != 0) return std::nullopt;
      return "links to a cell of the chain, which has none";
    case kLinkTopProgram:
    case kLinkNextProgram:
    case kLinkPreviousProgram:
      if (pgc.declared_programs != 0) return std::nullopt;
      return "links to a program of the chain, which has none";
    case kLinkNextChain:
      if (pgc.next != 0) return std::nullopt;
      return "links to the next program chain, the chain names none";
    case kLinkPreviousChain:
      if (pgc.previous != 0) return std::nullopt;
      return "links to the previous program chain, the chain names none";
    case kLinkGoUpChain:
      if (pgc.go_up != 0) return std::nullopt;
      return "links to the go-up program chain, the chain names none";
    default:
      return Format("link sub-instruction %d is not defined", {sub});
  }
}

// The button a link or a set highlights: at most 36; in a button command that stays in its
// menu (no link, or a link that only highlights), one of the menu's buttons.
Problem ButtonProblem(const NavTarget& t, const CommandPlace& place) {
  if (t.button > kMaxButtons) {
    return Format("highlights button %d, at most %d", {t.button, kMaxButtons});
  }
  if (t.set_button > kMaxButtons) {
    return Format("sets button %d highlighted, at most %d", {t.set_button, kMaxButtons});
  }
  bool stays = t.kind == NavTargetKind::kNone ||
               (t.kind == NavTargetKind::kLinkSub && t.sub_instruction == kLinkNoLink);
  if (!place.button_command || !stays) return std::nullopt;
  std::uint32_t button = std::max(t.button, t.set_button);
  if (button > place.buttons) {
    return Format("highlights button %d, the menu has %d", {button, place.buttons});
  }
  return std::nullopt;
}

Problem LinkProblem(const CommandScope& scope, const Pgc& pgc, const NavTarget& t) {
  switch (t.kind) {
    case NavTargetKind::kLinkSub:
      return SubInstructionProblem(pgc, t.sub_instruction);
    case NavTargetKind::kLinkChain:
      if (t.number != 0 && t.number <= scope.chains_in_block) return std::nullopt;
      return Format("links to program chain %d, there are %d", {t.number, scope.chains_in_block});
    case NavTargetKind::kLinkPart: {
      if (!scope.titles || scope.title_set == nullptr) {
        return Format("links to part %d, which only a title's chain can", {t.number});
      }
      std::size_t parts = PartsOfTitlesPlaying(*scope.title_set, pgc.number);
      if (parts == 0 || (t.number != 0 && t.number <= parts)) return std::nullopt;
      return Format("links to part %d, the chain's title has %d", {t.number, parts});
    }
    case NavTargetKind::kLinkProgram:
      if (t.number != 0 && t.number <= pgc.declared_programs) return std::nullopt;
      return Format("links to program %d, the chain has %d", {t.number, pgc.declared_programs});
    case NavTargetKind::kLinkCell:
      if (t.number != 0 && t.number <= pgc.declared_cells) return std::nullopt;
      return Format("links to cell %d, the chain has %d", {t.number, pgc.declared_cells});
    default:
      return std::nullopt;
  }
}

Problem TitleInSetProblem(const CommandScope& scope, const NavTarget& t) {
  if (scope.title_set == nullptr) {
    return Format("jumps to title %d of the current title set, outside any title set", {t.title});
  }
  std::size_t titles = scope.title_set->parts.size();
  if (t.title == 0 || t.title > titles) {
    return Format("jumps to title %d of the title set, which has %d", {t.title, titles});
  }
  std::size_t parts = scope.title_set->parts[t.title - 1].size();
  if (t.kind == NavTargetKind::kJumpPartInSet && (t.number == 0 || t.number > parts)) {
    return Format("jumps to part %d of title %d, which has %d", {t.number, t.title, parts});
  }
  return std::nullopt;
}

Problem TitleSetMenuProblem(const CommandScope& scope, const NavTarget& t) {
  if (t.call) {
    if (scope.title_set == nullptr || EntersMenu(scope.title_set->menus, t.menu)) {
      return std::nullopt;
    }
    return "calls the title set's " + MenuText(t.menu) + ", which no menu chain enters";
  }
  const TitleSet* target = scope.disc.FindTitleSet(t.title_set);
  if (target == nullptr) {
    return Format("jumps to title set %d, which the disc does not have", {t.title_set});
  }
  if (t.title == 0 || t.title > target->parts.size()) {
    return Format("jumps to title %d of title set %d, which has %d",
                  {t.title, t.title_set, target->parts.size()});
  }
  if (EntersMenu(target->menus, t.menu)) return std::nullopt;
  return Format("jumps to the %s of title set %d, which no menu chain enters",
                {MenuText(t.menu), t.title_set});
}

Problem SystemSpaceProblem(const CommandScope& scope, const Pgc& pgc, const NavTarget& t) {
  const char* verb = t.call ? "calls" : "jumps to";
  if (t.call && t.resume_cell > pgc.declared_cells) {
    return Format("%s a menu to resume at cell %d, the chain has %d",
                  {verb, t.resume_cell, pgc.declared_cells});
  }
  const Disc& disc = scope.disc;
  // Without VIDEO_TS.IFO what the video manager holds is not known.
  if (!disc.vmg.ifo_found && t.kind != NavTargetKind::kTitleSetMenu) return std::nullopt;
  switch (t.kind) {
    case NavTargetKind::kFirstPlay:
      if (disc.vmg.first_play) return std::nullopt;
      return Format("%s the first-play chain, which the disc does not have", {verb});
    case NavTargetKind::kVmgMenu:
      if (EntersMenu(disc.vmg.menus, t.menu)) return std::nullopt;
      return Format("%s the video manager's %s, which no menu chain enters",
                    {verb, MenuText(t.menu)});
    case NavTargetKind::kTitleSetMenu:
      return TitleSetMenuProblem(scope, t);
    default: {  // kVmgChain
      std::size_t vmgm = disc.vmg.menus.empty() ? 0 : disc.vmg.menus.front().pgcs.size();
      if (t.number != 0 && t.number <= vmgm) return std::nullopt;
      return Format("goes to video manager menu chain %d, there are %d", {t.number, vmgm});
    }
  }
}

Problem JumpProblem(const CommandScope& scope, const Pgc& pgc, const NavTarget& t) {
  switch (t.kind) {
    case NavTargetKind::kJumpTitle: {
      std::size_t titles = scope.disc.vmg.titles.size();
      if (!scope.disc.vmg.ifo_found) return std::nullopt;  // the titles are not known
      if (t.number != 0 && t.number <= titles) return std::nullopt;
      return Format("jumps to title %d, the disc has %d", {t.number, titles});
    }
    case NavTargetKind::kJumpTitleInSet: {
      NavTarget title = t;
      title.title = t.number;
      return TitleInSetProblem(scope, title);
    }
    case NavTargetKind::kJumpPartInSet:
      return TitleInSetProblem(scope, t);
    case NavTargetKind::kFirstPlay:
    case NavTargetKind::kVmgMenu:
    case NavTargetKind::kTitleSetMenu:
    case NavTargetKind::kVmgChain:
      return SystemSpaceProblem(scope, pgc, t);
    default:
      return std::nullopt;
  }
}

}  // namespace

std::optional<std::string> CommandTargetProblem(const CommandScope& scope, const Pgc& pgc,
                                                const NavCommand& command,
                                                const CommandPlace& place) {
  NavTarget t = ReadNavTarget(ByteView(command.data(), command.size()));
  if (Problem p = ButtonProblem(t, place)) return p;
  if (t.timer_chain != 0 && t.timer_chain > scope.chains_in_block) {
    return Format("sets the navigation timer to program chain %d, there are %d",
                  {t.timer_chain, scope.chains_in_block});
  }
  if (t.kind == NavTargetKind::kGoto) {
    if (place.lines == 0 || (t.number != 0 && t.number <= place.lines)) return std::nullopt;
    return Format("goes to command %d, the chain has %d %s commands",
                  {t.number, place.lines, place.table});
  }
  if (Problem p = LinkProblem(scope, pgc, t)) return p;
  return JumpProblem(scope, pgc, t);
}

}  // namespace tarvex
