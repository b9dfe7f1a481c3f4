#include "ifo/nav_command.h"

#include <cstdint>

#include "platform/format.h"

namespace tarvex {

namespace {

// Command groups (b0 bits 7..4).
constexpr std::uint8_t kGroupSpecial = 0;  // no-operation, or an illegal command
constexpr std::uint8_t kGroupLink = 2;
constexpr std::uint8_t kGroupJump = 3;

// Modes of the system-space jumps and calls (b5 bits 7..6).
constexpr std::uint8_t kSystemFirstPlay = 0;
constexpr std::uint8_t kSystemVmgMenu = 1;
constexpr std::uint8_t kSystemTitleSet = 2;
constexpr std::uint8_t kSystemVmgPgc = 3;

// The menu named by b5 bits 3..0; kinds outside 3..7 add nothing.
const char* MenuName(std::uint8_t kind) {
  static constexpr const char* kNames[] = {"Root Menu", "Sub-picture Menu", "Audio Menu",
                                           "Angle Menu", "PTT Menu"};
  return kind >= 3 && kind <= 7 ? kNames[kind - 3] : "";
}

// The text reading shows two fields with its own widths: the link chain number from 14 bits
// (b6 bits 5-0 and b7) and the part of title of a jump shifted by 10, not 8. That is how this
// reading has always shown them; ReadNavTarget uses the command set's own widths.
std::uint32_t ShownLinkPgcn(const NavCommandBits& c) {
  return ((c.b[6] & 0x3Fu) << 8) | c.b[7];
}
std::uint32_t ShownJumpPttn(const NavCommandBits& c) {
  return ((c.b[2] & 0x03u) << 10) | c.b[3];
}

std::string DescribeLink(const NavCommandBits& c) {
  if (c.has_compare()) return " CmpLnk ";
  std::string out = " Lnk ";
  switch (c.subtype()) {
    case 1:
      out += " SIns (additional parameters not decoded)";
      break;
    case 4:
      AppendFormat(out, " to PGC %d", {ShownLinkPgcn(c)});
      break;
    case 5:
      if (c.has_highlight()) {
        AppendFormat(out, " to PTT %d Highlight: %d", {c.link_pttn(), c.highlight()});
      } else {
        AppendFormat(out, " to PTT %d ", {c.link_pttn()});
      }
      break;
    case 6:
      if (c.has_highlight()) {
        AppendFormat(out, " to Program %d this PGC, Highlight: %d", {c.link_pgn(), c.highlight()});
      } else {
        AppendFormat(out, " to Program %d this PGC", {c.link_pgn()});
      }
      break;
    case 7:
      if (c.has_highlight()) {
        AppendFormat(out, " to Cell %d this PGC, Highlight: %d", {c.link_cn(), c.highlight()});
      } else {
        AppendFormat(out, " to Cell %d this PGC", {c.link_cn()});
      }
      break;
    default:  // the other link subtypes are left as the bare group word
      break;
  }
  return out;
}

// Jump in system space: replaces the group word.
std::string DescribeJumpSystemSpace(const NavCommandBits& c) {
  std::string out;
  switch (c.system_mode()) {
    case kSystemTitleSet:
      out = Format(" JmpInSystemSpace To VTS %d TTN %d", {c.b[4], c.b[3]});
      break;
    case kSystemFirstPlay:
      out = " JmpInSystemSpace To First Play PGC ";
      break;
    case kSystemVmgMenu:
      out = " JmpInSystemSpace To VMGM Menu ";
      break;
    case kSystemVmgPgc:
      out = Format(" JmpInSystemSpace To VMGM PGC number %d ", {c.system_pgcn()});
      break;
  }
  // In the title set mode the menu name follows the TTN digits without a blank.
  if (c.system_mode() == kSystemVmgMenu || c.system_mode() == kSystemTitleSet) {
    out += MenuName(c.system_menu());
  }
  return out;
}

// Call in system space: replaces the group word.
std::string DescribeCallSystemSpace(const NavCommandBits& c) {
  switch (c.system_mode()) {
    case kSystemFirstPlay:
      return " CallInSystemSpace First Play ";
    case kSystemVmgMenu:
      return " CallInSystemSpace VMGM Title Menu";
    case kSystemTitleSet:
      return std::string(" CallInSystemSpace VTSM ") + MenuName(c.system_menu());
    default:
      return Format(" CallInSystemSpace VMGM_DOM PGC number %d ", {c.system_pgcn()});
  }
}

std::string DescribeJump(const NavCommandBits& c) {
  if (c.has_compare()) return " CmpJmp ";
  std::string out = " Jmp ";
  switch (c.subtype()) {
    case 1:
      out += "to Exit";
      break;
    case 2:
      AppendFormat(out, "to VTS %d", {c.b[5]});
      break;
    case 3:
      AppendFormat(out, "to This VTS Title %d", {c.b[5]});
      break;
    case 5:
      AppendFormat(out, "to This VTS Title %d Part of Title %d", {c.b[5], ShownJumpPttn(c)});
      break;
    case 6:
      return DescribeJumpSystemSpace(c);
    case 8:
      return DescribeCallSystemSpace(c);
    default:  // the other jump subtypes are left as the bare group word
      break;
  }
  return out;
}

}  // namespace

NavCommandBits NavCommandBits::From(ByteView command) {
  NavCommandBits c;
  for (std::size_t i = 0; i < c.b.size(); ++i) c.b[i] = command.u8(i);
  return c;
}

namespace {

// Command types (b0 bits 7..5).
constexpr std::uint8_t kTypeGoto = 0;
constexpr std::uint8_t kTypeLinkJump = 1;
constexpr std::uint8_t kTypeSetSystem = 2;
constexpr std::uint8_t kTypeSet = 3;
constexpr std::uint8_t kTypeSetCompareLink = 4;
constexpr std::uint8_t kTypeCompareSetLink = 5;
constexpr std::uint8_t kTypeCompareSetAlwaysLink = 6;

// Set system operations (b0 bits 3..0 of type 2).
constexpr std::uint8_t kSetNavigationTimer = 2;
constexpr std::uint8_t kSetHighlightButton = 6;

// The link of a link command, or of a set that carries one: subtype 1 by sub-instruction,
// 4 program chain, 5 part of title, 6 program, 7 cell.
void ReadLink(const NavCommandBits& c, NavTarget& t) {
  switch (c.subtype()) {
    case 1:
      t.kind = NavTargetKind::kLinkSub;
      t.sub_instruction = c.link_sub_instruction();
      t.button = c.highlight();
      break;
    case 4:
      t.kind = NavTargetKind::kLinkChain;
      t.number = c.link_pgcn();
      break;
    case 5:
      t.kind = NavTargetKind::kLinkPart;
      t.number = c.link_pttn();
      t.button = c.highlight();
      break;
    case 6:
      t.kind = NavTargetKind::kLinkProgram;
      t.number = c.link_pgn();
      t.button = c.highlight();
      break;
    case 7:
      t.kind = NavTargetKind::kLinkCell;
      t.number = c.link_cn();
      t.button = c.highlight();
      break;
    default:  // 0 no link; 2, 3 and 8 .. 15 are not link subtypes
      break;
  }
}

// Jump and call in system space (subtypes 6 and 8 of the jump group).
void ReadSystemSpace(const NavCommandBits& c, NavTarget& t) {
  t.call = c.subtype() == 8;
  if (t.call) t.resume_cell = c.b[4];
  switch (c.system_mode()) {
    case kSystemFirstPlay:
      t.kind = NavTargetKind::kFirstPlay;
      break;
    case kSystemVmgMenu:
      t.kind = NavTargetKind::kVmgMenu;
      t.menu = c.system_menu();
      break;
    case kSystemTitleSet:
      t.kind = NavTargetKind::kTitleSetMenu;
      t.menu = c.system_menu();
      if (!t.call) {
        t.title_set = c.b[4];
        t.title = c.b[3];
      }
      break;
    case kSystemVmgPgc:
    default:
      t.kind = NavTargetKind::kVmgChain;
      t.number = c.system_pgcn();
      break;
  }
}

void ReadJump(const NavCommandBits& c, NavTarget& t) {
  switch (c.subtype()) {
    case 1:
      t.kind = NavTargetKind::kExit;
      break;
    case 2:
      t.kind = NavTargetKind::kJumpTitle;
      t.number = c.b[5];
      break;
    case 3:
      t.kind = NavTargetKind::kJumpTitleInSet;
      t.number = c.b[5];
      break;
    case 5:
      t.kind = NavTargetKind::kJumpPartInSet;
      t.title = c.b[5];
      t.number = c.jump_pttn();
      break;
    case 6:
    case 8:
      ReadSystemSpace(c, t);
      break;
    default:  // 0, 4, 7 and 9 .. 15 are not jump subtypes
      break;
  }
}

// A set system command: its own targets (the navigation timer's chain, an immediate button to
// highlight), and the link it carries when it compares nothing (a comparison takes b6 and b7).
void ReadSetSystem(const NavCommandBits& c, NavTarget& t) {
  if (c.set_operation() == kSetNavigationTimer) {
    t.timer_chain = c.link_pgcn();
    return;  // b6 and b7 hold the chain: no link
  }
  if (c.set_operation() == kSetHighlightButton && c.direct()) t.set_button = c.b[4] >> 2;
  if (c.compare_operator() == 0) ReadLink(c, t);
}

}  // namespace

NavTarget ReadNavTarget(ByteView command) {
  NavCommandBits c = NavCommandBits::From(command);
  NavTarget t;
  t.conditional = c.compare_operator() != 0;
  switch (c.type()) {
    case kTypeGoto:
      // 1 goto, 3 SetTmpPML: both go on at the line in b7 (2 break, 0 no operation).
      if (c.subtype() == 1 || c.subtype() == 3) {
        t.kind = NavTargetKind::kGoto;
        t.number = c.b[7];
      }
      break;
    case kTypeLinkJump:
      c.group() == kGroupLink ? ReadLink(c, t) : ReadJump(c, t);
      break;
    case kTypeSetSystem:
      ReadSetSystem(c, t);
      break;
    case kTypeSet:
      if (c.compare_operator() == 0) ReadLink(c, t);
      break;
    case kTypeSetCompareLink:
    case kTypeCompareSetLink:
    case kTypeCompareSetAlwaysLink:
      t.kind = NavTargetKind::kLinkSub;
      t.sub_instruction = c.link_sub_instruction();
      t.button = c.highlight();
      t.conditional = t.conditional && c.type() != kTypeCompareSetAlwaysLink;
      break;
    default:  // type 7 is not defined
      break;
  }
  if (t.kind == NavTargetKind::kNone) t.conditional = false;
  return t;
}

std::string DescribeNavCommand(ByteView command) {
  NavCommandBits c = NavCommandBits::From(command);

  switch (c.group()) {
    case kGroupSpecial: {
      for (std::uint8_t byte : c.b) {
        if (byte != 0) return " Illegal command";
      }
      return " No Operation";
    }
    case kGroupLink:
      return DescribeLink(c);
    case kGroupJump:
      return DescribeJump(c);
    default:  // set, compare and arithmetic groups
      return " Unsupported by Kelvane at this time";
  }
}

}  // namespace tarvex
