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

// The bytes of one command, b0 .. b7, with the bit fields the reading uses.
struct NavCommand {
  std::uint8_t b[8];

  std::uint8_t group() const { return b[0] >> 4; }
  bool has_compare() const { return (b[1] >> 4) != 0; }
  std::uint8_t subtype() const { return b[1] & 0x0F; }
  std::uint32_t link_pgcn() const { return ((b[6] & 0x3Fu) << 8) | b[7]; }
  std::uint32_t link_pttn() const { return ((b[6] & 0x03u) << 8) | b[7]; }
  std::uint32_t link_pgn() const { return b[7] & 0x7Fu; }
  std::uint32_t link_cn() const { return b[7]; }
  std::uint32_t highlight() const { return b[6] >> 2; }
  bool has_highlight() const { return (b[6] & 0xFC) != 0; }
  // The part of title is shifted by 10, not 8: that is how this reading has always shown it.
  std::uint32_t jump_pttn() const { return ((b[2] & 0x03u) << 10) | b[3]; }
  std::uint8_t system_mode() const { return b[5] >> 6; }
  std::uint8_t system_menu() const { return b[5] & 0x0F; }
  std::uint32_t system_pgcn() const { return ((b[2] & 0x7Fu) << 8) | b[3]; }
};

std::string DescribeLink(const NavCommand& c) {
  if (c.has_compare()) return " CmpLnk ";
  std::string out = " Lnk ";
  switch (c.subtype()) {
    case 1:
      out += " SIns (additional parameters not decoded)";
      break;
    case 4:
      AppendFormat(out, " to PGC %d", {c.link_pgcn()});
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
std::string DescribeJumpSystemSpace(const NavCommand& c) {
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
std::string DescribeCallSystemSpace(const NavCommand& c) {
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

std::string DescribeJump(const NavCommand& c) {
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
      AppendFormat(out, "to This VTS Title %d Part of Title %d", {c.b[5], c.jump_pttn()});
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

std::string DescribeNavCommand(ByteView command) {
  NavCommand c{};
  for (std::size_t i = 0; i < 8; ++i) c.b[i] = command.u8(i);  // missing bytes read as 0

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
