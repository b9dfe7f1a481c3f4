#include "platform/profile.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "platform/file_io.h"
#include "platform/paths.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::ReadFileText;
using test::TempDir;

void WriteText(const std::string& path, const std::string& text) {
  test::WriteFileBytes(path, std::vector<std::uint8_t>(text.begin(), text.end()));
}

class ProfileTest : public ::testing::Test {
 protected:
  // Reads key of section from a fresh store, as a new command would.
  std::string FreshGet(std::string_view section, std::string_view key, std::string_view def = "$") {
    ProfileStore fresh;
    return fresh.GetString(ini, section, key, def);
  }
  void Put(const std::string& text) { WriteText(ini, text); }

  TempDir dir;
  std::string ini = dir.file("source.ini");
  ProfileStore store;
};

// --- look-up -------------------------------------------------------------------------------

TEST_F(ProfileTest, MissingFileGivesDefault) {
  EXPECT_EQ(store.GetString(ini, "s", "k", "dflt"), "dflt");
  EXPECT_FALSE(File::Exists(ini));
}

TEST_F(ProfileTest, MissingSectionGivesDefault) {
  Put("[a]\r\nk=1\r\n");
  EXPECT_EQ(store.GetString(ini, "b", "k", "0"), "0");
}

TEST_F(ProfileTest, MissingKeyGivesDefault) {
  Put("[a]\r\nk=1\r\n");
  EXPECT_EQ(store.GetString(ini, "a", "x", "$"), "$");
}

TEST_F(ProfileTest, ReadsKeyOfSection) {
  Put("[vmgi_mat]\r\nvmg_id=DVDVIDEO-VMG\r\nvmgi_ea=1234\r\n");
  EXPECT_EQ(store.GetString(ini, "vmgi_mat", "vmg_id", "$"), "DVDVIDEO-VMG");
  EXPECT_EQ(store.GetString(ini, "vmgi_mat", "vmgi_ea", "$"), "1234");
}

TEST_F(ProfileTest, SectionAndKeyMatchIgnoringAsciiCase) {
  Put("[KeLvAnE]\nKVLN_Path=/x\n");
  EXPECT_EQ(store.GetString(ini, "kelvane", "kvln_path", "0"), "/x");
  EXPECT_EQ(store.GetString(ini, "KELVANE", "Kvln_PATH", "0"), "/x");
}

TEST_F(ProfileTest, CaseFoldingIsAsciiOnly) {
  // Bytes above 0x7F are compared as they are: \xC4 and \xE4 differ.
  Put("[\xC4]\nk=1\n");
  EXPECT_EQ(store.GetString(ini, "\xC4", "k", "$"), "1");
  EXPECT_EQ(store.GetString(ini, "\xE4", "k", "$"), "$");
}

TEST_F(ProfileTest, FirstMatchingSectionWins) {
  Put("[s]\nk=first\n[S]\nk=second\nonly=here\n");
  EXPECT_EQ(store.GetString(ini, "s", "k", "$"), "first");
  // A key of a later section of the same name is not found.
  EXPECT_EQ(store.GetString(ini, "s", "only", "$"), "$");
}

TEST_F(ProfileTest, FirstMatchingKeyWins) {
  Put("[s]\nk=first\nK=second\n");
  EXPECT_EQ(store.GetString(ini, "s", "k", "$"), "first");
}

TEST_F(ProfileTest, BlankCommentAndNoEqualsLinesAreSkipped) {
  Put("[s]\n\n; k=comment\n   ;k=indented comment\nk\nk=value\n");
  EXPECT_EQ(store.GetString(ini, "s", "k", "$"), "value");
  EXPECT_EQ(store.GetString(ini, "s", "; k", "$"), "$");
}

TEST_F(ProfileTest, LinesBeforeTheFirstSectionAreNotFound) {
  Put("k=orphan\n[s]\nother=1\n");
  EXPECT_EQ(store.GetString(ini, "s", "k", "$"), "$");
  EXPECT_EQ(store.GetString(ini, "", "k", "$"), "$");
}

TEST_F(ProfileTest, WhitespaceIsTrimmedAroundNamesKeysAndValues) {
  Put("  [  sec  ]  \n \t key \t = \t some value \t \n");
  EXPECT_EQ(store.GetString(ini, "sec", "key", "$"), "some value");
  // Arguments are trimmed as well.
  EXPECT_EQ(store.GetString(ini, " sec ", " key ", "$"), "some value");
}

