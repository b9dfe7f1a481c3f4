#include "ifo/source.h"

#include <gtest/gtest.h>

#include "ifo/table.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;

TEST(IfoSourceTest, DollarValueCountsAsMissingStatement) {
  Fixture f;
  f.ctx->convert.source_path = f.dir.file("a.ini");
  test::WriteFileBytes(f.ctx->convert.source_path,
                       {'[', 's', ']', '\n', 'k', '=', '$', '\n', 'j', '=', '$', '1', '\n'});
  std::string value;
  EXPECT_FALSE(ReadSourceValue(*f.ctx, "s", "k", value));
  EXPECT_FALSE(ReadSourceValue(*f.ctx, "s", "j", value));  // a present value beginning with $
  EXPECT_FALSE(ReadSourceValue(*f.ctx, "s", "absent", value));
}

TEST(IfoSourceTest, PresentValueIsReadWithCaseInsensitiveSectionAndKey) {
  Fixture f;
  f.ctx->convert.source_path = f.dir.file("a.ini");
  test::WriteFileBytes(f.ctx->convert.source_path,
                       {'[', 'V', 'm', 'g', ']', '\n', 'K', 'e', 'Y', '=', '1', '2', '\n'});
  std::string value;
  ASSERT_TRUE(ReadSourceValue(*f.ctx, "vmg", "key", value));
  EXPECT_EQ(value, "12");
}

TEST(IfoSourceTest, WrittenValueEndsAtItsFirstZeroByte) {
  Fixture f;
  f.ctx->convert.source_path = f.dir.file("a.ini");
  WriteSourceValue(*f.ctx, "s", "k", std::string_view("ab\0cd", 5));
  std::string value;
  ASSERT_TRUE(ReadSourceValue(*f.ctx, "s", "k", value));
  EXPECT_EQ(value, "ab");
}

TEST(IfoSourceTest, HexByteReadsTwoCharactersEitherCase) {
  EXPECT_EQ(ParseHexByte("1c"), 0x1C);
  EXPECT_EQ(ParseHexByte("Af"), 0xAF);
  EXPECT_EQ(ParseHexByte("FFFF"), 0xFF);  // exactly two characters
}

TEST(IfoSourceTest, HexDigitThatIsNotHexCountsZeroButKeepsItsPlace) {
  EXPECT_EQ(ParseHexByte("g1"), 0x01);
  EXPECT_EQ(ParseHexByte("1g"), 0x10);
  EXPECT_EQ(ParseHexWord("1z34"), 0x1034);
}

TEST(IfoSourceTest, PositionsBeyondTheEndReadZero) {
  EXPECT_EQ(ParseHexByte("1"), 0x10);
  EXPECT_EQ(ParseHexWord("12"), 0x1200);
  EXPECT_EQ(ParseHexBytes("x0102", 4), (std::vector<std::uint8_t>{1, 2, 0, 0}));
}

TEST(IfoSourceTest, ByteStringWithoutLeadingXIsReadFromItsFirstCharacter) {
  EXPECT_EQ(ParseHexBytes("0a0b", 2), (std::vector<std::uint8_t>{0x0A, 0x0B}));
  EXPECT_EQ(ParseHexBytes("x0a0b", 2), (std::vector<std::uint8_t>{0x0A, 0x0B}));
}

TEST(IfoSourceTest, HexValueSkipsOneLeadingXAndTakesDigitsAndLetters) {
  EXPECT_EQ(ParseHexValue("x0000000F"), 15u);
  EXPECT_EQ(ParseHexValue("0000000F"), 15u);
  EXPECT_EQ(ParseHexValue("x"), 0u);
  EXPECT_EQ(ParseHexValue(""), 0u);
  EXPECT_EQ(ParseHexValue("12 34"), 0x12u);  // stops at the first non-alphanumeric
  EXPECT_EQ(ParseHexValue("xx1"), 0x01u);    // only one x is skipped; the second counts 0
}

TEST(IfoSourceTest, HexValueLetterBeyondFIsDigitZero) {
  EXPECT_EQ(ParseHexValue("12g4"), 0x1204u);
}

TEST(IfoSourceTest, HexValueWrapsAt32Bits) {
  EXPECT_EQ(ParseHexValue("123456789"), 0x23456789u);
}

TEST(IfoSourceTest, DecimalReadsLikeAtol) {
  EXPECT_EQ(ParseDecimal("  42abc"), 42u);
  EXPECT_EQ(ParseDecimal("+7"), 7u);
  EXPECT_EQ(ParseDecimal("-1"), 0xFFFFFFFFu);
  EXPECT_EQ(ParseDecimal("abc"), 0u);
  EXPECT_EQ(ParseDecimal("- 1"), 0u);
}

TEST(IfoSourceTest, DecimalIsTakenModulo2To32) {
  EXPECT_EQ(ParseDecimal("4294967297"), 1u);
  EXPECT_EQ(ParseDecimal("4294967296"), 0u);
}

