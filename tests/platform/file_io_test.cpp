#include "platform/file_io.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>

#include "support/test_support.h"

namespace tarvex {
namespace {

TEST(FileIoTest, CreateGivesOwnerReadWriteAndNoSpecialBits) {
  test::TempDir dir;
  std::string path = dir.file("out.bin");
  mode_t old = ::umask(022);
  File f = File::Create(path);
  ::umask(old);
  ASSERT_TRUE(f.is_open());
  struct stat st {};
  ASSERT_EQ(::stat(path.c_str(), &st), 0);
  EXPECT_EQ(st.st_mode & 07777, 0644u);
}

TEST(FileIoTest, CreateTruncatesAndWrites) {
  test::TempDir dir;
  std::string path = dir.file("out.bin");
  test::WriteFileBytes(path, {1, 2, 3, 4});
  File f = File::Create(path);
  EXPECT_EQ(f.Length(), 0);
  EXPECT_EQ(f.Write("ab", 2), 2u);
  f.Close();
  EXPECT_EQ(test::ReadFileText(path), "ab");
}

TEST(FileIoTest, FifoIsRefusedWithoutBlocking) {
  test::TempDir dir;
  std::string path = dir.file("pipe.vob");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  EXPECT_FALSE(File::OpenRead(path).is_open());
}

TEST(FileIoTest, DirectoryIsRefused) {
  test::TempDir dir;
  EXPECT_FALSE(File::OpenRead(dir.path()).is_open());
  EXPECT_TRUE(File::IsDirectory(dir.path()));
}

TEST(FileIoTest, ReadOfRegularFileIsBlocking) {
  test::TempDir dir;
  std::string path = dir.file("in.bin");
  test::WriteFileBytes(path, std::vector<std::uint8_t>(5000, 7));
  File f = File::OpenRead(path);
  ASSERT_TRUE(f.is_open());
  char buf[4096];
  EXPECT_EQ(f.Read(buf, sizeof buf), 4096u);
  EXPECT_EQ(f.Read(buf, sizeof buf), 904u);
  EXPECT_EQ(f.Read(buf, sizeof buf), 0u);
}

// A file of n bytes whose byte i is (i * 7 + 3) & 0xFF.
std::vector<std::uint8_t> PositionPattern(std::size_t n) {
  std::vector<std::uint8_t> bytes(n);
  for (std::size_t i = 0; i < n; ++i) bytes[i] = static_cast<std::uint8_t>(i * 7 + 3);
  return bytes;
}

TEST(FileIoTest, ReadAtReadsFromAnyPositionAndLeavesTheFilePositionAlone) {
  test::TempDir dir;
  std::vector<std::uint8_t> bytes = PositionPattern(10000);
  test::WriteFileBytes(dir.file("in"), bytes);
  File f = File::OpenRead(dir.file("in"));
  ASSERT_EQ(f.Seek(123), 123);
  std::vector<std::uint8_t> buf(1 << 20, 0xEE);
  ASSERT_EQ(f.ReadAt(2048, buf.data(), buf.size()), 10000u - 2048u);
  EXPECT_TRUE(std::equal(bytes.begin() + 2048, bytes.end(), buf.begin()));
  EXPECT_EQ(buf[10000 - 2048], 0xEE);  // nothing written past what was read
  ASSERT_EQ(f.ReadAt(100, buf.data(), 50), 50u);
  EXPECT_EQ(buf[49], bytes[149]);
  EXPECT_EQ(f.Tell(), 123);
}

TEST(FileIoTest, ReadAtAtOrBeyondTheEndReadsNothing) {
  test::TempDir dir;
  test::WriteFileBytes(dir.file("in"), PositionPattern(4096));
  File f = File::OpenRead(dir.file("in"));
  std::uint8_t buf[2048];
  EXPECT_EQ(f.ReadAt(4096, buf, sizeof buf), 0u);
  EXPECT_EQ(f.ReadAt(9000, buf, sizeof buf), 0u);
  EXPECT_EQ(f.ReadAt(-1, buf, sizeof buf), 0u);
  File closed;
  EXPECT_EQ(closed.ReadAt(0, buf, sizeof buf), 0u);
}

TEST(FileIoTest, ReadAtSeesTheLengthTheFileHasNow) {
  test::TempDir dir;
  test::WriteFileBytes(dir.file("in"), PositionPattern(8192));
  File f = File::OpenRead(dir.file("in"));
  test::WriteFileBytes(dir.file("in"), PositionPattern(3000));  // shortened behind the handle
  std::vector<std::uint8_t> buf(8192);
  EXPECT_EQ(f.ReadAt(2048, buf.data(), buf.size()), 3000u - 2048u);
  EXPECT_EQ(f.ReadAt(4096, buf.data(), buf.size()), 0u);
}

}  // namespace
}  // namespace tarvex
