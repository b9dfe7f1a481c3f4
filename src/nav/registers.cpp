#include "nav/registers.h"

#include "platform/format.h"

namespace tarvex::nav {

namespace {

std::uint16_t LanguageCode(const std::string& language) {
  unsigned char a = language.size() > 0 ? static_cast<unsigned char>(language[0]) : 0;
  unsigned char b = language.size() > 1 ? static_cast<unsigned char>(language[1]) : 0;
  return static_cast<std::uint16_t>((a << 8) | b);
}

bool Compare(CompareOp op, std::uint16_t a, std::uint16_t b) {
  switch (op) {
    case CompareOp::kAnd:
      return (a & b) != 0;
    case CompareOp::kEq:
      return a == b;
    case CompareOp::kNe:
      return a != b;
    case CompareOp::kGe:
      return a >= b;
    case CompareOp::kGt:
      return a > b;
    case CompareOp::kLe:
      return a <= b;
    case CompareOp::kLt:
      return a < b;
    default:
      return true;
  }
}

std::uint16_t Clamp(std::int64_t value) {
  if (value < 0) return 0;
  return value > 0xFFFF ? 0xFFFF : static_cast<std::uint16_t>(value);
}

// rnd: a number from 1 to range, from a fixed-start generator so that a run can be repeated.
std::uint16_t Random(Registers& r, std::uint16_t range) {
  r.random ^= r.random << 13;
  r.random ^= r.random >> 17;
  r.random ^= r.random << 5;
  if (range == 0) return 1;
  return static_cast<std::uint16_t>(1 + r.random % range);
}

void ApplySet(const GprmSet& s, Registers& r) {
  std::uint16_t data = r.Read(s.source);
  std::int64_t current = r.Gprm(s.target);
  switch (s.op) {
    case SetOp::kMov:
      r.SetGprm(s.target, data);
      break;
    case SetOp::kSwp:
      r.SetGprm(s.swap, static_cast<std::uint16_t>(current));
      r.SetGprm(s.target, data);
      break;
    case SetOp::kAdd:
      r.SetGprm(s.target, Clamp(current + data));
      break;
    case SetOp::kSub:
      r.SetGprm(s.target, Clamp(current - data));
      break;
    case SetOp::kMul:
      r.SetGprm(s.target, Clamp(current * data));
      break;
    // Division by zero gives the largest value, as players do.
    case SetOp::kDiv:
      r.SetGprm(s.target, data ? Clamp(current / data) : 0xFFFF);
      break;
    case SetOp::kMod:
      r.SetGprm(s.target, data ? Clamp(current % data) : 0xFFFF);
      break;
    case SetOp::kRnd:
      r.SetGprm(s.target, Random(r, data));
      break;
    case SetOp::kAnd:
      r.SetGprm(s.target, Clamp(current & data));
      break;
    case SetOp::kOr:
      r.SetGprm(s.target, Clamp(current | data));
      break;
    case SetOp::kXor:
      r.SetGprm(s.target, Clamp(current ^ data));
      break;
    default:
      break;
  }
}

void ApplySystemSet(const SystemSet& s, Registers& r) {
  switch (s.kind) {
    case SystemSet::Kind::kStreams:
      for (int i = 0; i < 3; ++i) {
        if (s.stream_present[i]) r.sprm[1 + i] = r.Read(s.streams[i]);
      }
      break;
    case SystemSet::Kind::kNavigationTimer:
      r.sprm[9] = r.Read(s.value);
      r.sprm[10] = s.timer_pgc;
      r.timer_counted = 0;
      break;
    case SystemSet::Kind::kGprmMode: {
      std::uint16_t value = r.Read(s.value);
      r.counter[s.gprm] = s.counter;
      r.SetGprm(s.gprm, value);
      break;
    }
    case SystemSet::Kind::kHighlight:
      r.sprm[8] = r.Read(s.value);
      break;
    default:
      break;
  }
}

}  // namespace

Registers Registers::PowerOn(const std::string& language, unsigned region) {
  Registers r;
  std::uint16_t code = LanguageCode(language);
  r.sprm[0] = code;  // menu language
  r.sprm[1] = 15;    // audio stream: none chosen yet
  r.sprm[2] = 62;    // sub-picture stream: none, not shown
  r.sprm[3] = 1;     // angle
  r.sprm[4] = 1;     // title
  r.sprm[5] = 1;     // title in its title set
  r.sprm[7] = 1;     // part of title
  r.Highlight(1);
  r.sprm[12] = static_cast<std::uint16_t>(('U' << 8) | 'S');  // parental country
  r.sprm[13] = 15;                                            // parental level
  r.sprm[14] = 0x100;                                         // video preference
  r.sprm[16] = code;                                          // audio language
  r.sprm[18] = code;                                          // sub-picture language
  r.sprm[20] = static_cast<std::uint16_t>(region >= 1 && region <= 8 ? 1u << (region - 1) : 1u);
  return r;
}

std::uint16_t Registers::Gprm(unsigned n) const {
  n &= 0x0F;
  if (!counter[n]) return gprm[n];
  return static_cast<std::uint16_t>(gprm[n] + counted[n] / kTicksPerSecond);
}

void Registers::SetGprm(unsigned n, std::uint16_t value) {
  n &= 0x0F;
  gprm[n] = value;
  counted[n] = 0;
}

std::uint16_t Registers::Read(const Operand& operand) const {
  switch (operand.kind) {
    case Operand::Kind::kGprm:
      return Gprm(operand.value);
    case Operand::Kind::kSprm:
      return Sprm(operand.value);
    case Operand::Kind::kImmediate:
      return operand.value;
    default:
      return 0;
  }
}

bool Registers::Advance(std::uint64_t ticks) {
  for (std::size_t n = 0; n < counter.size(); ++n) {
    if (counter[n]) counted[n] += ticks;
  }
  if (sprm[9] == 0) return false;
  timer_counted += ticks;
  std::uint64_t seconds = timer_counted / kTicksPerSecond;
  timer_counted %= kTicksPerSecond;
  if (seconds < sprm[9]) {
    sprm[9] = static_cast<std::uint16_t>(sprm[9] - seconds);
    return false;
  }
  sprm[9] = 0;
  return true;
}

Outcome Execute(const Instruction& in, Registers& r) {
  Outcome out;
  if (in.unknown) return out;
  if (in.set_before_compare) ApplySet(in.set, r);
  out.condition = Compare(in.condition.op, r.Read(in.condition.left), r.Read(in.condition.right));
  switch (in.type) {
    case 0:
      if (!out.condition) break;
      if (in.special == Special::kSetTmpPml) r.sprm[13] = in.parental;
      if (in.special == Special::kGoto || in.special == Special::kSetTmpPml)
        out.goto_line = in.line;
      out.break_out = in.special == Special::kBreak;
      break;
    case 2:
      if (out.condition) ApplySystemSet(in.system, r);
      break;
    case 3:
    case 5:
    case 6:
      if (out.condition) ApplySet(in.set, r);
      break;
    default:
      break;
  }
  bool linked = in.link.kind != LinkKind::kNone && (out.condition || in.link_always);
  if (linked) out.link = in.link;
  return out;
}

std::string RegisterChanges(const Registers& before, const Registers& after) {
  std::string out;
  for (unsigned n = 0; n < 16; ++n) {
    if (before.Gprm(n) != after.Gprm(n) || before.counter[n] != after.counter[n]) {
      if (!out.empty()) out += ' ';
      out += Format("GPRM%d=%d", {n, after.Gprm(n)});
      if (before.counter[n] != after.counter[n])
        out += after.counter[n] ? "(counter)" : "(register)";
    }
  }
  for (unsigned n = 0; n < 24; ++n) {
    if (before.sprm[n] != after.sprm[n]) {
      if (!out.empty()) out += ' ';
      out += Format("SPRM%d=%d", {n, after.sprm[n]});
    }
  }
  return out;
}

}  // namespace tarvex::nav
