// DVD-Video navigation commands: the reading of an 8-byte command as appended after its hex
// listing, and the fields that say where a command can send playback (its link, jump, call or
// goto, the button it highlights, the chain its navigation timer names), for the checks.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "platform/bytes.h"

namespace tarvex {

// The bytes of one command, b0 .. b7, and the bit fields of the command set.
struct NavCommandBits {
  std::array<std::uint8_t, 8> b{};

  // The first 8 bytes of command (missing bytes read as 0).
  static NavCommandBits From(ByteView command);

  // b0 bits 7-5: 0 goto and break, 1 link (b0 bit 4 clear) or jump, 2 set system, 3 set,
  // 4 set then compare and link, 5 compare then set and link, 6 compare then set, and link.
  std::uint8_t type() const { return b[0] >> 5; }
  std::uint8_t group() const { return b[0] >> 4; }  // 2 link, 3 jump (type 1)
  bool direct() const { return (b[0] & 0x10) != 0; }
  std::uint8_t set_operation() const { return b[0] & 0x0F; }
  // b1 bits 7-4: the compare flag of the text reading (immediate flag and operator).
  bool has_compare() const { return (b[1] >> 4) != 0; }
  std::uint8_t compare_operator() const { return (b[1] >> 4) & 7; }  // 0: no comparison
  // b1 bits 3-0: the link, jump or goto subtype; for types 2 and 3 the link the set carries.
  std::uint8_t subtype() const { return b[1] & 0x0F; }

  // The link fields in b6 and b7.
  std::uint32_t link_pgcn() const { return ((b[6] & 0x7Fu) << 8) | b[7]; }
  std::uint32_t link_pttn() const { return ((b[6] & 0x03u) << 8) | b[7]; }
  std::uint32_t link_pgn() const { return b[7] & 0x7Fu; }
  std::uint32_t link_cn() const { return b[7]; }
  std::uint8_t link_sub_instruction() const { return b[7] & 0x1F; }
  std::uint32_t highlight() const { return b[6] >> 2; }
  bool has_highlight() const { return (b[6] & 0xFC) != 0; }

  // The jump and call fields in b2 to b5.
  std::uint32_t jump_pttn() const { return ((b[2] & 0x03u) << 8) | b[3]; }
  std::uint8_t system_mode() const { return b[5] >> 6; }
  std::uint8_t system_menu() const { return b[5] & 0x0F; }
  std::uint32_t system_pgcn() const { return ((b[2] & 0x7Fu) << 8) | b[3]; }
};

// Where a command can send playback.
enum class NavTargetKind : std::uint8_t {
  kNone,
  kGoto,            // goto or SetTmpPML: number is a command line of the same table
  kLinkSub,         // link by sub-instruction: sub_instruction
  kLinkChain,       // number: a program chain of the domain
  kLinkPart,        // number: a part of the current title
  kLinkProgram,     // number: a program of this chain
  kLinkCell,        // number: a cell of this chain
  kExit,            // stops playback
  kJumpTitle,       // number: a title of the disc
  kJumpTitleInSet,  // number: a title of the current title set
  kJumpPartInSet,   // title, number: part of a title of the current title set
  kFirstPlay,       // system space (jump, or call when call is set): the first-play chain
  kVmgMenu,         // menu: a menu of the video manager
  kTitleSetMenu,    // menu of title set title_set (jump: with its title title; call: the
                    // current title set)
  kVmgChain,        // number: a program chain of the video manager's menus
};

// Link sub-instructions (b7 bits 4-0 of a link by sub-instruction).
enum NavLinkSub : std::uint8_t {
  kLinkNoLink = 0,
  kLinkTopCell = 1,
  kLinkNextCell = 2,
  kLinkPreviousCell = 3,
  kLinkTopProgram = 5,
  kLinkNextProgram = 6,
  kLinkPreviousProgram = 7,
  kLinkTopChain = 9,
  kLinkNextChain = 10,
  kLinkPreviousChain = 11,
  kLinkGoUpChain = 12,
  kLinkTailChain = 13,
  kLinkResume = 16,
};

struct NavTarget {
  NavTargetKind kind = NavTargetKind::kNone;
  bool conditional = false;  // taken only when the command's comparison holds
  bool call = false;         // a call in system space (kFirstPlay .. kVmgChain)
  std::uint32_t number = 0;
  std::uint32_t title = 0;
  std::uint32_t title_set = 0;
  std::uint8_t menu = 0;             // 2 title, 3 root, 4 sub-picture, 5 audio, 6 angle, 7 part
  std::uint8_t sub_instruction = 0;  // NavLinkSub
  std::uint32_t button = 0;          // the button a link highlights, 0 none
  std::uint8_t resume_cell = 0;      // the cell a call resumes at, 0 the current one
  std::uint32_t set_button = 0;      // SetHL_BTNN with an immediate button number, 0 none
  std::uint32_t timer_chain = 0;     // SetNVTMR: the chain played when the timer ends, 0 none
};

// Where command can send playback, by its type: goto, link and jump (type 1, with or without
// a comparison), the link a set carries (types 2 and 3 when they compare nothing), the link by
// sub-instruction of types 4 to 6.
NavTarget ReadNavTarget(ByteView command);

// The text that follows a command's hex digits on its report line (it starts with a blank).
std::string DescribeNavCommand(ByteView command);

}  // namespace tarvex
