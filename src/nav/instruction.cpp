#include "nav/instruction.h"

#include "platform/format.h"

namespace tarvex::nav {

Operand Operand::Register(std::uint8_t byte) {
  if (byte & 0x80) return {Kind::kSprm, static_cast<std::uint16_t>(byte & 0x1F)};
  return Gprm(byte);
}

namespace {

std::uint16_t Be16(const CommandBytes& b, int at) {
  return static_cast<std::uint16_t>((b[at] << 8) | b[at + 1]);
}

// b1 bit 7: the comparison's second value is immediate; b1 bits 6-4: the comparison.
CompareOp CompareOf(const CommandBytes& b) {
  return static_cast<CompareOp>((b[1] >> 4) & 7);
}
bool CompareImmediate(const CommandBytes& b) {
  return (b[1] & 0x80) != 0;
}
// b0 bit 4: the set's or system set's value is immediate.
bool SetImmediate(const CommandBytes& b) {
  return (b[0] & 0x10) != 0;
}

// A 16-bit immediate at b[at], b[at + 1], or the register named by b[at + 1].
Operand RegisterOrValue(const CommandBytes& b, bool immediate, int at) {
  return immediate ? Operand::Immediate(Be16(b, at)) : Operand::Register(b[at + 1]);
}

// Comparison forms: the registers and values they compare.
Condition CompareRegisterWithValue(const CommandBytes& b) {  // b3 against b4-b5
  if (CompareOf(b) == CompareOp::kNone) return {};
  return {CompareOf(b), Operand::Register(b[3]), RegisterOrValue(b, CompareImmediate(b), 4)};
}
Condition CompareRegisters(const CommandBytes& b) {  // b6 against b7
  if (CompareOf(b) == CompareOp::kNone) return {};
  return {CompareOf(b), Operand::Register(b[6]), Operand::Register(b[7])};
}
Condition CompareSetForm(const CommandBytes& b) {  // b2 against b6-b7
  if (CompareOf(b) == CompareOp::kNone) return {};
  return {CompareOf(b), Operand::Register(b[2]), RegisterOrValue(b, CompareImmediate(b), 6)};
}
Condition CompareNibbleForm(const CommandBytes& b) {  // GPRM of b1 bits 3-0 against b4-b5
  if (CompareOf(b) == CompareOp::kNone) return {};
  return {CompareOf(b), Operand::Gprm(b[1] & 0x0F), RegisterOrValue(b, CompareImmediate(b), 4)};
}

Link SubInstructionLink(const CommandBytes& b) {
  Link link;
  std::uint8_t op = b[7] & 0x1F;
  link.button = b[6] >> 2;
  static constexpr LinkKind kKinds[17] = {
      LinkKind::kNoLink,    LinkKind::kTopCell,    LinkKind::kNextCell,    LinkKind::kPrevCell,
      LinkKind::kNone,      LinkKind::kTopProgram, LinkKind::kNextProgram, LinkKind::kPrevProgram,
      LinkKind::kNone,      LinkKind::kTopChain,   LinkKind::kNextChain,   LinkKind::kPrevChain,
      LinkKind::kGoUpChain, LinkKind::kTailChain,  LinkKind::kNone,        LinkKind::kNone,
      LinkKind::kResume};
  link.kind = op <= 16 ? kKinds[op] : LinkKind::kNone;
  return link;
}

// The link of b1 bits 3-0 with its fields in b6 and b7 (types 1, 2 and 3).
Link LinkOf(const CommandBytes& b) {
  Link link;
  switch (b[1] & 0x0F) {
    case 1:
      return SubInstructionLink(b);
    case 4:
      link.kind = LinkKind::kChain;
      link.number = ((b[6] & 0x7Fu) << 8) | b[7];
      break;
    case 5:
      link.kind = LinkKind::kPart;
      link.number = ((b[6] & 0x03u) << 8) | b[7];
      link.button = b[6] >> 2;
      break;
    case 6:
      link.kind = LinkKind::kProgram;
      link.number = b[7] & 0x7Fu;
      link.button = b[6] >> 2;
      break;
    case 7:
      link.kind = LinkKind::kCell;
      link.number = b[7];
      link.button = b[6] >> 2;
      break;
    default:
      break;
  }
  return link;
}

// Jumps and calls in system space: b5 bits 7-6 say where.
Link SystemSpaceLink(const CommandBytes& b, bool call) {
  Link link;
  std::uint8_t mode = b[5] >> 6;
  link.menu = b[5] & 0x0F;
  if (call) link.resume_cell = b[4];
  switch (mode) {
    case 0:
      link.kind = call ? LinkKind::kCallFirstPlay : LinkKind::kJumpFirstPlay;
      break;
    case 1:
      link.kind = call ? LinkKind::kCallVmgMenu : LinkKind::kJumpVmgMenu;
      break;
    case 2:
      link.kind = call ? LinkKind::kCallVtsMenu : LinkKind::kJumpVtsMenu;
      if (!call) {
        link.title_set = b[4];
        link.title = b[3];
      }
      break;
    default:
      link.kind = call ? LinkKind::kCallVmgChain : LinkKind::kJumpVmgChain;
      link.number = ((b[2] & 0x7Fu) << 8) | b[3];
      break;
  }
  return link;
}

Link JumpOf(const CommandBytes& b) {
  Link link;
  switch (b[1] & 0x0F) {
    case 1:
      link.kind = LinkKind::kExit;
      break;
    case 2:
      link.kind = LinkKind::kJumpTitle;
      link.number = b[5] & 0x7F;
      break;
    case 3:
      link.kind = LinkKind::kJumpVtsTitle;
      link.number = b[5] & 0x7F;
      break;
    case 5:
      link.kind = LinkKind::kJumpVtsPart;
      link.title = b[5] & 0x7F;
      link.number = ((b[2] & 0x03u) << 8) | b[3];
      break;
    case 6:
      return SystemSpaceLink(b, false);
    case 8:
      return SystemSpaceLink(b, true);
    default:
      break;
  }
  return link;
}

void DecodeSpecial(const CommandBytes& b, Instruction& in) {
  in.condition = CompareRegisterWithValue(b);
  switch (b[1] & 0x0F) {
    case 1:
      in.special = Special::kGoto;
      in.line = b[7];
      break;
    case 2:
      in.special = Special::kBreak;
      break;
    case 3:
      in.special = Special::kSetTmpPml;
      in.line = b[7];
      in.parental = b[6] & 0x0F;
      break;
    default:
      in.special = Special::kNop;
      break;
  }
}

void DecodeSystemSet(const CommandBytes& b, Instruction& in) {
  in.condition = CompareRegisters(b);
  SystemSet& s = in.system;
  bool immediate = SetImmediate(b);
  switch (b[0] & 0x0F) {
    case 1:  // SetSTN: audio in b3, sub-picture in b4, angle in b5, each with a present bit
      s.kind = SystemSet::Kind::kStreams;
      for (int i = 0; i < 3; ++i) {
        std::uint8_t byte = b[3 + i];
        s.stream_present[i] = (byte & 0x80) != 0;
        s.streams[i] = immediate ? Operand::Immediate(byte & 0x7F) : Operand::Gprm(byte & 0x0F);
      }
      break;
    case 2:  // SetNVTMR
      s.kind = SystemSet::Kind::kNavigationTimer;
      s.value = RegisterOrValue(b, immediate, 2);
      s.timer_pgc = static_cast<std::uint16_t>(((b[6] & 0x7F) << 8) | b[7]);
      break;
    case 3:  // SetGPRMMD
      s.kind = SystemSet::Kind::kGprmMode;
      s.value = RegisterOrValue(b, immediate, 2);
      s.gprm = b[5] & 0x0F;
      s.counter = (b[5] & 0x80) != 0;
      break;
    case 6:  // SetHL_BTNN
      s.kind = SystemSet::Kind::kHighlight;
      s.value = RegisterOrValue(b, immediate, 4);
      break;
    default:
      break;
  }
  in.link = LinkOf(b);
}

GprmSet SetOf(const CommandBytes& b, std::uint8_t target, std::uint8_t swap, Operand source) {
  std::uint8_t op = b[0] & 0x0F;
  GprmSet set;
  set.op = op <= 11 ? static_cast<SetOp>(op) : SetOp::kNone;
  set.target = target;
  set.swap = swap;
  set.source = source;
  return set;
}

// Types 4 to 6: the set names its GPRM in b1 bits 3-0, its value in b2-b3; the link is a
// sub-instruction in b6-b7.
void DecodeCompareSetLink(const CommandBytes& b, Instruction& in) {
  in.set = SetOf(b, b[1] & 0x0F, b[3] & 0x0F, RegisterOrValue(b, SetImmediate(b), 2));
  in.condition = CompareNibbleForm(b);
  in.link = SubInstructionLink(b);
  in.set_before_compare = in.type == 4;
  in.link_always = in.type == 6;
}

}  // namespace

Instruction Decode(const CommandBytes& b) {
  Instruction in;
  in.type = b[0] >> 5;
  switch (in.type) {
    case 0:
      DecodeSpecial(b, in);
      break;
    case 1:
      if (b[0] & 0x10) {
        in.condition = CompareRegisters(b);
        in.link = JumpOf(b);
      } else {
        in.condition = CompareRegisterWithValue(b);
        in.link = LinkOf(b);
      }
      break;
    case 2:
      DecodeSystemSet(b, in);
      break;
    case 3:
      in.condition = CompareSetForm(b);
      in.set = SetOf(b, b[3] & 0x0F, b[5] & 0x0F, RegisterOrValue(b, SetImmediate(b), 4));
      in.link = LinkOf(b);
      break;
    case 4:
    case 5:
    case 6:
      DecodeCompareSetLink(b, in);
      break;
    default:
      in.unknown = true;
      break;
  }
  return in;
}

const char* MenuName(std::uint8_t menu) {
  static constexpr const char* kNames[] = {"title menu", "root menu",  "sub-picture menu",
                                           "audio menu", "angle menu", "chapter menu"};
  return menu >= 2 && menu <= 7 ? kNames[menu - 2] : "menu";
}

std::string OperandText(const Operand& operand) {
  switch (operand.kind) {
    case Operand::Kind::kGprm:
      return Format("GPRM%d", {operand.value});
    case Operand::Kind::kSprm:
      return Format("SPRM%d", {operand.value});
    case Operand::Kind::kImmediate:
      return Format("%d", {operand.value});
    default:
      return "?";
  }
}

namespace {

const char* CompareText(CompareOp op) {
  static constexpr const char* kOps[] = {"", "&", "==", "!=", ">=", ">", "<=", "<"};
  return kOps[static_cast<int>(op)];
}

const char* SetName(SetOp op) {
  static constexpr const char* kNames[] = {"",    "mov", "swp", "add", "sub", "mul",
                                           "div", "mod", "rnd", "and", "or",  "xor"};
  return kNames[static_cast<int>(op)];
}

std::string ButtonSuffix(std::uint16_t button) {
  return button ? Format(" (button %d)", {button}) : std::string();
}

std::string SubInstructionText(LinkKind kind) {
  switch (kind) {
    case LinkKind::kNoLink:
      return "LinkNoLink";
    case LinkKind::kTopCell:
      return "LinkTopC";
    case LinkKind::kNextCell:
      return "LinkNextC";
    case LinkKind::kPrevCell:
      return "LinkPrevC";
    case LinkKind::kTopProgram:
      return "LinkTopPG";
    case LinkKind::kNextProgram:
      return "LinkNextPG";
    case LinkKind::kPrevProgram:
      return "LinkPrevPG";
    case LinkKind::kTopChain:
      return "LinkTopPGC";
    case LinkKind::kNextChain:
      return "LinkNextPGC";
    case LinkKind::kPrevChain:
      return "LinkPrevPGC";
    case LinkKind::kGoUpChain:
      return "LinkGoUpPGC";
    case LinkKind::kTailChain:
      return "LinkTailPGC";
    default:
      return "RSM";
  }
}

std::string SystemSpaceText(const Link& l) {
  bool call = l.kind >= LinkKind::kCallFirstPlay;
  std::string out = call ? "CallSS " : "JumpSS ";
  switch (l.kind) {
    case LinkKind::kJumpFirstPlay:
    case LinkKind::kCallFirstPlay:
      out += "first play";
      break;
    case LinkKind::kJumpVmgMenu:
    case LinkKind::kCallVmgMenu:
      out += std::string("VMGM ") + MenuName(l.menu);
      break;
    case LinkKind::kJumpVtsMenu:
      out += Format("VTSM %d, title %d, ", {l.title_set, l.title}) + MenuName(l.menu);
      break;
    case LinkKind::kCallVtsMenu:
      out += std::string("VTSM ") + MenuName(l.menu);
      break;
    default:
      out += Format("VMGM PGC %d", {l.number});
      break;
  }
  if (call) out += Format(", resume cell %d", {l.resume_cell});
  return out;
}

}  // namespace

std::string LinkText(const Link& l) {
  switch (l.kind) {
    case LinkKind::kNone:
      return "";
    case LinkKind::kChain:
      return Format("LinkPGCN %d", {l.number});
    case LinkKind::kPart:
      return Format("LinkPTTN %d", {l.number}) + ButtonSuffix(l.button);
    case LinkKind::kProgram:
      return Format("LinkPGN %d", {l.number}) + ButtonSuffix(l.button);
    case LinkKind::kCell:
      return Format("LinkCN %d", {l.number}) + ButtonSuffix(l.button);
    case LinkKind::kExit:
      return "Exit";
    case LinkKind::kJumpTitle:
      return Format("JumpTT %d", {l.number});
    case LinkKind::kJumpVtsTitle:
      return Format("JumpVTS_TT %d", {l.number});
    case LinkKind::kJumpVtsPart:
      return Format("JumpVTS_PTT %d, %d", {l.title, l.number});
    default:
      if (l.kind >= LinkKind::kJumpFirstPlay) return SystemSpaceText(l);
      return SubInstructionText(l.kind) + ButtonSuffix(l.button);
  }
}

namespace {

std::string SetText(const GprmSet& s) {
  if (s.op == SetOp::kNone) return "";
  Operand target = Operand::Gprm(s.target);
  return std::string(SetName(s.op)) + " " + OperandText(target) + ", " + OperandText(s.source);
}

std::string SystemSetText(const SystemSet& s) {
  switch (s.kind) {
    case SystemSet::Kind::kStreams: {
      static constexpr const char* kNames[] = {"audio", "sub-picture", "angle"};
      std::string out = "SetSTN";
      for (int i = 0; i < 3; ++i) {
        if (s.stream_present[i])
          out += std::string(" ") + kNames[i] + "=" + OperandText(s.streams[i]);
      }
      return out;
    }
    case SystemSet::Kind::kNavigationTimer:
      return "SetNVTMR " + OperandText(s.value) + Format(", PGC %d", {s.timer_pgc});
    case SystemSet::Kind::kGprmMode:
      return Format("SetGPRMMD GPRM%d, ", {s.gprm}) + OperandText(s.value) +
             (s.counter ? ", counter" : ", register");
    case SystemSet::Kind::kHighlight:
      return "SetHL_BTNN " + OperandText(s.value);
    default:
      return "";
  }
}

std::string SpecialText(const Instruction& in) {
  switch (in.special) {
    case Special::kGoto:
      return Format("Goto %d", {in.line});
    case Special::kBreak:
      return "Break";
    case Special::kSetTmpPml:
      return Format("SetTmpPML %d, Goto %d", {in.parental, in.line});
    default:
      return "Nop";
  }
}

void Append(std::string& out, const std::string& part) {
  if (part.empty()) return;
  if (!out.empty()) out += "; ";
  out += part;
}

}  // namespace

std::string InstructionText(const Instruction& in) {
  if (in.unknown) return "unknown command";
  std::string action;
  if (in.type == 0) action = SpecialText(in);
  Append(action, in.type == 2 ? SystemSetText(in.system) : SetText(in.set));
  std::string link = LinkText(in.link);
  if (in.condition.op == CompareOp::kNone) {
    Append(action, link);
    return action.empty() ? "Nop" : action;
  }
  std::string cond = "if (" + OperandText(in.condition.left) + " " + CompareText(in.condition.op) +
                     " " + OperandText(in.condition.right) + ") ";
  if (in.set_before_compare) return SetText(in.set) + "; " + cond + link;
  if (in.link_always) return cond + "{ " + action + " }; " + link;
  Append(action, link);
  return cond + (action.find(';') != std::string::npos ? "{ " + action + " }" : action);
}

}  // namespace tarvex::nav