TEST_F(ProfileTest, MatchingQuotesAreRemoved) {
  Put("[s]\nd=\"a b \"\ns='x'\nmixed=\"x'\nopen=\"x\none=\"\nempty=\"\"\ninner=a\"b\"\n");
  EXPECT_EQ(store.GetString(ini, "s", "d", "$"), "a b ");
  EXPECT_EQ(store.GetString(ini, "s", "s", "$"), "x");
  EXPECT_EQ(store.GetString(ini, "s", "mixed", "$"), "\"x'");
  EXPECT_EQ(store.GetString(ini, "s", "open", "$"), "\"x");
  EXPECT_EQ(store.GetString(ini, "s", "one", "$"), "\"");
  EXPECT_EQ(store.GetString(ini, "s", "empty", "$"), "");
  EXPECT_EQ(store.GetString(ini, "s", "inner", "$"), "a\"b\"");
}

TEST_F(ProfileTest, ValuesAreCutAt255Bytes) {
  std::string v255(255, 'a');
  std::string v300 = std::string(255, 'b') + std::string(45, 'c');
  Put("[s]\nexact=" + v255 + "\nlong=" + v300 + "\nquoted=\"" + v300 + "\"\n");
  EXPECT_EQ(store.GetString(ini, "s", "exact", "$"), v255);
  EXPECT_EQ(store.GetString(ini, "s", "long", "$"), std::string(255, 'b'));
  EXPECT_EQ(store.GetString(ini, "s", "quoted", "$"), std::string(255, 'b'));
}

TEST_F(ProfileTest, EmptyValueIsPresent) {
  Put("[s]\nk=\n");
  EXPECT_EQ(store.GetString(ini, "s", "k", "$"), "");
}

TEST_F(ProfileTest, KeyEndsAtTheFirstEqualsSign) {
  Put("[s]\na=b=c\n");
  EXPECT_EQ(store.GetString(ini, "s", "a", "$"), "b=c");
  EXPECT_EQ(store.GetString(ini, "s", "a=b", "$"), "$");
}

TEST_F(ProfileTest, ReadsCrlfAndLfAndKeepsLoneCr) {
  Put("[a]\r\nx=1\r\n[b]\ny=2\nz=in\rside\n");
  EXPECT_EQ(store.GetString(ini, "a", "x", "$"), "1");
  EXPECT_EQ(store.GetString(ini, "b", "y", "$"), "2");
  EXPECT_EQ(store.GetString(ini, "b", "z", "$"), "in\rside");
}

TEST_F(ProfileTest, LastLineWithoutLineEndIsRead) {
  Put("[a]\r\nx=1");
  EXPECT_EQ(store.GetString(ini, "a", "x", "$"), "1");
}

TEST_F(ProfileTest, BytesAreKeptAsTheyAre) {
  Put("[s]\nk=\xE9t\xE9 \xFF\x80\n");
  EXPECT_EQ(store.GetString(ini, "s", "k", "$"), "\xE9t\xE9 \xFF\x80");
}

TEST_F(ProfileTest, ValueEndsAtZeroByte) {
  Put(std::string("[s]\nk=ab\0cd\n", 12));
  EXPECT_EQ(store.GetString(ini, "s", "k", "$"), "ab");
}

TEST_F(ProfileTest, SectionNameRunsToTheLastClosingBracket) {
  Put("[a]b]\nk=1\n[c] ; note\nk=2\n");
  EXPECT_EQ(store.GetString(ini, "a]b", "k", "$"), "1");
  EXPECT_EQ(store.GetString(ini, "c", "k", "$"), "2");
}

TEST_F(ProfileTest, BracketWithoutCloseIsNotASection) {
  Put("[s]\n[open=1\n");
  EXPECT_EQ(store.GetString(ini, "s", "[open", "$"), "1");
}

TEST_F(ProfileTest, DirectoryGivesDefault) {
  EXPECT_EQ(store.GetString(dir.path(), "s", "k", "d"), "d");
}

// --- writes --------------------------------------------------------------------------------

