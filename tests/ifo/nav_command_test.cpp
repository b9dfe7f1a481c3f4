#include "ifo/nav_command.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace tarvex {
namespace {

std::string Describe(std::vector<std::uint8_t> bytes) {
  return DescribeNavCommand(ByteView(bytes));
}

// --- group 0 ---

TEST(NavCommand, AllZeroBytesAreNoOperation) {
  EXPECT_EQ(Describe({0, 0, 0, 0, 0, 0, 0, 0}), " No Operation");
}

TEST(NavCommand, GroupZeroWithAnyNonZeroByteIsIllegal) {
  EXPECT_EQ(Describe({0, 0, 0, 0, 0, 0, 0, 1}), " Illegal command");
  EXPECT_EQ(Describe({0x0F, 0, 0, 0, 0, 0, 0, 0}), " Illegal command");
  EXPECT_EQ(Describe({0x00, 0x30, 0, 0, 0, 0, 0, 0}), " Illegal command");
}

// --- link group ---

TEST(NavCommand, LinkToPgcHasTwoBlanksBetweenGroupWordAndDetail) {
  EXPECT_EQ(Describe({0x20, 0x04, 0, 0, 0, 0, 0, 0x05}), " Lnk  to PGC 5");
}

TEST(NavCommand, LinkToPgcUsesSixBitsOfB6AsHighByte) {
  // (0xFF & 0x3F) << 8 | 0x01 = 0x3F01 = 16129.
  EXPECT_EQ(Describe({0x20, 0x04, 0, 0, 0, 0, 0xFF, 0x01}), " Lnk  to PGC 16129");
}

TEST(NavCommand, LinkSubInstruction) {
  EXPECT_EQ(Describe({0x20, 0x01, 0, 0, 0, 0, 0, 0}),
            " Lnk  SIns (additional parameters not decoded)");
}

TEST(NavCommand, LinkToPttWithHighlight) {
  // b6 = 0x0D: highlight 0x0D >> 2 = 3, PTT (1 << 8) | 2 = 258.
  EXPECT_EQ(Describe({0x20, 0x05, 0, 0, 0, 0, 0x0D, 0x02}), " Lnk  to PTT 258 Highlight: 3");
}

TEST(NavCommand, LinkToPttWithoutHighlightEndsInBlank) {
  EXPECT_EQ(Describe({0x20, 0x05, 0, 0, 0, 0, 0x03, 0x07}), " Lnk  to PTT 775 ");
}

TEST(NavCommand, LinkToProgramWithHighlight) {
  EXPECT_EQ(Describe({0x20, 0x06, 0, 0, 0, 0, 0x04, 0x02}),
            " Lnk  to Program 2 this PGC, Highlight: 1");
}

TEST(NavCommand, LinkToProgramKeepsSevenBitsOfB7) {
  EXPECT_EQ(Describe({0x20, 0x06, 0, 0, 0, 0, 0x03, 0x85}), " Lnk  to Program 5 this PGC");
}

TEST(NavCommand, LinkToCellWithAndWithoutHighlight) {
  EXPECT_EQ(Describe({0x20, 0x07, 0, 0, 0, 0, 0xFC, 0x85}),
            " Lnk  to Cell 133 this PGC, Highlight: 63");
  EXPECT_EQ(Describe({0x20, 0x07, 0, 0, 0, 0, 0x00, 0x09}), " Lnk  to Cell 9 this PGC");
}

TEST(NavCommand, OtherLinkSubtypesStayBareGroupWord) {
  for (std::uint8_t sub : {0, 2, 3, 8, 9, 10, 11, 12, 13, 14, 15}) {
    EXPECT_EQ(Describe({0x20, sub, 1, 2, 3, 4, 5, 6}), " Lnk ") << int{sub};
  }
}

TEST(NavCommand, LinkWithCompareFlag) {
  EXPECT_EQ(Describe({0x20, 0x10, 0, 0, 0, 0, 0, 0}), " CmpLnk ");
  EXPECT_EQ(Describe({0x20, 0xF4, 0, 0, 0, 0, 0, 5}), " CmpLnk ");
}

TEST(NavCommand, LowNibbleOfFirstByteIsIgnored) {
  EXPECT_EQ(Describe({0x2F, 0x04, 0, 0, 0, 0, 0, 0x05}), " Lnk  to PGC 5");
  EXPECT_EQ(Describe({0x3A, 0x01, 0, 0, 0, 0, 0, 0}), " Jmp to Exit");
}

// --- jump group ---

TEST(NavCommand, JumpWithCompareFlag) {
  EXPECT_EQ(Describe({0x30, 0x10, 0, 0, 0, 0, 0, 0}), " CmpJmp ");
}

TEST(NavCommand, JumpToExit) {
  EXPECT_EQ(Describe({0x30, 0x01, 0, 0, 0, 0, 0, 0}), " Jmp to Exit");
}

TEST(NavCommand, JumpToVts) {
  EXPECT_EQ(Describe({0x30, 0x02, 0, 0, 0, 0x03, 0, 0}), " Jmp to VTS 3");
}

TEST(NavCommand, JumpToThisVtsTitle) {
  EXPECT_EQ(Describe({0x30, 0x03, 0, 0, 0, 0xC8, 0, 0}), " Jmp to This VTS Title 200");
}

TEST(NavCommand, JumpToPartOfTitle) {
  EXPECT_EQ(Describe({0x30, 0x05, 0x00, 0x01, 0x00, 0x02, 0, 0}),
            " Jmp to This VTS Title 2 Part of Title 1");
}

TEST(NavCommand, JumpPartOfTitleHighBitsAreShiftedByTen) {
  EXPECT_EQ(Describe({0x30, 0x05, 0x01, 0x00, 0x00, 0x02, 0, 0}),
            " Jmp to This VTS Title 2 Part of Title 1024");
  // Only bits 1..0 of b2 count: 0xFF & 3 = 3, 3 << 10 | 5 = 3077.
  EXPECT_EQ(Describe({0x30, 0x05, 0xFF, 0x05, 0x00, 0x01, 0, 0}),
            " Jmp to This VTS Title 1 Part of Title 3077");
}

TEST(NavCommand, OtherJumpSubtypesStayBareGroupWord) {
  for (std::uint8_t sub : {0, 4, 7, 9, 10, 11, 12, 13, 14, 15}) {
    EXPECT_EQ(Describe({0x30, sub, 1, 2, 3, 4, 5, 6}), " Jmp ") << int{sub};
  }
}

// --- jump in system space (subtype 6) ---

TEST(NavCommand, JumpInSystemSpaceToVmgmRootMenu) {
  EXPECT_EQ(Describe({0x30, 0x06, 0, 0, 0, 0x43, 0, 0}),
            " JmpInSystemSpace To VMGM Menu Root Menu");
}

TEST(NavCommand, JumpInSystemSpaceToVmgmMenuNamesEveryMenuKind) {
  EXPECT_EQ(Describe({0x30, 0x06, 0, 0, 0, 0x44, 0, 0}),
            " JmpInSystemSpace To VMGM Menu Sub-picture Menu");
  EXPECT_EQ(Describe({0x30, 0x06, 0, 0, 0, 0x45, 0, 0}),
            " JmpInSystemSpace To VMGM Menu Audio Menu");
  EXPECT_EQ(Describe({0x30, 0x06, 0, 0, 0, 0x46, 0, 0}),
            " JmpInSystemSpace To VMGM Menu Angle Menu");
  EXPECT_EQ(Describe({0x30, 0x06, 0, 0, 0, 0x47, 0, 0}), " JmpInSystemSpace To VMGM Menu PTT Menu");
}

TEST(NavCommand, JumpInSystemSpaceOtherMenuKindsAddNothing) {
  EXPECT_EQ(Describe({0x30, 0x06, 0, 0, 0, 0x42, 0, 0}), " JmpInSystemSpace To VMGM Menu ");
  EXPECT_EQ(Describe({0x30, 0x06, 0, 0, 0, 0x48, 0, 0}), " JmpInSystemSpace To VMGM Menu ");
  EXPECT_EQ(Describe({0x30, 0x06, 0, 0, 0, 0x4F, 0, 0}), " JmpInSystemSpace To VMGM Menu ");
}

TEST(NavCommand, JumpInSystemSpaceToTitleSetMenuFollowsTtnWithoutBlank) {
  EXPECT_EQ(Describe({0x30, 0x06, 0, 0x02, 0x01, 0x87, 0, 0}),
            " JmpInSystemSpace To VTS 1 TTN 2PTT Menu");
  EXPECT_EQ(Describe({0x30, 0x06, 0, 0x02, 0x01, 0x80, 0, 0}), " JmpInSystemSpace To VTS 1 TTN 2");
}

TEST(NavCommand, JumpInSystemSpaceToFirstPlayIgnoresMenuKind) {
  EXPECT_EQ(Describe({0x30, 0x06, 0, 0, 0, 0x03, 0, 0}), " JmpInSystemSpace To First Play PGC ");
}

TEST(NavCommand, JumpInSystemSpaceToVmgmPgcIgnoresMenuKind) {
  // (0x81 & 0x7F) << 8 | 0x02 = 258.
  EXPECT_EQ(Describe({0x30, 0x06, 0x81, 0x02, 0, 0xC3, 0, 0}),
            " JmpInSystemSpace To VMGM PGC number 258 ");
}

// --- call in system space (subtype 8) ---

TEST(NavCommand, CallInSystemSpaceFirstPlay) {
  EXPECT_EQ(Describe({0x30, 0x08, 0, 0, 0, 0x03, 0, 0}), " CallInSystemSpace First Play ");
}

TEST(NavCommand, CallInSystemSpaceVmgmTitleMenuIgnoresMenuKind) {
  EXPECT_EQ(Describe({0x30, 0x08, 0, 0, 0, 0x43, 0, 0}), " CallInSystemSpace VMGM Title Menu");
}

TEST(NavCommand, CallInSystemSpaceTitleSetMenu) {
  EXPECT_EQ(Describe({0x30, 0x08, 0, 0, 0, 0x83, 0, 0}), " CallInSystemSpace VTSM Root Menu");
  EXPECT_EQ(Describe({0x30, 0x08, 0, 0, 0, 0x85, 0, 0}), " CallInSystemSpace VTSM Audio Menu");
  EXPECT_EQ(Describe({0x30, 0x08, 0, 0, 0, 0x81, 0, 0}), " CallInSystemSpace VTSM ");
}

TEST(NavCommand, CallInSystemSpaceVmgmPgc) {
  EXPECT_EQ(Describe({0x30, 0x08, 0x00, 0x07, 0x00, 0xC0, 0, 0}),
            " CallInSystemSpace VMGM_DOM PGC number 7 ");
}

// --- other groups ---

TEST(NavCommand, OtherGroupsAreUnsupported) {
  for (std::uint8_t b0 : {0x10, 0x40, 0x50, 0x71, 0x80, 0xFF}) {
    EXPECT_EQ(Describe({b0, 0, 0, 0, 0, 0, 0, 0}), " Unsupported by Kelvane at this time")
        << int{b0};
  }
}

TEST(NavCommand, ShortCommandReadsMissingBytesAsZero) {
  EXPECT_EQ(Describe({}), " No Operation");
  EXPECT_EQ(Describe({0x20, 0x04}), " Lnk  to PGC 0");
}

// --- where a command can send playback ---

NavTarget Target(std::vector<std::uint8_t> bytes) {
  return ReadNavTarget(ByteView(bytes));
}

TEST(NavTarget, GotoAndSetTmpPmlGoToTheLineInB7) {
  // "if (g14 == 2) goto 5": compare operator 2 in b1 bits 6-4, immediate flag in bit 7.
  NavTarget t = Target({0x00, 0xA1, 0x00, 0x0E, 0x00, 0x02, 0x00, 0x05});
  EXPECT_EQ(t.kind, NavTargetKind::kGoto);
  EXPECT_EQ(t.number, 5u);
  EXPECT_TRUE(t.conditional);
  t = Target({0x00, 0x03, 0, 0, 0, 0, 0x02, 0x04});
  EXPECT_EQ(t.kind, NavTargetKind::kGoto);
  EXPECT_EQ(t.number, 4u);
  EXPECT_FALSE(t.conditional);
  EXPECT_EQ(Target({0x00, 0x02, 0, 0, 0, 0, 0, 0}).kind, NavTargetKind::kNone);  // break
  EXPECT_EQ(Target({0, 0, 0, 0, 0, 0, 0, 0}).kind, NavTargetKind::kNone);
}

TEST(NavTarget, LinkChainTakesFifteenBits) {
  // The text reading shows 16129 (six bits of b6); the chain is (0x7F << 8) | 1 = 32513.
  NavTarget t = Target({0x20, 0x04, 0, 0, 0, 0, 0xFF, 0x01});
  EXPECT_EQ(t.kind, NavTargetKind::kLinkChain);
  EXPECT_EQ(t.number, 32513u);
  EXPECT_EQ(t.button, 0u);
}

TEST(NavTarget, LinksWithAComparisonAreFollowed) {
  // "if (g3 == 5) LinkPGCN 2": the comparison takes b3 to b5, the link b6 and b7.
  NavTarget t = Target({0x20, 0xA4, 0x00, 0x03, 0x00, 0x05, 0x00, 0x02});
  EXPECT_EQ(t.kind, NavTargetKind::kLinkChain);
  EXPECT_EQ(t.number, 2u);
  EXPECT_TRUE(t.conditional);
  // "if (g1 < g2) JumpTT 3": a jump compares b6 with b7.
  t = Target({0x30, 0x72, 0, 0, 0, 0x03, 0x01, 0x02});
  EXPECT_EQ(t.kind, NavTargetKind::kJumpTitle);
  EXPECT_EQ(t.number, 3u);
  EXPECT_TRUE(t.conditional);
}

TEST(NavTarget, LinkPartProgramAndCellWithTheirButtons) {
  NavTarget t = Target({0x20, 0x05, 0, 0, 0, 0, 0x0D, 0x02});  // button 3, part 258
  EXPECT_EQ(t.kind, NavTargetKind::kLinkPart);
  EXPECT_EQ(t.number, 258u);
  EXPECT_EQ(t.button, 3u);
  t = Target({0x20, 0x06, 0, 0, 0, 0, 0x04, 0x85});  // button 1, program 5 (seven bits)
  EXPECT_EQ(t.kind, NavTargetKind::kLinkProgram);
  EXPECT_EQ(t.number, 5u);
  EXPECT_EQ(t.button, 1u);
  t = Target({0x20, 0x07, 0, 0, 0, 0, 0x00, 0x85});
  EXPECT_EQ(t.kind, NavTargetKind::kLinkCell);
  EXPECT_EQ(t.number, 133u);
  EXPECT_EQ(Target({0x20, 0x02, 0, 0, 0, 0, 0, 1}).kind, NavTargetKind::kNone);
}

TEST(NavTarget, JumpPartShiftsTheHighBitsByEight) {
  // The text reading shows part 1024; the command set's part is (1 << 8) | 0 = 256.
  NavTarget t = Target({0x30, 0x05, 0x01, 0x00, 0x00, 0x02, 0, 0});
  EXPECT_EQ(t.kind, NavTargetKind::kJumpPartInSet);
  EXPECT_EQ(t.title, 2u);
  EXPECT_EQ(t.number, 256u);
  EXPECT_EQ(Target({0x30, 0x03, 0, 0, 0, 0x04, 0, 0}).number, 4u);
  EXPECT_EQ(Target({0x30, 0x01, 0, 0, 0, 0, 0, 0}).kind, NavTargetKind::kExit);
}

TEST(NavTarget, SystemSpaceJumpsAndCalls) {
  NavTarget t = Target({0x30, 0x06, 0x00, 0x01, 0x01, 0x83, 0, 0});  // VTSM vts 1, tt 1, root
  EXPECT_EQ(t.kind, NavTargetKind::kTitleSetMenu);
  EXPECT_FALSE(t.call);
  EXPECT_EQ(t.title_set, 1u);
  EXPECT_EQ(t.title, 1u);
  EXPECT_EQ(t.menu, 3u);
  t = Target({0x30, 0x08, 0x00, 0x00, 0x01, 0x42, 0, 0});  // VMGM title menu, resume cell 1
  EXPECT_EQ(t.kind, NavTargetKind::kVmgMenu);
  EXPECT_TRUE(t.call);
  EXPECT_EQ(t.menu, 2u);
  EXPECT_EQ(t.resume_cell, 1u);
  t = Target({0x30, 0x08, 0x80, 0x07, 0x00, 0xC0, 0, 0});  // VMGM chain (0 << 8) | 7
  EXPECT_EQ(t.kind, NavTargetKind::kVmgChain);
  EXPECT_EQ(t.number, 7u);
  t = Target({0x30, 0x06, 0, 0, 0, 0x00, 0, 0});
  EXPECT_EQ(t.kind, NavTargetKind::kFirstPlay);
}

TEST(NavTarget, SetsCarryTheirLinkWhenTheyCompareNothing) {
  // "g0 = 0; LinkPTTN 3" (type 3, set operation 1, link subtype 5).
  NavTarget t = Target({0x71, 0x05, 0, 0, 0, 0, 0, 0x03});
  EXPECT_EQ(t.kind, NavTargetKind::kLinkPart);
  EXPECT_EQ(t.number, 3u);
  // "g15 = 2; LinkTailPGC".
  t = Target({0x71, 0x01, 0x00, 0x0F, 0x00, 0x02, 0x00, 0x0D});
  EXPECT_EQ(t.kind, NavTargetKind::kLinkSub);
  EXPECT_EQ(t.sub_instruction, kLinkTailChain);
  // SetSTN with LinkPGCN 3 (type 2, set operation 1).
  t = Target({0x51, 0x04, 0, 0, 0, 0, 0x00, 0x03});
  EXPECT_EQ(t.kind, NavTargetKind::kLinkChain);
  EXPECT_EQ(t.number, 3u);
  // A set with a comparison: b6 and b7 hold the comparison's operand, no link.
  EXPECT_EQ(Target({0x61, 0x34, 0, 0, 0, 0, 0, 0x03}).kind, NavTargetKind::kNone);
}

TEST(NavTarget, SetSystemButtonAndNavigationTimer) {
  // SetHL_BTNN with immediate 0x0400: button 1.
  NavTarget t = Target({0x56, 0x00, 0x00, 0x00, 0x04, 0x00, 0x00, 0x00});
  EXPECT_EQ(t.set_button, 1u);
  EXPECT_EQ(t.kind, NavTargetKind::kNone);
  EXPECT_EQ(Target({0x46, 0x00, 0x00, 0x00, 0x04, 0x00, 0, 0}).set_button, 0u);  // a register
  // SetNVTMR: the chain in b6 and b7, which are then no link.
  t = Target({0x52, 0x04, 0x00, 0x00, 0x00, 0x3C, 0x00, 0x05});
  EXPECT_EQ(t.timer_chain, 5u);
  EXPECT_EQ(t.kind, NavTargetKind::kNone);
}

TEST(NavTarget, TypesFourToSixLinkBySubInstruction) {
  // Type 4: set, then if (g0 == g0) LinkTopC.
  NavTarget t = Target({0x81, 0x20, 0, 0, 0, 0, 0, 0x01});
  EXPECT_EQ(t.kind, NavTargetKind::kLinkSub);
  EXPECT_EQ(t.sub_instruction, kLinkTopCell);
  EXPECT_TRUE(t.conditional);
  // Type 5: if (...) { set; LinkGoUpPGC }.
  t = Target({0xA1, 0x20, 0, 0, 0, 0, 0, 0x0C});
  EXPECT_EQ(t.sub_instruction, kLinkGoUpChain);
  EXPECT_TRUE(t.conditional);
  // Type 6: if (...) set; then LinkNextPGC with button 40 whatever the comparison gives.
  t = Target({0xC1, 0x20, 0, 0, 0, 0, 0xA0, 0x0A});
  EXPECT_EQ(t.sub_instruction, kLinkNextChain);
  EXPECT_EQ(t.button, 40u);
  EXPECT_FALSE(t.conditional);
  EXPECT_EQ(Target({0xE0, 0x04, 0, 0, 0, 0, 0, 1}).kind, NavTargetKind::kNone);  // type 7
}

TEST(NavTarget, ShortCommandReadsMissingBytesAsZero) {
  NavTarget t = Target({0x20, 0x04});
  EXPECT_EQ(t.kind, NavTargetKind::kLinkChain);
  EXPECT_EQ(t.number, 0u);
}

}  // namespace
}  // namespace tarvex