TEST(IfoSourceTest, TableOfExactly2048BytesTakesOneSectorWithoutPadding) {
  Fixture f;
  std::string path = f.dir.file("out.bin");
  File out = File::Create(path);
  std::vector<std::uint8_t> bytes(2048, 0xAA);
  out.Write(bytes.data(), bytes.size());
  PadToSector(out);
  out.Close();
  EXPECT_EQ(SectorsFor(2048), 1u);
  EXPECT_EQ(test::ReadFileBytes(path).size(), 2048u);
}

TEST(IfoSourceTest, TableOf2049BytesTakesTwoSectorsPaddedWithZeros) {
  Fixture f;
  std::string path = f.dir.file("out.bin");
  File out = File::Create(path);
  std::vector<std::uint8_t> bytes(2049, 0xAA);
  out.Write(bytes.data(), bytes.size());
  PadToSector(out);
  out.Close();
  EXPECT_EQ(SectorsFor(2049), 2u);
  std::vector<std::uint8_t> written = test::ReadFileBytes(path);
  ASSERT_EQ(written.size(), 4096u);
  for (std::size_t i = 2049; i < 4096; ++i) ASSERT_EQ(written[i], 0) << i;
}

TEST(IfoSourceTest, EndAddressOfFourByteEntriesAfterFourByteHeader) {
  for (std::uint32_t n : {0u, 1u, 1000u}) EXPECT_EQ(TableEndAddress(4, n, 4), 4 * n + 3);
  EXPECT_EQ(TableEndAddress(8, 3, 12), 43u);
}

TEST(IfoSourceTest, ReadBeyondTheEndOfTheFileReadsZeros) {
  Fixture f;
  std::string path = f.dir.file("short.bin");
  test::WriteFileBytes(path, {1, 2, 3});
  File in = File::OpenRead(path);
  EXPECT_EQ(ReadFileBlock(in, 1, 4), (std::vector<std::uint8_t>{2, 3, 0, 0}));
  EXPECT_EQ(ReadFileBlock(in, 10, 2), (std::vector<std::uint8_t>{0, 0}));
}

TEST(IfoTableTest, AbsentTableGivesExactlyOneLineBeginningWithStars) {
  Fixture f;
  AddAbsenceLine(*f.ctx, "VMGM_C_ADT", "VMGM Cell Address Table information.");
  ASSERT_EQ(f.lines().size(), 1u);
  EXPECT_EQ(f.lines()[0],
            "** VMGM_C_ADT IFO File: There is no VMGM Cell Address Table information.");
}

TEST(IfoTableTest, HeadingAndAllocationFailureLines) {
  Fixture f;
  AddHeadingLine(*f.ctx, "VMGM_C_ADT", "VMGM Cell Address Table information");
  AddAllocationFailureLine(*f.ctx, "VMGM_VOBU_ADMAP");
  EXPECT_EQ(f.lines(),
            (std::vector<std::string>{"VMGM_C_ADT IFO File: VMGM Cell Address Table information",
                                      "ERROR: Could not aquire memory for VMGM_VOBU_ADMAP"}));
}

TEST(IfoTableTest, KindWithoutModuleDoesNothingInEveryOperation) {
  Fixture f;
  File none;
  EXPECT_NE(FindTableModule(TableId::kVmgiMat), nullptr);
  EXPECT_NE(FindTableModule(TableId::kVtsiMat), nullptr);
  TableSize size = MeasureTable(*f.ctx, TableId::kCount);
  EXPECT_EQ(size.sectors, 0u);
  EXPECT_EQ(size.bytes, 0u);
  EXPECT_EQ(OpenTable(*f.ctx, TableId::kCount, none), 0u);
  EXPECT_TRUE(f.lines().empty());
}

}  // namespace
}  // namespace tarvex

namespace tarvex {
namespace {

TEST(IfoSourceTest, BodyLongerThanTheRestOfTheFileCountsAsAllocationFailure) {
  test::Fixture f;
  std::string path = f.dir.file("t.bin");
  test::WriteFileBytes(path, std::vector<std::uint8_t>(100, 7));
  File in = File::OpenRead(path);
  EXPECT_FALSE(ReadBoundedBlock(in, 10, 91).has_value());
  EXPECT_FALSE(ReadBoundedBlock(in, 200, 1).has_value());
  std::optional<std::vector<std::uint8_t>> body = ReadBoundedBlock(in, 10, 90);
  ASSERT_TRUE(body.has_value());
  EXPECT_EQ(body->size(), 90u);
  EXPECT_TRUE(ReadBoundedBlock(in, 100, 0).has_value());
}

TEST(IfoSourceTest, NegativeBodyLengthMeansNoEntries) {
  test::Fixture f;
  std::string path = f.dir.file("t.bin");
  test::WriteFileBytes(path, std::vector<std::uint8_t>(100, 7));
  File in = File::OpenRead(path);
  std::optional<std::vector<std::uint8_t>> body = ReadBoundedBlock(in, 10, -1);
  ASSERT_TRUE(body.has_value());
  EXPECT_TRUE(body->empty());
}

}  // namespace
}  // namespace tarvex