TEST_F(ProfileTest, WriteToMissingFileCreatesSectionWithoutBlankLine) {
  store.WriteString(ini, "kelvane", "kvln_path", "/home/u");
  store.Flush();
  EXPECT_EQ(ReadFileText(ini), "[kelvane]\r\nkvln_path=/home/u\r\n");
}

TEST_F(ProfileTest, WriteExistingKeyInPlaceKeepsItsSpelling) {
  Put("[S]\r\n  KeY = old \r\nnext=1\r\n");
  store.WriteString(ini, "s", "key", "new");
  store.Flush();
  EXPECT_EQ(ReadFileText(ini), "[S]\r\nKeY=new\r\nnext=1\r\n");
}

TEST_F(ProfileTest, WriteUpdatesOnlyTheFirstMatchingKey) {
  Put("[s]\r\nk=1\r\nk=2\r\n");
  store.WriteString(ini, "s", "K", "9");
  store.Flush();
  EXPECT_EQ(ReadFileText(ini), "[s]\r\nk=9\r\nk=2\r\n");
}

TEST_F(ProfileTest, NewKeyGoesAfterTheLastKeyLineOfTheFirstMatchingSection) {
  Put("[a]\r\nx=1\r\n; trailing comment\r\n\r\n[b]\r\ny=2\r\n[A]\r\nz=3\r\n");
  store.WriteString(ini, "a", "new", "v");
  store.Flush();
  EXPECT_EQ(ReadFileText(ini),
            "[a]\r\nx=1\r\nnew=v\r\n; trailing comment\r\n\r\n[b]\r\ny=2\r\n[A]\r\nz=3\r\n");
}

TEST_F(ProfileTest, NewKeyInSectionWithoutKeysGoesRightAfterTheHeader) {
  Put("[a]\r\n; only a comment\r\n[b]\r\n");
  store.WriteString(ini, "a", "k", "v");
  store.Flush();
  EXPECT_EQ(ReadFileText(ini), "[a]\r\nk=v\r\n; only a comment\r\n[b]\r\n");
}

TEST_F(ProfileTest, NewSectionIsAppendedAfterOneBlankLine) {
  Put("[a]\r\nx=1\r\n");
  store.WriteString(ini, "b", "y", "2");
  store.Flush();
  EXPECT_EQ(ReadFileText(ini), "[a]\r\nx=1\r\n\r\n[b]\r\ny=2\r\n");
}

TEST_F(ProfileTest, NewSectionAfterATrailingBlankLineAddsNoSecondOne) {
  Put("[a]\r\nx=1\r\n\r\n");
  store.WriteString(ini, "b", "y", "2");
  store.Flush();
  EXPECT_EQ(ReadFileText(ini), "[a]\r\nx=1\r\n\r\n[b]\r\ny=2\r\n");
}

TEST_F(ProfileTest, NewSectionInAnEmptyExistingFileHasNoBlankLine) {
  Put("");
  store.WriteString(ini, "b", "y", "2");
  store.Flush();
  EXPECT_EQ(ReadFileText(ini), "[b]\r\ny=2\r\n");
}

TEST_F(ProfileTest, NewSectionAfterPreambleOnly) {
  Put("; header comment");
  store.WriteString(ini, "b", "y", "2");
  store.Flush();
  EXPECT_EQ(ReadFileText(ini), "; header comment\r\n\r\n[b]\r\ny=2\r\n");
}

TEST_F(ProfileTest, SecondKeyOfANewSectionFollowsTheFirst) {
  store.WriteString(ini, "a", "k1", "1");
  store.WriteString(ini, "b", "k1", "1");
  store.WriteString(ini, "a", "k2", "2");
  store.Flush();
  EXPECT_EQ(ReadFileText(ini), "[a]\r\nk1=1\r\nk2=2\r\n\r\n[b]\r\nk1=1\r\n");
}

TEST_F(ProfileTest, WriteConvertsLfFileToCrlf) {
  Put("[a]\nx=1\n");
  store.WriteString(ini, "a", "x", "2");
  store.Flush();
  EXPECT_EQ(ReadFileText(ini), "[a]\r\nx=2\r\n");
}

TEST_F(ProfileTest, UnchangedFileIsNotRewritten) {
  Put("[a]\nx=1\n");
  EXPECT_EQ(store.GetString(ini, "a", "x", "$"), "1");
  store.Flush();
  EXPECT_EQ(ReadFileText(ini), "[a]\nx=1\n");
}

