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

TEST(OutputFile, LentBytesGoOutInOrderAtTheNextFlush) {
  TempDir dir;
  Bytes lent = {0x10, 0x11, 0x12};
  OutputFile out;
  ASSERT_TRUE(out.Create(dir.file("out"), 64));
  out.Write(ByteView(reinterpret_cast<const std::uint8_t*>("ab"), 2));
  out.WriteLent(ByteView(lent.data(), lent.size()));
  out.Write(ByteView(reinterpret_cast<const std::uint8_t*>("c"), 1));
  EXPECT_EQ(ReadFileBytes(dir.file("out")), Bytes());  // nothing written yet
  out.Flush();
  lent[0] = 0xEE;  // the lender may change its bytes after the flush
  out.Flush();
  out.Close();
  EXPECT_EQ(ReadFileBytes(dir.file("out")), Bytes({'a', 'b', 0x10, 0x11, 0x12, 'c'}));
}

TEST(OutputFile, LentBytesBeyondTheBufferSizeAreWrittenEarly) {
  TempDir dir;
  Bytes first(6, 1), second(6, 2);
  OutputFile out;
  ASSERT_TRUE(out.Create(dir.file("out"), 8));
  out.WriteLent(ByteView(first.data(), first.size()));
  out.WriteLent(ByteView(second.data(), second.size()));  // 12 lent bytes > 8: first goes out
  EXPECT_EQ(ReadFileBytes(dir.file("out")), first);
  out.Close();
  EXPECT_EQ(ReadFileBytes(dir.file("out")), Join({first, second}));
}

TEST(OutputFile, ManyLentPiecesAreWrittenInOrder) {
  TempDir dir;
  Bytes source = Pattern(3 * OutputFile::kMaxPieces, 9);
  OutputFile out;
  ASSERT_TRUE(out.Create(dir.file("out")));
  // Every other byte, so no two pieces join: more pieces than one gather write takes.
  Bytes expected;
  for (std::size_t i = 0; i < source.size(); i += 2) {
    out.WriteLent(ByteView(source.data() + i, 1));
    expected.push_back(source[i]);
  }
  out.Close();
  EXPECT_EQ(ReadFileBytes(dir.file("out")), expected);
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
