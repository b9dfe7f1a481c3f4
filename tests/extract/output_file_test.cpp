#include "extract/output_file.h"

#include <gtest/gtest.h>

#include <cstring>

#include "extract_test_support.h"

namespace tarvex {
namespace {

using namespace test;  // NOLINT

TEST(OutputFile, WritesAndExtendedRoomKeepTheirOrder) {
  TempDir dir;
  {
    OutputFile out;
    ASSERT_TRUE(out.Create(dir.file("out"), 8));
    Bytes abc = {1, 2, 3};
    out.Write(ByteView(abc.data(), abc.size()));
    std::uint8_t* room = out.Extend(4);
    ASSERT_NE(room, nullptr);
    std::memcpy(room, "\x04\x05\x06\x07", 4);
    room = out.Extend(3);  // does not fit behind the first seven bytes: they go out first
    std::memcpy(room, "\x08\x09\x0A", 3);
    Bytes big(20, 0xAB);  // larger than the buffer: written straight through
    out.Write(ByteView(big.data(), big.size()));
  }
  Bytes expected = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
  expected.insert(expected.end(), 20, 0xAB);
  EXPECT_EQ(ReadFileBytes(dir.file("out")), expected);
}

TEST(OutputFile, RoomLargerThanTheBufferMakesTheBufferGrow) {
  TempDir dir;
  {
    OutputFile out;
    ASSERT_TRUE(out.Create(dir.file("out"), 4));
    out.Write(ByteView(reinterpret_cast<const std::uint8_t*>("ab"), 2));
    std::uint8_t* room = out.Extend(10);
    ASSERT_NE(room, nullptr);
    std::memset(room, 'c', 10);
  }
  EXPECT_EQ(ReadFileBytes(dir.file("out")),
            Bytes({'a', 'b', 'c', 'c', 'c', 'c', 'c', 'c', 'c', 'c', 'c', 'c'}));
}

// Writes a 44-byte header and 132 blocks of 2000 bytes to path: 44 + 131 x 2000 = 262044 bytes
// fill the 256 KiB buffer; the 132nd block does not fit, so the buffer is written up to
// 196608 (3 x 64 KiB) and the other 65436 bytes stay. Returns what the file holds then, and
// expected, everything written.
std::size_t WriteUntilTheFirstFullBuffer(OutputFile& out, const std::string& path,
                                         Bytes& expected) {
  EXPECT_TRUE(out.Create(path));  // 256 KiB buffer
  expected = Pattern(44, 1);
  out.Write(ByteView(expected.data(), expected.size()));
  for (std::uint32_t i = 0; i < 132; ++i) {
    Bytes block = Pattern(2000, i + 2);
    out.Write(ByteView(block.data(), block.size()));
    expected.insert(expected.end(), block.begin(), block.end());
  }
  return ReadFileBytes(path).size();
}

TEST(OutputFile, AFullBufferIsWrittenUpToAnAlignedFileOffset) {
  TempDir dir;
  Bytes expected;
  OutputFile out;
  EXPECT_EQ(WriteUntilTheFirstFullBuffer(out, dir.file("out"), expected), 196608u);
  out.Close();
  EXPECT_EQ(ReadFileBytes(dir.file("out")), expected);
}

TEST(OutputFile, EachNewFileCountsItsOffsetsFromItsStart) {
  TempDir dir;
  Bytes first, second;
  OutputFile out;  // one object for numbered files in turn, as stills and sub-pictures use it
  WriteUntilTheFirstFullBuffer(out, dir.file("one"), first);
  out.Close();
  EXPECT_EQ(WriteUntilTheFirstFullBuffer(out, dir.file("two"), second), 196608u);
  out.Close();
  EXPECT_EQ(ReadFileBytes(dir.file("two")), second);
}

TEST(OutputFile, NoRoomWithoutAFile) {
  OutputFile out;
  EXPECT_EQ(out.Extend(4), nullptr);
}

TEST(OutputFile, PatchGoesAfterTheCollectedBytes) {
  TempDir dir;
  {
    OutputFile out;
    ASSERT_TRUE(out.Create(dir.file("out")));
    Bytes zeros(8, 0);
    out.Write(ByteView(zeros.data(), zeros.size()));
    out.PatchLe32(2, 0x04030201);
  }
  EXPECT_EQ(ReadFileBytes(dir.file("out")), Bytes({0, 0, 1, 2, 3, 4, 0, 0}));
}

}  // namespace
}  // namespace tarvex