TEST_F(ProfileTest, WrittenValueReadsBackBeforeAndAfterFlush) {
  store.WriteString(ini, "s", "k", "v1");
  EXPECT_EQ(store.GetString(ini, "S", "K", "$"), "v1");
  store.Flush();
  EXPECT_EQ(FreshGet("s", "k"), "v1");
}

TEST_F(ProfileTest, ValuesAreWrittenAsGivenAndReadBackTrimmedAndUnquoted) {
  store.WriteString(ini, "s", "k", "  \"quoted\"  ");
  EXPECT_EQ(store.GetString(ini, "s", "k", "$"), "quoted");
  store.Flush();
  EXPECT_EQ(ReadFileText(ini), "[s]\r\nk=  \"quoted\"  \r\n");
  EXPECT_EQ(FreshGet("s", "k"), "quoted");
}

TEST_F(ProfileTest, LongValueIsWrittenWholeAndReadBackCut) {
  std::string v(400, 'x');
  store.WriteString(ini, "s", "k", v);
  EXPECT_EQ(store.GetString(ini, "s", "k", "$"), std::string(255, 'x'));
  store.Flush();
  EXPECT_EQ(ReadFileText(ini), "[s]\r\nk=" + v + "\r\n");
}

TEST_F(ProfileTest, WrittenValueEndsAtZeroByte) {
  store.WriteString(ini, "s", "lang", std::string("e\0x", 3));
  store.Flush();
  EXPECT_EQ(ReadFileText(ini), "[s]\r\nlang=e\r\n");
}

TEST_F(ProfileTest, WrittenValueEndsAtLineBreak) {
  store.WriteString(ini, "s", "k", "first\r\n[evil]\r\nx=1");
  store.WriteString(ini, "s", "j", "a\nb");
  EXPECT_EQ(store.GetString(ini, "evil", "x", "$"), "$");
  store.Flush();
  EXPECT_EQ(ReadFileText(ini), "[s]\r\nk=first\r\nj=a\r\n");
}

TEST_F(ProfileTest, KeyWithEqualsSignReadsBackAsWindowsDoes) {
  store.WriteString(ini, "s", "a=b", "v");
  // What a fresh read of the file gives: key "a", value "b=v".
  EXPECT_EQ(store.GetString(ini, "s", "a=b", "$"), "$");
  EXPECT_EQ(store.GetString(ini, "s", "a", "$"), "b=v");
  store.Flush();
  EXPECT_EQ(ReadFileText(ini), "[s]\r\na=b=v\r\n");
  EXPECT_EQ(FreshGet("s", "a"), "b=v");
  EXPECT_EQ(FreshGet("s", "a=b"), "$");
}

TEST_F(ProfileTest, KeyWithEqualsSignDoesNotShadowAnEarlierKey) {
  Put("[s]\r\na=1\r\n");
  store.WriteString(ini, "s", "a=b", "v");
  EXPECT_EQ(store.GetString(ini, "s", "a", "$"), "1");
  store.Flush();
  EXPECT_EQ(ReadFileText(ini), "[s]\r\na=1\r\na=b=v\r\n");
}

TEST_F(ProfileTest, KeyThatWouldNotReadBackAsAKeyIsNotWritten) {
  store.WriteString(ini, "s", ";k", "v");   // would be a comment
  store.WriteString(ini, "s", "[k", "v]");  // would be a section header
  store.Flush();
  EXPECT_FALSE(File::Exists(ini));
}

TEST_F(ProfileTest, WriteArgumentsAreTrimmed) {
  store.WriteString(ini, "  s  ", "  k  ", "v");
  store.Flush();
  EXPECT_EQ(ReadFileText(ini), "[s]\r\nk=v\r\n");
}

TEST_F(ProfileTest, BytesAreWrittenAsTheyAre) {
  store.WriteString(ini, "s\xE9", "k\xFF", "\x80\x81");
  store.Flush();
  EXPECT_EQ(ReadFileText(ini), "[s\xE9]\r\nk\xFF=\x80\x81\r\n");
  EXPECT_EQ(FreshGet("s\xE9", "k\xFF"), "\x80\x81");
}

// --- the store -----------------------------------------------------------------------------

