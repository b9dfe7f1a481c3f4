#include "platform/file_io.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

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

}  // namespace
}  // namespace tarvex
