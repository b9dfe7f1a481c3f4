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