TEST_F(ProfileTest, FlushCreatesMissingParentFolders) {
  std::string deep = dir.file("a/b/c/x.ini");
  store.WriteString(deep, "s", "k", "v");
  store.Flush();
  EXPECT_EQ(ReadFileText(deep), "[s]\r\nk=v\r\n");
}

TEST_F(ProfileTest, FlushForgetsCachedDocuments) {
  store.WriteString(ini, "s", "k", "v");
  store.Flush();
  // Changed behind the store's back: the next read sees the file again.
  Put("[s]\r\nk=changed\r\n");
  EXPECT_EQ(store.GetString(ini, "s", "k", "$"), "changed");
}

TEST_F(ProfileTest, WritesAreNotOnDiskBeforeFlush) {
  store.WriteString(ini, "s", "k", "v");
  EXPECT_FALSE(File::Exists(ini));
  store.Flush();
  EXPECT_TRUE(File::Exists(ini));
}

TEST_F(ProfileTest, FlushWritesEveryChangedDocumentOnce) {
  std::string other = dir.file("other.ini");
  store.WriteString(ini, "s", "k", "1");
  store.WriteString(other, "s", "k", "2");
  store.WriteString(ini, "s", "k", "3");
  store.Flush();
  EXPECT_EQ(ReadFileText(ini), "[s]\r\nk=3\r\n");
  EXPECT_EQ(ReadFileText(other), "[s]\r\nk=2\r\n");
  // Nothing left to write: a second flush does not touch the files.
  Put("[s]\r\nk=outside\r\n");
  store.Flush();
  EXPECT_EQ(ReadFileText(ini), "[s]\r\nk=outside\r\n");
}

TEST_F(ProfileTest, FlushFileWritesOnlyThatDocument) {
  std::string other = dir.file("other.ini");
  store.WriteString(ini, "s", "k", "1");
  store.WriteString(other, "s", "k", "2");
  EXPECT_TRUE(store.FlushFile(ini));
  EXPECT_EQ(ReadFileText(ini), "[s]\r\nk=1\r\n");
  EXPECT_FALSE(File::Exists(other));
  store.Flush();
  EXPECT_EQ(ReadFileText(other), "[s]\r\nk=2\r\n");
}

TEST_F(ProfileTest, DeleteFileForgetsAndUnlinks) {
  Put("[s]\r\nk=old\r\n");
  store.WriteString(ini, "s", "k", "changed");
  EXPECT_TRUE(store.DeleteFile(ini));
  EXPECT_FALSE(File::Exists(ini));
  EXPECT_EQ(store.GetString(ini, "s", "k", "$"), "$");
  store.Flush();
  EXPECT_FALSE(File::Exists(ini));
}

TEST_F(ProfileTest, DisassemblyStartsFromAnEmptyFileAfterDelete) {
  Put("[old]\r\nstale=1\r\n");
  EXPECT_EQ(store.GetString(ini, "old", "stale", "$"), "1");
  store.DeleteFile(ini);
  store.WriteString(ini, "vmgi_mat", "vmg_id", "DVDVIDEO-VMG");
  store.Flush();
  EXPECT_EQ(ReadFileText(ini), "[vmgi_mat]\r\nvmg_id=DVDVIDEO-VMG\r\n");
}

TEST_F(ProfileTest, DeleteOfMissingFileReportsFalse) {
  EXPECT_FALSE(store.DeleteFile(ini));
}

TEST_F(ProfileTest, UnwritableTargetIsDroppedQuietly) {
  // The parent "folder" is a file: nothing can be written, nothing crashes.
  Put("plain file");
  std::string bad = ini + "/x.ini";
  store.WriteString(bad, "s", "k", "v");
  EXPECT_FALSE(store.FlushFile(bad));
  store.WriteString(bad, "s", "k", "v");
  store.Flush();
  EXPECT_EQ(ReadFileText(ini), "plain file");
}

