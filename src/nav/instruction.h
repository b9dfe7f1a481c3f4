// A navigation command decoded for execution: its comparison, its register operation and its
// link, jump, call or goto, each with its operands. One decoding serves the machine that runs
// the command, the text that shows it and the analysis that follows where it can go.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace tarvex::nav {

using CommandBytes = std::array<std::uint8_t, 8>;

// A value a command reads: a general or system parameter register, or an immediate number.
struct Operand {
  enum class Kind : std::uint8_t { kNone, kGprm, kSprm, kImmediate };
  Kind kind = Kind::kNone;
  std::uint16_t value = 0;  // register number (GPRM 0-15, SPRM 0-31) or the number itself

  static Operand Gprm(unsigned n) { return {Kind::kGprm, static_cast<std::uint16_t>(n & 0x0F)}; }
  static Operand Immediate(unsigned v) { return {Kind::kImmediate, static_cast<std::uint16_t>(v)}; }
  // A register byte: bit 7 set names SPRM (bits 4-0), clear names GPRM (bits 3-0).
  static Operand Register(std::uint8_t byte);
};

enum class CompareOp : std::uint8_t { kNone, kAnd, kEq, kNe, kGe, kGt, kLe, kLt };

struct Condition {
  CompareOp op = CompareOp::kNone;  // kNone: always true
  Operand left, right;
};

// GPRM operations of the set commands (b0 bits 3-0 of types 3 to 6).
enum class SetOp : std::uint8_t {
  kNone = 0,
  kMov,
  kSwp,
  kAdd,
  kSub,
  kMul,
  kDiv,
  kMod,
  kRnd,
  kAnd,
  kOr,
  kXor
};

struct GprmSet {
  SetOp op = SetOp::kNone;
  std::uint8_t target = 0;  // GPRM
  std::uint8_t swap = 0;    // GPRM that receives the target's value (swp)
  Operand source;
};

// The system parameter operations of type 2 (b0 bits 3-0).
struct SystemSet {
  enum class Kind : std::uint8_t { kNone, kStreams, kNavigationTimer, kGprmMode, kHighlight };
  Kind kind = Kind::kNone;
  // kStreams: SPRM 1, 2, 3 (audio, sub-picture, angle), each set when present.
  std::array<bool, 3> stream_present{};
  std::array<Operand, 3> streams{};
  Operand value;                // timer seconds, GPRM value, button number x 1024
  std::uint16_t timer_pgc = 0;  // kNavigationTimer: the chain played when the timer ends
  std::uint8_t gprm = 0;        // kGprmMode
  bool counter = false;         // kGprmMode: counter mode on
};

// Where a command sends playback.
enum class LinkKind : std::uint8_t {
  kNone,
  // Link by sub-instruction (the numbers are the command set's own).
  kNoLink,
  kTopCell,
  kNextCell,
  kPrevCell,
  kTopProgram,
  kNextProgram,
  kPrevProgram,
  kTopChain,
  kNextChain,
  kPrevChain,
  kGoUpChain,
  kTailChain,
  kResume,
  kChain,
  kPart,
  kProgram,
  kCell,  // LinkPGCN, LinkPTTN, LinkPGN, LinkCN
  kExit,
  kJumpTitle,
  kJumpVtsTitle,
  kJumpVtsPart,
  kJumpFirstPlay,
  kJumpVmgMenu,
  kJumpVtsMenu,
  kJumpVmgChain,
  kCallFirstPlay,
  kCallVmgMenu,
  kCallVtsMenu,
  kCallVmgChain,
};

struct Link {
  LinkKind kind = LinkKind::kNone;
  std::uint32_t number = 0;      // chain, part, program, cell, title, menu id
  std::uint32_t title = 0;       // kJumpVtsPart: the VTS title; kJumpVtsMenu: the VTS title
  std::uint32_t title_set = 0;   // kJumpVtsMenu
  std::uint8_t menu = 0;         // menu id of the system-space jumps and calls
  std::uint8_t resume_cell = 0;  // calls
  std::uint16_t button = 0;      // the button a link highlights, 0 none
};

// The special instructions of type 0.
enum class Special : std::uint8_t { kNop, kGoto, kBreak, kSetTmpPml };

struct Instruction {
  std::uint8_t type = 0;  // b0 bits 7-5
  Condition condition;
  // Types 4: the set runs before the comparison, whatever it gives; 5 and 6: only when the
  // comparison holds. Type 3: only when it holds.
  GprmSet set;
  SystemSet system;
  Special special = Special::kNop;
  std::uint8_t line = 0;      // goto line (1-based)
  std::uint8_t parental = 0;  // SetTmpPML level
  Link link;
  bool link_always = false;         // type 6: the link is taken whatever the comparison gives
  bool set_before_compare = false;  // type 4
  bool unknown = false;             // type 7, or an illegal form
};

Instruction Decode(const CommandBytes& bytes);

// The command as text, e.g. "if (GPRM1 == 5) LinkPGCN 3" or "mov GPRM2, GPRM1; LinkTailPGC".
std::string InstructionText(const Instruction& instruction);
std::string OperandText(const Operand& operand);
std::string LinkText(const Link& link);
const char* MenuName(std::uint8_t menu);  // "title menu", "root menu", ... or "menu"

}  // namespace tarvex::nav
