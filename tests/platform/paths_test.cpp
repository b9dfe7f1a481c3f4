#include "platform/paths.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "platform/file_io.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::TempDir;

void Touch(const std::string& path) {
  test::WriteFileBytes(path, {1});
}

TEST(PathsTest, EnsureParentDirectoryCreatesEveryMissingFolder) {
  TempDir dir;
  std::string file = dir.file("a/b/c/file.ini");
  EnsureParentDirectory(file);
  EXPECT_TRUE(File::IsDirectory(dir.file("a/b/c")));
  EXPECT_FALSE(File::Exists(file));
}

TEST(PathsTest, EnsureParentDirectoryKeepsExistingFolders) {
  TempDir dir;
  Touch(dir.file("keep"));
  EnsureParentDirectory(dir.file("x.ini"));
  EnsureParentDirectory(dir.file("x.ini"));
  EXPECT_TRUE(File::Exists(dir.file("keep")));
}

TEST(PathsTest, EnsureParentDirectoryOfABareNameDoesNothing) {
  EnsureParentDirectory("bare-name.ini");
  EXPECT_FALSE(File::Exists("bare-name.ini"));
}

TEST(PathsTest, EnsureParentDirectoryStopsAtAFileInTheWay) {
  TempDir dir;
  Touch(dir.file("blocker"));
  EnsureParentDirectory(dir.file("blocker/sub/x.ini"));
  EXPECT_FALSE(File::IsDirectory(dir.file("blocker")));
}

TEST(PathsTest, ExactNameWins) {
  TempDir dir;
  Touch(dir.file("VTS_01_1.VOB"));
  Touch(dir.file("vts_01_1.vob"));
  EXPECT_EQ(FindFileIgnoringCase(dir.file("vts_01_1.vob")), dir.file("vts_01_1.vob"));
}

TEST(PathsTest, FirstCaseInsensitiveMatchInNameOrder) {
  TempDir dir;
  Touch(dir.file("vts_01_1.VOB"));
  Touch(dir.file("VTS_01_1.vob"));
  Touch(dir.file("VTS_01_2.VOB"));
  // "VTS_01_1.vob" sorts before "vts_01_1.VOB" (byte order).
  EXPECT_EQ(FindFileIgnoringCase(dir.file("Vts_01_1.Vob")), dir.file("VTS_01_1.vob"));
}

TEST(PathsTest, NoMatchGivesEmpty) {
  TempDir dir;
  Touch(dir.file("vts_01_2.vob"));
  EXPECT_EQ(FindFileIgnoringCase(dir.file("vts_01_1.vob")), "");
  EXPECT_EQ(FindFileIgnoringCase(dir.file("missing/vts_01_1.vob")), "");
}

TEST(PathsTest, CaseFoldingIsAsciiOnly) {
  TempDir dir;
  Touch(dir.file("\xC4.vob"));
  EXPECT_EQ(FindFileIgnoringCase(dir.file("\xE4.VOB")), "");
  EXPECT_EQ(FindFileIgnoringCase(dir.file("\xC4.VOB")), dir.file("\xC4.vob"));
}

TEST(PathsTest, SplitAtTheLastSeparator) {
  EXPECT_EQ(DirectoryPart("/a/b/c.vob"), "/a/b");
  EXPECT_EQ(NamePart("/a/b/c.vob"), "c.vob");
  EXPECT_EQ(DirectoryPart("c.vob"), "");
  EXPECT_EQ(NamePart("c.vob"), "c.vob");
}

TEST(PathsTest, ConfigFileUnderXdgConfigHome) {
  const char* old = std::getenv("XDG_CONFIG_HOME");
  std::string saved = old ? old : "";
  ::setenv("XDG_CONFIG_HOME", "/tmp/cfg-home", 1);
  EXPECT_EQ(ConfigFilePath(), "/tmp/cfg-home/ambrix/ambrix.ini");
  ::setenv("XDG_CONFIG_HOME", "", 1);
  EXPECT_EQ(ConfigFilePath(), HomeDirectory() + "/.config/ambrix/ambrix.ini");
  if (old) {
    ::setenv("XDG_CONFIG_HOME", saved.c_str(), 1);
  } else {
    ::unsetenv("XDG_CONFIG_HOME");
  }
}

TEST(PathsTest, ConfigFileWithoutDoubledSeparators) {
  const char* old_xdg = std::getenv("XDG_CONFIG_HOME");
  std::string saved_xdg = old_xdg ? old_xdg : "";
  const char* old_home = std::getenv("HOME");
  std::string saved_home = old_home ? old_home : "";
  ::setenv("XDG_CONFIG_HOME", "/tmp/cfg/", 1);
  EXPECT_EQ(ConfigFilePath(), "/tmp/cfg/ambrix/ambrix.ini");
  ::unsetenv("XDG_CONFIG_HOME");
  ::unsetenv("HOME");
  EXPECT_EQ(ConfigFilePath(), "/.config/ambrix/ambrix.ini");
  ::setenv("HOME", "/home/u/", 1);
  EXPECT_EQ(ConfigFilePath(), "/home/u/.config/ambrix/ambrix.ini");
  if (old_xdg) ::setenv("XDG_CONFIG_HOME", saved_xdg.c_str(), 1);
  if (old_home) {
    ::setenv("HOME", saved_home.c_str(), 1);
  } else {
    ::unsetenv("HOME");
  }
}

TEST(PathsTest, HomeDirectoryFallsBackToRoot) {
  const char* old = std::getenv("HOME");
  std::string saved = old ? old : "";
  ::unsetenv("HOME");
  EXPECT_EQ(HomeDirectory(), "/");
  ::setenv("HOME", "/home/someone", 1);
  EXPECT_EQ(HomeDirectory(), "/home/someone");
  if (old) {
    ::setenv("HOME", saved.c_str(), 1);
  } else {
    ::unsetenv("HOME");
  }
}

TEST(PathsTest, ReplaceExtensionReplacesTheTextAfterTheLastDotOfTheName) {
  EXPECT_EQ(ReplaceExtension("/d/VTS_01_0.IFO", "INI"), "/d/VTS_01_0.INI");
  EXPECT_EQ(ReplaceExtension("/d/a.b.c", "IFO"), "/d/a.b.IFO");
  // A dot in a folder name is not an extension: one is appended.
  EXPECT_EQ(ReplaceExtension("/d.x/name", "INI"), "/d.x/name.INI");
  EXPECT_EQ(ReplaceExtension("name", "INI"), "name.INI");
}

TEST(PathsTest, FindExistingFileIgnoringCaseNeedsTheFileToBeThere) {
  test::TempDir dir;
  test::WriteFileBytes(dir.file("VTS_01_1.VOB"), {1});
  EXPECT_EQ(FindExistingFileIgnoringCase(dir.file("vts_01_1.vob")), dir.file("VTS_01_1.VOB"));
  EXPECT_EQ(FindExistingFileIgnoringCase(dir.file("vts_01_2.vob")), "");
}

}  // namespace
}  // namespace tarvex
