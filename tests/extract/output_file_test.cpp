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

// Writes a 44-byte header and 133 blocks of 2000 bytes to path. The first block of a 256 KiB
// buffer ends at file offset 262144 (4 x 64 KiB): 44 + 131 x 2000 = 262044 bytes stay short of
// it, the 132nd block reaches 264044, past it. That block's room may still be filled by its
// writer, so the block goes out with the next write, the 133rd: exactly 262144 bytes, and the
// 1900 bytes past the end start the next block. Returns the file's length then (after the
// writer, if any, has written what it was given), and expected, everything written.
std::size_t WriteUntilTheFirstBlockGoesOut(OutputFile& out, const std::string& path,
                                           Bytes& expected, WriteBehind* writer = nullptr) {
  EXPECT_TRUE(out.Create(path));  // 256 KiB buffer
  expected = Pattern(44, 1);
  out.Write(ByteView(expected.data(), expected.size()));
  for (std::uint32_t i = 0; i < 133; ++i) {
    if (i == 132) {
      EXPECT_EQ(ReadFileBytes(path).size(), 0u);  // nothing went out before the 133rd
    }
    Bytes block = Pattern(2000, i + 2);
    out.Write(ByteView(block.data(), block.size()));
    expected.insert(expected.end(), block.begin(), block.end());
  }
  if (writer != nullptr) writer->Drain();
  return ReadFileBytes(path).size();
}

TEST(OutputFile, AFullBlockEndsAtAnAlignedFileOffset) {
  TempDir dir;
  Bytes expected;
  OutputFile out;
  EXPECT_EQ(WriteUntilTheFirstBlockGoesOut(out, dir.file("out"), expected), 262144u);
  out.Close();
  EXPECT_EQ(ReadFileBytes(dir.file("out")), expected);
}

TEST(OutputFile, EachNewFileCountsItsOffsetsFromItsStart) {
  TempDir dir;
  Bytes first, second;
  OutputFile out;  // one object for numbered files in turn, as stills and sub-pictures use it
  WriteUntilTheFirstBlockGoesOut(out, dir.file("one"), first);
  out.Close();
  EXPECT_EQ(WriteUntilTheFirstBlockGoesOut(out, dir.file("two"), second), 262144u);
  out.Close();
  EXPECT_EQ(ReadFileBytes(dir.file("two")), second);
}

TEST(OutputFile, AWriterCutsTheSameBlocks) {
  TempDir dir;
  Bytes expected;
  WriteBehind writer(OutputFile::kDefaultBufferSize + OutputFile::kCarryRoom);
  OutputFile out(&writer);
  EXPECT_EQ(WriteUntilTheFirstBlockGoesOut(out, dir.file("out"), expected, &writer), 262144u);
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

// A file written through a writer thread with tiny blocks (100 bytes of buffer, two blocks in
// flight, so both sides keep waiting for each other) ends up holding exactly what a file
// written directly holds, whatever mix of writes, rooms, flushes and large writes made it, and
// the patches of a WAV header at the end.
void WriteMixture(OutputFile& out, const std::string& path, Bytes& expected) {
  ASSERT_TRUE(out.Create(path, 100));
  expected.clear();
  std::uint32_t state = 12345;
  auto next = [&state](std::uint32_t n) {
    state = state * 1103515245u + 12345u;
    return (state >> 16) % n;
  };
  for (std::uint32_t i = 0; i < 3000; ++i) {
    std::uint32_t kind = next(8);
    std::size_t n = 1 + next(128);
    Bytes bytes = Pattern(kind == 7 ? n + 150 : n, i);  // kind 7: larger than the buffer
    if (kind == 6) {
      out.Flush();
      continue;
    }
    if (kind < 4 || kind == 7) {
      out.Write(ByteView(bytes.data(), bytes.size()));
    } else {
      std::memcpy(out.Extend(bytes.size()), bytes.data(), bytes.size());
    }
    expected.insert(expected.end(), bytes.begin(), bytes.end());
  }
  out.PatchLe32(4, 0x01020304u);
  out.PatchLe32(40, 0x05060708u);
  ByteWriter(expected.data(), expected.size()).put_le32(4, 0x01020304u);
  ByteWriter(expected.data(), expected.size()).put_le32(40, 0x05060708u);
  out.Close();
}

TEST(OutputFile, AWriterThreadWritesWhatDirectWritingWrites) {
  TempDir dir;
  Bytes direct_expected, behind_expected;
  OutputFile direct;
  WriteMixture(direct, dir.file("direct"), direct_expected);
  WriteBehind writer(OutputFile::kCarryRoom + 100, 2);
  OutputFile behind(&writer);
  WriteMixture(behind, dir.file("behind"), behind_expected);
  EXPECT_EQ(direct_expected, behind_expected);
  EXPECT_EQ(ReadFileBytes(dir.file("direct")), direct_expected);
  EXPECT_EQ(ReadFileBytes(dir.file("behind")), behind_expected);
}

TEST(OutputFile, ARoomLargerThanTheWritersBlocksIsWrittenDirectly) {
  TempDir dir;
  Bytes head = Pattern(300, 1), large = Pattern(OutputFile::kCarryRoom + 500, 2);
  Bytes tail = Pattern(50, 3);
  {
    WriteBehind writer(OutputFile::kCarryRoom + 100, 2);
    OutputFile out(&writer);
    ASSERT_TRUE(out.Create(dir.file("out")));
    out.Write(ByteView(head.data(), head.size()));  // handed to the writer in blocks
    std::memcpy(out.Extend(large.size()), large.data(), large.size());
    out.Write(ByteView(tail.data(), tail.size()));
  }
  EXPECT_EQ(ReadFileBytes(dir.file("out")), Join({head, large, tail}));
}

TEST(OutputFile, MakingAFileWaitsForTheBlocksOfEarlierFiles) {
  TempDir dir;
  Bytes written;
  {
    WriteBehind writer(OutputFile::kDefaultBufferSize + OutputFile::kCarryRoom);
    OutputFile first(&writer), second(&writer);
    ASSERT_TRUE(first.Create(dir.file("same")));
    Bytes bytes = Pattern(2000, 4);
    // 600,000 bytes: the blocks ending at 262,144 and 524,288 go to the writer, the rest stays
    // in the buffer.
    for (int i = 0; i < 300; ++i) {
      first.Write(ByteView(bytes.data(), bytes.size()));
      written.insert(written.end(), bytes.begin(), bytes.end());
    }
    // Made again under the same name: both blocks were written before, so the new file starts
    // empty. first's last 75,712 bytes then go out at its own file position, as they would
    // have without a writer.
    ASSERT_TRUE(second.Create(dir.file("same")));
  }
  Bytes expected(524288, 0);
  expected.insert(expected.end(), written.begin() + 524288, written.end());
  EXPECT_EQ(ReadFileBytes(dir.file("same")), expected);
}

}  // namespace
}  // namespace tarvex
