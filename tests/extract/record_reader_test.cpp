#include "extract/record_reader.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>

#include "extract_test_support.h"

namespace tarvex {
namespace {

using namespace test;  // NOLINT

// What reading 2048 bytes at a time into one zeroed buffer gives, record by record.
std::vector<Bytes> ReferenceRecords(const Bytes& file) {
  std::vector<Bytes> out;
  Bytes buf(2048, 0);
  for (std::size_t pos = 0; pos < file.size(); pos += 2048) {
    std::size_t n = std::min<std::size_t>(2048, file.size() - pos);
    std::memcpy(buf.data(), file.data() + pos, n);
    out.push_back(buf);
  }
  return out;
}

void ExpectSameAsRecordByRecord(std::size_t file_size, std::size_t block_size) {
  TempDir dir;
  Bytes bytes = Pattern(file_size, static_cast<std::uint32_t>(file_size));
  WriteFileBytes(dir.file("in"), bytes);
  File file = File::OpenRead(dir.file("in"));
  auto expected = ReferenceRecords(bytes);
  {
    RecordReader reader(file, block_size);
    for (int pass = 0; pass < 2; ++pass) {
      std::size_t i = 0;
      std::int64_t position = 0;
      for (;;) {
        std::size_t got = reader.Next();
        if (got == 0) break;
        position += static_cast<std::int64_t>(got);
        ASSERT_LT(i, expected.size());
        EXPECT_EQ(got, std::min<std::size_t>(2048, file_size - i * 2048));
        EXPECT_EQ(reader.position(), position);
        Bytes rec(reader.view().data(), reader.view().data() + 2048);
        EXPECT_EQ(rec, expected[i]) << "record " << i << " block " << block_size;
        ++i;
      }
      EXPECT_EQ(i, expected.size());
      EXPECT_EQ(reader.Next(), 0u);
      reader.Rewind();
    }
  }
  // The reader leaves the file where record-by-record reading would have.
  EXPECT_EQ(file.Tell(), 0);
}

TEST(RecordReader, ShortLastRecordInsideABlockKeepsPreviousBytes) {
  ExpectSameAsRecordByRecord(3 * 2048 + 100, 8 * 2048);
}

TEST(RecordReader, ShortLastRecordAtABlockStartKeepsPreviousBlocksLastRecord) {
  ExpectSameAsRecordByRecord(4 * 2048 + 100, 2 * 2048);
}

TEST(RecordReader, FileOfWholeBlocksEndsCleanly) {
  ExpectSameAsRecordByRecord(4 * 2048, 2 * 2048);
}

TEST(RecordReader, FileShorterThanARecordReadsIntoAZeroedBuffer) {
  ExpectSameAsRecordByRecord(10, 2 * 2048);
}

TEST(RecordReader, EmptyFileReadsNothing) {
  ExpectSameAsRecordByRecord(0, 2048);
}

TEST(RecordReader, LargeFileAcrossManyBlocks) {
  ExpectSameAsRecordByRecord(3 * 1024 * 1024 + 2048 * 7 + 1234, 1 << 20);
}

TEST(RecordReader, BlocksStartingInsideAMemoryPage) {
  // Blocks of three records: every other block starts 2048 bytes into a 4096-byte page.
  ExpectSameAsRecordByRecord(11 * 2048 + 300, 3 * 2048);
}

TEST(RecordReader, DropReadAheadRereadsTheFileAsItNowIs) {
  TempDir dir;
  Bytes bytes = Pattern(6 * 2048, 1);
  WriteFileBytes(dir.file("in"), bytes);
  File file = File::OpenRead(dir.file("in"));
  RecordReader reader(file, 4096);
  reader.Next();  // record 0; record 1 is already in the block
  // The file changes behind the reader: the rest is read as it is now.
  reader.DropReadAhead();
  Bytes changed = bytes;
  changed[2048 + 7] = 0x01;
  WriteFileBytes(dir.file("in"), changed);
  ASSERT_EQ(reader.Next(), 2048u);
  EXPECT_EQ(reader.view().u8(7), 0x01);
  EXPECT_EQ(reader.position(), 4096);
}

TEST(RecordReader, FileTruncatedBehindTheReaderEndsTheWalkAfterDropReadAhead) {
  TempDir dir;
  WriteFileBytes(dir.file("in"), Pattern(6 * 2048, 1));
  File file = File::OpenRead(dir.file("in"));
  RecordReader reader(file, 4096);
  reader.Next();
  reader.DropReadAhead();  // as the extraction does before it truncates its own input
  File::Create(dir.file("in"));
  EXPECT_EQ(reader.view().u8(5), Pattern(6, 1)[5]);
  EXPECT_EQ(reader.Next(), 0u);
}

// Shortens the file at path to length bytes behind every open handle.
void ShortenTo(const std::string& path, std::size_t length) {
  ASSERT_EQ(::truncate(path.c_str(), static_cast<off_t>(length)), 0);
}

TEST(RecordReader, StreamShortenedBetweenTwoBlocksEndsTheWalkBeforeTheLostRecord) {
  TempDir dir;
  Bytes bytes = Pattern(6 * 2048, 1);
  WriteFileBytes(dir.file("in"), bytes);
  File file = File::OpenRead(dir.file("in"));
  {
    RecordReader reader(file, 2 * 2048);
    ASSERT_EQ(reader.Next(), 2048u);
    ASSERT_EQ(reader.Next(), 2048u);  // the first block is used up
    // Another program cuts the stream inside record 3, before the second block is read.
    ShortenTo(dir.file("in"), 3 * 2048 + 100);
    ASSERT_EQ(reader.Next(), 2048u);  // record 2 is still there whole
    EXPECT_FALSE(reader.shrunk());
    EXPECT_EQ(Bytes(reader.view().data(), reader.view().data() + 2048), Slice(bytes, 4096, 6144));
    // Record 3 is not: no short read of it, the walk ends as shrunk and stays ended.
    EXPECT_EQ(reader.Next(), 0u);
    EXPECT_TRUE(reader.shrunk());
    EXPECT_EQ(reader.position(), 3 * 2048);
    EXPECT_EQ(Bytes(reader.view().data(), reader.view().data() + 2048), Slice(bytes, 4096, 6144));
    EXPECT_EQ(reader.Next(), 0u);
  }
  EXPECT_EQ(file.Tell(), 3 * 2048);
}

TEST(RecordReader, StreamShortenedToAWholeRecordEndsAsShrunk) {
  TempDir dir;
  WriteFileBytes(dir.file("in"), Pattern(6 * 2048, 1));
  File file = File::OpenRead(dir.file("in"));
  RecordReader reader(file, 2 * 2048);
  reader.Next();
  ShortenTo(dir.file("in"), 2 * 2048);
  EXPECT_EQ(reader.Next(), 2048u);  // still in the first block
  EXPECT_EQ(reader.Next(), 0u);
  EXPECT_TRUE(reader.shrunk());
}

// What Next() returns until it returns 0.
std::vector<std::size_t> ReadToTheEnd(RecordReader& reader) {
  std::vector<std::size_t> sizes;
  for (std::size_t got; (got = reader.Next()) != 0;) sizes.push_back(got);
  return sizes;
}

TEST(RecordReader, ShortLastRecordOfTheStreamAsItWasIsNoShrinking) {
  TempDir dir;
  WriteFileBytes(dir.file("in"), Pattern(3 * 2048 + 100, 1));
  File file = File::OpenRead(dir.file("in"));
  RecordReader reader(file, 2 * 2048);
  EXPECT_EQ(ReadToTheEnd(reader), (std::vector<std::size_t>{2048, 2048, 2048, 100}));
  EXPECT_FALSE(reader.shrunk());
}

TEST(RecordReader, StreamThatGrewIsReadToItsNewEnd) {
  TempDir dir;
  Bytes bytes = Pattern(2 * 2048, 1);
  WriteFileBytes(dir.file("in"), bytes);
  File file = File::OpenRead(dir.file("in"));
  RecordReader reader(file, 2 * 2048);
  EXPECT_EQ(reader.Next(), 2048u);
  WriteFileBytes(dir.file("in"), Join({bytes, Pattern(2048 + 100, 2)}));
  EXPECT_EQ(ReadToTheEnd(reader), (std::vector<std::size_t>{2048, 2048, 100}));
  EXPECT_FALSE(reader.shrunk());
}

TEST(RecordReader, ExpectedLengthIsWhatShrinkingIsMeasuredAgainst) {
  TempDir dir;
  WriteFileBytes(dir.file("in"), Pattern(2 * 2048, 1));
  File file = File::OpenRead(dir.file("in"));
  RecordReader reader(file, 8 * 2048);
  reader.ExpectLength(2 * 2048 + 1);  // the stream had one byte of a third record
  EXPECT_EQ(ReadToTheEnd(reader), (std::vector<std::size_t>{2048, 2048}));
  EXPECT_TRUE(reader.shrunk());
  // Starting again reads what is there, against the same expectation.
  reader.Rewind();
  EXPECT_FALSE(reader.shrunk());
  EXPECT_EQ(reader.Next(), 2048u);
  reader.ExpectLength(0);  // as after the extraction truncated its own input
  EXPECT_EQ(reader.Next(), 2048u);
  EXPECT_EQ(reader.Next(), 0u);
  EXPECT_FALSE(reader.shrunk());
}

TEST(RecordReader, StreamShortenedBeforeTheFirstReadEndsAsShrunkAtOnce) {
  TempDir dir;
  WriteFileBytes(dir.file("in"), Pattern(3 * 2048, 1));
  File file = File::OpenRead(dir.file("in"));
  RecordReader reader(file);
  ShortenTo(dir.file("in"), 0);
  EXPECT_EQ(reader.Next(), 0u);
  EXPECT_TRUE(reader.shrunk());
  EXPECT_EQ(reader.position(), 0);
}

// A change the caller only needs where the record's bytes stay visible (as the LPCM swap): it
// sets byte 100 of the record to 0xEE.
void MarkByte100(std::span<std::uint8_t> record, std::size_t offset, std::size_t size) {
  EXPECT_EQ(offset, 100u);
  EXPECT_EQ(size, 1u);
  record[offset] = 0xEE;
}

TEST(RecordReader, ChangeWhenKeptShowsBehindAShortRead) {
  TempDir dir;
  Bytes bytes = Join({Pattern(2048 * 2, 1), Pattern(5, 2)});
  WriteFileBytes(dir.file("in"), bytes);
  File file = File::OpenRead(dir.file("in"));
  RecordReader reader(file, 8192);  // all three records in one block
  reader.Next();
  reader.Next();
  reader.ChangeWhenKept(MarkByte100, 100, 1);
  EXPECT_EQ(reader.view().data()[100], bytes[2048 + 100]);  // not made while the record is read
  EXPECT_EQ(reader.Next(), 5u);
  EXPECT_EQ(reader.view().data()[100], 0xEE);
  EXPECT_EQ(reader.view().data()[4], Pattern(5, 2)[4]);
  EXPECT_EQ(reader.view().data()[101], bytes[2048 + 101]);
}

TEST(RecordReader, ChangeWhenKeptSurvivesTheEndOfTheBlock) {
  TempDir dir;
  Bytes bytes = Join({Pattern(2048 * 2, 1), Pattern(5, 2)});
  WriteFileBytes(dir.file("in"), bytes);
  File file = File::OpenRead(dir.file("in"));
  RecordReader reader(file, 4096);  // the second record is the last of the first block
  reader.Next();
  reader.Next();
  reader.ChangeWhenKept(MarkByte100, 100, 1);
  EXPECT_EQ(reader.Next(), 5u);
  EXPECT_EQ(reader.view().data()[100], 0xEE);
}

TEST(RecordReader, ChangeWhenKeptIsForgottenByTheNextWholeRecord) {
  TempDir dir;
  Bytes bytes = Join({Pattern(2048 * 3, 1), Pattern(5, 2)});
  WriteFileBytes(dir.file("in"), bytes);
  File file = File::OpenRead(dir.file("in"));
  RecordReader reader(file, 4096);
  reader.Next();
  reader.ChangeWhenKept(MarkByte100, 100, 1);
  reader.Next();  // the changed record is gone: a whole read replaces every byte
  reader.Next();
  EXPECT_EQ(reader.Next(), 5u);
  EXPECT_EQ(reader.view().data()[100], bytes[2 * 2048 + 100]);
}

TEST(RecordReader, ChangeWhenKeptIsMadeAtOnceOnTheReadersOwnRecord) {
  TempDir dir;
  Bytes bytes = Pattern(2048 * 2, 1);
  WriteFileBytes(dir.file("in"), bytes);
  File file = File::OpenRead(dir.file("in"));
  RecordReader reader(file, 4096);
  reader.Next();
  reader.DropReadAhead();  // the record now lives in the reader's own buffer
  reader.ChangeWhenKept(MarkByte100, 100, 1);
  EXPECT_EQ(reader.view().data()[100], 0xEE);
}

TEST(RecordReader, LeavesTheFileAtThePositionOfTheLastRead) {
  TempDir dir;
  WriteFileBytes(dir.file("in"), Pattern(10 * 2048, 1));
  File file = File::OpenRead(dir.file("in"));
  {
    RecordReader reader(file);
    reader.Next();
    reader.Next();
    reader.Next();
  }
  EXPECT_EQ(file.Tell(), 3 * 2048);
}

}  // namespace
}  // namespace tarvex
