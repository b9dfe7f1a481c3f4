// Navigation commands decoded and executed, each against register states computed by hand
// from the command's bytes.
#include "nav/instruction.h"

#include <gtest/gtest.h>

#include "nav/registers.h"

namespace tarvex::nav {
namespace {

Registers Fresh() {
  return Registers::PowerOn("en", 1);
}

Outcome Exec(const CommandBytes& bytes, Registers& r) {
  return Execute(Decode(bytes), r);
}

TEST(NavInstruction, MovImmediateSetsTheGprm) {
  // 0x71: type 3 (set), immediate, mov; b3 GPRM0; b4-b5 the value 5.
  Registers r = Fresh();
  Outcome out = Exec({0x71, 0x00, 0x00, 0x00, 0x00, 0x05, 0x00, 0x00}, r);
  EXPECT_EQ(r.Gprm(0), 5);
  EXPECT_FALSE(out.link);
  EXPECT_EQ(InstructionText(Decode({0x71, 0, 0, 0, 0, 5, 0, 0})), "mov GPRM0, 5");
}

TEST(NavInstruction, AddRegisterToRegister) {
  // 0x63: set, register source, add; target GPRM1 (b3), source GPRM0 (b5).
  Registers r = Fresh();
  r.SetGprm(0, 5);
  r.SetGprm(1, 10);
  Exec({0x63, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x00}, r);
  EXPECT_EQ(r.Gprm(1), 15);
  EXPECT_EQ(r.Gprm(0), 5);
}

TEST(NavInstruction, ArithmeticClampsAndDivisionByZeroGivesTheLargestValue) {
  Registers r = Fresh();
  Exec({0x74, 0, 0, 0x01, 0x00, 0x05, 0, 0}, r);  // sub GPRM1, 5 from 0
  EXPECT_EQ(r.Gprm(1), 0);
  r.SetGprm(2, 0xFFFF);
  Exec({0x73, 0, 0, 0x02, 0x00, 0x01, 0, 0}, r);  // add GPRM2, 1
  EXPECT_EQ(r.Gprm(2), 0xFFFF);
  r.SetGprm(3, 7);
  Exec({0x76, 0, 0, 0x03, 0x00, 0x00, 0, 0}, r);  // div GPRM3, 0
  EXPECT_EQ(r.Gprm(3), 0xFFFF);
  r.SetGprm(4, 300);
  Exec({0x75, 0, 0, 0x04, 0x01, 0x00, 0, 0}, r);  // mul GPRM4, 256
  EXPECT_EQ(r.Gprm(4), 0xFFFF);
  r.SetGprm(5, 17);
  Exec({0x77, 0, 0, 0x05, 0x00, 0x05, 0, 0}, r);  // mod GPRM5, 5
  EXPECT_EQ(r.Gprm(5), 2);
}

TEST(NavInstruction, BitOperations) {
  Registers r = Fresh();
  r.SetGprm(0, 0x0C);
  Exec({0x79, 0, 0, 0x00, 0x00, 0x0A, 0, 0}, r);  // and GPRM0, 0x0A
  EXPECT_EQ(r.Gprm(0), 0x08);
  Exec({0x7A, 0, 0, 0x00, 0x00, 0x03, 0, 0}, r);  // or GPRM0, 3
  EXPECT_EQ(r.Gprm(0), 0x0B);
  Exec({0x7B, 0, 0, 0x00, 0x00, 0x0F, 0, 0}, r);  // xor GPRM0, 0x0F
  EXPECT_EQ(r.Gprm(0), 0x04);
}

TEST(NavInstruction, SwapExchangesTwoGprms) {
  // 0x62: set, register source, swp; target GPRM1 (b3), the other GPRM2 (b5).
  Registers r = Fresh();
  r.SetGprm(1, 7);
  r.SetGprm(2, 9);
  Exec({0x62, 0x00, 0x00, 0x01, 0x00, 0x02, 0x00, 0x00}, r);
  EXPECT_EQ(r.Gprm(1), 9);
  EXPECT_EQ(r.Gprm(2), 7);
}

TEST(NavInstruction, RandomStaysWithinItsRange) {
  Registers r = Fresh();
  for (int i = 0; i < 50; ++i) {
    Exec({0x78, 0, 0, 0x06, 0x00, 0x03, 0, 0}, r);  // rnd GPRM6, 3
    EXPECT_GE(r.Gprm(6), 1);
    EXPECT_LE(r.Gprm(6), 3);
  }
}

TEST(NavInstruction, ConditionalLinkTakesItsLinkOnlyWhenTheComparisonHolds) {
  // Link (type 1), b1: immediate compare, ==, LinkPGCN; GPRM1 (b3) against 5; PGC 3.
  CommandBytes bytes{0x20, 0xA4, 0x00, 0x01, 0x00, 0x05, 0x00, 0x03};
  Registers r = Fresh();
  r.SetGprm(1, 5);
  Outcome out = Exec(bytes, r);
  ASSERT_TRUE(out.link);
  EXPECT_EQ(out.link->kind, LinkKind::kChain);
  EXPECT_EQ(out.link->number, 3u);
  r.SetGprm(1, 4);
  EXPECT_FALSE(Exec(bytes, r).link);
  EXPECT_EQ(InstructionText(Decode(bytes)), "if (GPRM1 == 5) LinkPGCN 3");
}

TEST(NavInstruction, CompareAndTestsCommonBits) {
  // Goto 2 if GPRM0 & 2.
  CommandBytes bytes{0x00, 0x91, 0x00, 0x00, 0x00, 0x02, 0x00, 0x02};
  Registers r = Fresh();
  r.SetGprm(0, 6);
  EXPECT_EQ(Exec(bytes, r).goto_line, 2u);
  r.SetGprm(0, 5);
  EXPECT_EQ(Exec(bytes, r).goto_line, 0u);
}

TEST(NavInstruction, GotoBreakAndTemporaryParentalLevel) {
  Registers r = Fresh();
  EXPECT_EQ(Exec({0x00, 0x01, 0, 0, 0, 0, 0, 0x03}, r).goto_line, 3u);
  EXPECT_TRUE(Exec({0x00, 0x02, 0, 0, 0, 0, 0, 0}, r).break_out);
  Outcome out = Exec({0x00, 0x03, 0, 0, 0, 0, 0x04, 0x02}, r);  // SetTmpPML 4, goto 2
  EXPECT_EQ(r.sprm[13], 4);
  EXPECT_EQ(out.goto_line, 2u);
}

TEST(NavInstruction, JumpsAndCallsInSystemSpace) {
  Instruction tt = Decode({0x30, 0x02, 0, 0, 0, 0x02, 0, 0});
  EXPECT_EQ(tt.link.kind, LinkKind::kJumpTitle);
  EXPECT_EQ(tt.link.number, 2u);
  // JumpSS VTSM: b3 the VTS title 1, b4 title set 1, b5 mode 2 (0x80) and root menu 3.
  Instruction vtsm = Decode({0x30, 0x06, 0x00, 0x01, 0x01, 0x83, 0, 0});
  EXPECT_EQ(vtsm.link.kind, LinkKind::kJumpVtsMenu);
  EXPECT_EQ(vtsm.link.title_set, 1u);
  EXPECT_EQ(vtsm.link.title, 1u);
  EXPECT_EQ(vtsm.link.menu, 3);
  EXPECT_EQ(InstructionText(vtsm), "JumpSS VTSM 1, title 1, root menu");
  // CallSS VTSM root menu, resume at cell 2 (b4).
  Instruction call = Decode({0x30, 0x08, 0x00, 0x00, 0x02, 0x83, 0, 0});
  EXPECT_EQ(call.link.kind, LinkKind::kCallVtsMenu);
  EXPECT_EQ(call.link.resume_cell, 2);
  // JumpSS VMGM PGC 5 (mode 3: 0xC0), JumpVTS_PTT title 1 part 3.
  EXPECT_EQ(Decode({0x30, 0x06, 0x00, 0x05, 0, 0xC0, 0, 0}).link.kind, LinkKind::kJumpVmgChain);
  Instruction ptt = Decode({0x30, 0x05, 0x00, 0x03, 0x00, 0x01, 0, 0});
  EXPECT_EQ(ptt.link.kind, LinkKind::kJumpVtsPart);
  EXPECT_EQ(ptt.link.title, 1u);
  EXPECT_EQ(ptt.link.number, 3u);
  EXPECT_EQ(Decode({0x30, 0x01, 0, 0, 0, 0, 0, 0}).link.kind, LinkKind::kExit);
}

TEST(NavInstruction, SubInstructionLinksCarryTheirButton) {
  // LinkTailPGC highlighting button 2 (b6 = 2 << 2), and RSM.
  Instruction tail = Decode({0x20, 0x01, 0, 0, 0, 0, 0x08, 0x0D});
  EXPECT_EQ(tail.link.kind, LinkKind::kTailChain);
  EXPECT_EQ(tail.link.button, 2);
  EXPECT_EQ(Decode({0x20, 0x01, 0, 0, 0, 0, 0, 0x10}).link.kind, LinkKind::kResume);
}

TEST(NavInstruction, SystemSetsOfStreamsHighlightAndTimer) {
  Registers r = Fresh();
  // SetSTN: audio 2 (b3, present bit), angle 1 (b5); no sub-picture.
  Exec({0x51, 0x00, 0x00, 0x82, 0x00, 0x81, 0, 0}, r);
  EXPECT_EQ(r.sprm[1], 2);
  EXPECT_EQ(r.sprm[2], 62);
  EXPECT_EQ(r.sprm[3], 1);
  // SetHL_BTNN 2048: button 2.
  Exec({0x56, 0x00, 0x00, 0x00, 0x08, 0x00, 0, 0}, r);
  EXPECT_EQ(r.highlighted_button(), 2);
  // SetNVTMR 5 s, chain 4.
  Exec({0x52, 0x00, 0x00, 0x05, 0x00, 0x00, 0x00, 0x04}, r);
  EXPECT_EQ(r.sprm[9], 5);
  EXPECT_EQ(r.sprm[10], 4);
  EXPECT_FALSE(r.Advance(4 * kTicksPerSecond));
  EXPECT_EQ(r.sprm[9], 1);
  EXPECT_TRUE(r.Advance(kTicksPerSecond));
}

TEST(NavInstruction, CounterModeGprmCountsPlaybackSeconds) {
  // SetGPRMMD: value 10 (b2-b3), GPRM3 in counter mode (b5 bit 7).
  Registers r = Fresh();
  Exec({0x53, 0x00, 0x00, 0x0A, 0x00, 0x83, 0, 0}, r);
  EXPECT_TRUE(r.counter[3]);
  EXPECT_EQ(r.Gprm(3), 10);
  r.Advance(kTicksPerSecond * 5 / 2);
  EXPECT_EQ(r.Gprm(3), 12);
  r.SetGprm(3, 0);
  EXPECT_EQ(r.Gprm(3), 0);
}

TEST(NavInstruction, SetThenCompareThenLink) {
  // Type 4: mov GPRM1, 7 (b1 low nibble, b2-b3), then GPRM1 == 7 (b4-b5): LinkNextPGC.
  Registers r = Fresh();
  Outcome out = Exec({0x91, 0xA1, 0x00, 0x07, 0x00, 0x07, 0x00, 0x0A}, r);
  EXPECT_EQ(r.Gprm(1), 7);
  ASSERT_TRUE(out.link);
  EXPECT_EQ(out.link->kind, LinkKind::kNextChain);
}

TEST(NavInstruction, CompareThenSetAndLink) {
  // Type 5: only when GPRM1 == 7 does it set and link; type 6 links whatever.
  Registers r = Fresh();
  Outcome five = Exec({0xB1, 0xA1, 0x00, 0x09, 0x00, 0x07, 0x00, 0x0A}, r);
  EXPECT_EQ(r.Gprm(1), 0);
  EXPECT_FALSE(five.link);
  Outcome six = Exec({0xD1, 0xA1, 0x00, 0x09, 0x00, 0x07, 0x00, 0x0A}, r);
  EXPECT_EQ(r.Gprm(1), 0);
  ASSERT_TRUE(six.link);
  r.SetGprm(1, 7);
  Exec({0xB1, 0xA1, 0x00, 0x09, 0x00, 0x07, 0x00, 0x0A}, r);
  EXPECT_EQ(r.Gprm(1), 9);
}

TEST(NavInstruction, SetWithALinkAndAComparison) {
  // Type 3: if (GPRM2 == 2) { mov GPRM0, 3; LinkCN 2 } - compare b2 against b6-b7, which
  // also hold the link's cell.
  CommandBytes bytes{0x71, 0xA7, 0x02, 0x00, 0x00, 0x03, 0x00, 0x02};
  Registers r = Fresh();
  Outcome out = Exec(bytes, r);
  EXPECT_FALSE(out.link);
  EXPECT_EQ(r.Gprm(0), 0);
  bytes[1] = 0x07;  // no comparison: always
  out = Exec(bytes, r);
  ASSERT_TRUE(out.link);
  EXPECT_EQ(out.link->kind, LinkKind::kCell);
  EXPECT_EQ(out.link->number, 2u);
  EXPECT_EQ(r.Gprm(0), 3);
}

TEST(NavInstruction, UnknownTypeIsMarked) {
  EXPECT_TRUE(Decode({0xE0, 0, 0, 0, 0, 0, 0, 0}).unknown);
  EXPECT_EQ(InstructionText(Decode({0xE0, 0, 0, 0, 0, 0, 0, 0})), "unknown command");
}

TEST(NavRegisters, PowerOnStateFollowsTheOptions) {
  Registers r = Registers::PowerOn("fr", 2);
  EXPECT_EQ(r.sprm[0], ('f' << 8) | 'r');
  EXPECT_EQ(r.sprm[16], ('f' << 8) | 'r');
  EXPECT_EQ(r.sprm[18], ('f' << 8) | 'r');
  EXPECT_EQ(r.sprm[13], 15);
  EXPECT_EQ(r.sprm[20], 2);
  EXPECT_EQ(r.highlighted_button(), 1);
  for (unsigned n = 0; n < 16; ++n) EXPECT_EQ(r.Gprm(n), 0);
}

}  // namespace
}  // namespace tarvex::nav
