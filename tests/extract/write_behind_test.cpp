#include "extract/write_behind.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>

#include "extract_test_support.h"

namespace tarvex {
namespace {

using namespace test;  // NOLINT

// Hands data to the writer in blocks of `step` bytes, alternating between two files.
void WriteAlternately(WriteBehind& writer, File& a, File& b, const Bytes& data, std::size_t step) {
  for (std::size_t at = 0; at < data.size(); at += step) {
    WriteBehind::Block block = writer.Take();
    std::memcpy(block.get(), data.data() + at, step);
    writer.Write((at / step) % 2 == 0 ? a : b, std::move(block), step);
  }
}

TEST(WriteBehind, WritesEachFilesBlocksInTheOrderTheyCame) {
  TempDir dir;
  Bytes data = Pattern(64 * 500, 5);
  File a = File::Create(dir.file("a")), b = File::Create(dir.file("b"));
  WriteBehind writer(64, 2);  // two blocks in flight: the taker keeps waiting for the writer
  WriteAlternately(writer, a, b, data, 64);
  writer.Drain();
  EXPECT_EQ(a.Length(), 64 * 250);  // everything is written once Drain() returns
  EXPECT_EQ(b.Length(), 64 * 250);
  Bytes expect_a, expect_b;
  for (std::size_t at = 0; at < data.size(); at += 64) {
    Bytes& to = (at / 64) % 2 == 0 ? expect_a : expect_b;
    to.insert(to.end(), data.begin() + static_cast<std::ptrdiff_t>(at),
              data.begin() + static_cast<std::ptrdiff_t>(at + 64));
  }
  a.Close();
  b.Close();
  EXPECT_EQ(ReadFileBytes(dir.file("a")), expect_a);
  EXPECT_EQ(ReadFileBytes(dir.file("b")), expect_b);
}

TEST(WriteBehind, WritesWhatIsLeftWhenItGoes) {
  TempDir dir;
  Bytes data = Pattern(1000, 6);
  File file = File::Create(dir.file("out"));
  {
    WriteBehind writer(500);  // two blocks: fewer than half the pool, the writer never woke
    WriteAlternately(writer, file, file, data, 500);
  }
  file.Close();
  EXPECT_EQ(ReadFileBytes(dir.file("out")), data);
}

TEST(WriteBehind, ReusesItsBlocks) {
  TempDir dir;
  Bytes data = Pattern(32, 7);
  File file = File::Create(dir.file("out"));
  WriteBehind writer(32, 4);
  std::set<const std::uint8_t*> seen;
  for (int i = 0; i < 200; ++i) {
    WriteBehind::Block block = writer.Take();
    seen.insert(block.get());
    std::memcpy(block.get(), data.data(), data.size());
    writer.Write(file, std::move(block), data.size());
  }
  writer.Drain();
  // At most the four in flight and the one being filled: memory stays flat.
  EXPECT_LE(seen.size(), 5u);
  EXPECT_EQ(file.Length(), 32 * 200);
}

TEST(WriteBehind, ABlockJustWrittenIsTakenAgain) {
  TempDir dir;
  File file = File::Create(dir.file("out"));
  WriteBehind writer(16);
  WriteBehind::Block block = writer.Take();
  const std::uint8_t* address = block.get();
  std::memset(block.get(), 'x', 16);
  writer.Write(file, std::move(block), 16);
  writer.Drain();
  EXPECT_EQ(writer.Take().get(), address);
}

}  // namespace
}  // namespace tarvex