TEST_F(ProfileTest, RoundTripOfAWholeSource) {
  const std::string source =
      "; written by hand\r\n"
      "[vmgi_mat]\r\n"
      "vmg_id=DVDVIDEO-VMG\r\n"
      "vmg_ea=12\r\n"
      "vmg_cat=x00000000\r\n"
      "\r\n"
      "[tt_srpt]\r\n"
      "tt_srpt_ns=1\r\n"
      "tt_pb_ty01=x3c\r\n";
  Put(source);
  // Rewriting every value with what it already holds changes nothing.
  for (const char* key : {"vmg_id", "vmg_ea", "vmg_cat"}) {
    store.WriteString(ini, "vmgi_mat", key, store.GetString(ini, "vmgi_mat", key, "$"));
  }
  for (const char* key : {"tt_srpt_ns", "tt_pb_ty01"}) {
    store.WriteString(ini, "tt_srpt", key, store.GetString(ini, "tt_srpt", key, "$"));
  }
  store.Flush();
  EXPECT_EQ(ReadFileText(ini), source);
  EXPECT_EQ(FreshGet("TT_SRPT", "TT_PB_TY01"), "x3c");
}

TEST_F(ProfileTest, HundredThousandKeysWrittenAndReadBack) {
  constexpr int kKeys = 100000;
  std::vector<std::string> sections, upper_sections, keys, upper_keys, values;
  for (int i = 0; i < kKeys; ++i) {
    std::string number = std::to_string(1000000 + i).substr(1);  // six digits
    sections.push_back("sec0" + std::to_string(i % 7));
    upper_sections.push_back("SEC0" + std::to_string(i % 7));
    keys.push_back("vobu_sa" + number);
    upper_keys.push_back("VOBU_SA" + number);
    values.push_back(std::to_string(i * 3));
  }
  for (int i = 0; i < kKeys; ++i) store.WriteString(ini, sections[i], keys[i], values[i]);
  store.Flush();
  ProfileStore reader;
  int mismatches = 0;
  for (int i = 0; i < kKeys; ++i) {
    if (reader.GetString(ini, upper_sections[i], upper_keys[i], "$") != values[i]) ++mismatches;
  }
  EXPECT_EQ(mismatches, 0);

  // Overwrite every key in place, then read again.
  for (int i = 0; i < kKeys; ++i) reader.WriteString(ini, sections[i], keys[i], "x");
  reader.Flush();
  ProfileStore again;
  for (int i = 0; i < kKeys; i += 997) {
    if (again.GetString(ini, sections[i], keys[i], "$") != "x") ++mismatches;
  }
  EXPECT_EQ(mismatches, 0);
  // Seven sections, each written once, one blank line between them, keys in write order.
  std::string text = ReadFileText(ini);
  EXPECT_EQ(text.rfind("[sec00]\r\nvobu_sa000000=x\r\nvobu_sa000007=x\r\n", 0), 0u);
  EXPECT_NE(text.find("vobu_sa099995=x\r\n\r\n[sec01]\r\nvobu_sa000001=x\r\n"), std::string::npos);
  EXPECT_NE(text.find("vobu_sa099999=x\r\n"), std::string::npos);
}

TEST_F(ProfileTest, ConfigurationFileScenario) {
  TempDir home;
  const char* old = std::getenv("XDG_CONFIG_HOME");
  std::string saved = old ? old : "";
  ::setenv("XDG_CONFIG_HOME", (home.path() + "/cfg").c_str(), 1);
  std::string config = ConfigFilePath();
  if (old) {
    ::setenv("XDG_CONFIG_HOME", saved.c_str(), 1);
  } else {
    ::unsetenv("XDG_CONFIG_HOME");
  }
  EXPECT_EQ(config, home.path() + "/cfg/ambrix/ambrix.ini");
  // First run: the key is missing; the default directory is written.
  EXPECT_EQ(store.GetString(config, "kelvane", "kvln_path", "0"), "0");
  store.WriteString(config, "kelvane", "kvln_path", "/home/user");
  store.Flush();
  EXPECT_EQ(ReadFileText(config), "[kelvane]\r\nkvln_path=/home/user\r\n");
  // The file is shared with other programs of the suite: their sections stay untouched.
  WriteText(config, "[other]\r\npath=/o\r\n\r\n[Kelvane]\r\nKVLN_PATH=/home/user\r\n");
  EXPECT_EQ(store.GetString(config, "kelvane", "kvln_path", "0"), "/home/user");
  store.WriteString(config, "kelvane", "kvln_path", "/media/dvd/VIDEO_TS");
  store.Flush();
  EXPECT_EQ(ReadFileText(config),
            "[other]\r\npath=/o\r\n\r\n[Kelvane]\r\nKVLN_PATH=/media/dvd/VIDEO_TS\r\n");
}

}  // namespace
}  // namespace tarvex
