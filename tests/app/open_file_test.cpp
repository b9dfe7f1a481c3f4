#include "app/open_file.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>

#include "platform/paths.h"
#include "support/file_access.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;

constexpr const char* kFilter =
    "MPEG Files(*.VOB;*.M2P;*.IFO;*.SUP)|*.VOB;*.M2P;*.IFO;*.SUP|VOB Files(*.VOB)|*.VOB|"
    "System Files(*.M2P)|*.M2P|IFO Files(*.IFO)|*.IFO|SubPicture Files(*.SUP)|*.SUP|";

std::vector<std::uint8_t> Bytes(std::size_t n) {
  return std::vector<std::uint8_t>(n, 0);
}

class OpenFileTest : public ::testing::Test {
 protected:
  // Writes a file into the test folder and returns its full path.
  std::string Make(const std::string& name, std::size_t size) {
    std::string path = f.dir.file(name);
    test::WriteFileBytes(path, Bytes(size));
    return path;
  }
  // Runs File > Open with the chooser answering path (or cancelling).
  void Open(std::optional<std::string> path) {
    f.ui.chooser_answers.push_back(std::move(path));
    OpenCommand(ctx());
  }
  AppContext& ctx() { return *f.ctx; }
  std::vector<std::string> Messages() { return f.ui.Messages(); }
  std::string Remembered() {
    ctx().profiles.Flush();
    ProfileStore fresh;
    return fresh.GetString(ConfigFilePath(), "kelvane", "kvln_path", "<missing>");
  }
  void Remember(const std::string& text) {
    std::string config = ConfigFilePath();
    EnsureParentDirectory(config);
    test::WriteFileBytes(config, std::vector<std::uint8_t>(text.begin(), text.end()));
  }

  Fixture f;
};

// --- the chooser and the remembered directory ----------------------------------------------

TEST_F(OpenFileTest, MissingKeyIsWrittenWithTheHomeFolderBeforeTheChooser) {
  // A user interface that looks into the configuration when the chooser appears.
  struct PeekingUi : ScriptedUi {
    AppContext* ctx = nullptr;
    std::string seen;
    std::optional<std::string> ChooseOpenFile(const ChooserRequest& request) override {
      seen = ctx->profiles.GetString(ConfigFilePath(), "kelvane", "kvln_path", "<missing>");
      return ScriptedUi::ChooseOpenFile(request);
    }
  } ui;
  AppContext context(ui);
  ui.ctx = &context;
  OpenCommand(context);  // cancelled
  EXPECT_EQ(ui.seen, HomeDirectory());
  context.profiles.Flush();
  EXPECT_EQ(test::ReadFileText(ConfigFilePath()),
            "[kelvane]\r\nkvln_path=" + HomeDirectory() + "\r\n");
  ASSERT_EQ(ui.Choosers().size(), 1u);
  EXPECT_EQ(ui.Choosers()[0].initial_dir, HomeDirectory());
}

TEST_F(OpenFileTest, ChooserGetsFilterFlagsAndPurpose) {
  Open(std::nullopt);
  ASSERT_EQ(f.ui.Choosers().size(), 1u);
  const ChooserRequest r = f.ui.Choosers()[0];
  EXPECT_EQ(r.purpose, ChooserPurpose::kOpenInput);
  EXPECT_EQ(r.filter, kFilter);
  EXPECT_EQ(r.flags, kChooserFileMustExist | kChooserHideReadOnly);
  EXPECT_EQ(r.default_name, "");
}

TEST_F(OpenFileTest, RememberedDirectoryIsTheChoosersStartFolder) {
  Remember("[Kelvane]\r\nKVLN_PATH=/media/dvd/VIDEO_TS\r\n");
  Open(std::nullopt);
  EXPECT_EQ(f.ui.Choosers().at(0).initial_dir, "/media/dvd/VIDEO_TS");
  EXPECT_EQ(ctx().open.file_dir, "/media/dvd/VIDEO_TS");
  // Nothing was written: the file keeps its spelling.
  ctx().profiles.Flush();
  EXPECT_EQ(test::ReadFileText(ConfigFilePath()), "[Kelvane]\r\nKVLN_PATH=/media/dvd/VIDEO_TS\r\n");
}

TEST_F(OpenFileTest, ValueBeginningWithZeroCountsAsMissing) {
  Remember("[kelvane]\r\nkvln_path=0ld\r\n");
  Open(std::nullopt);
  EXPECT_EQ(f.ui.Choosers().at(0).initial_dir, HomeDirectory());
  EXPECT_EQ(Remembered(), HomeDirectory());
}

TEST_F(OpenFileTest, EmptyRememberedValueGivesAnEmptyStartFolder) {
  Remember("[kelvane]\r\nkvln_path=\r\n");
  Open(std::nullopt);
  EXPECT_EQ(f.ui.Choosers().at(0).initial_dir, "");
  EXPECT_EQ(Remembered(), "");
}

TEST_F(OpenFileTest, ChosenFolderIsRememberedAndSplit) {
  std::string path = Make("title.VOB", 2048);
  Open(path);
  EXPECT_EQ(Remembered(), f.dir.path());
  EXPECT_EQ(ctx().open.file_dir, f.dir.path());
  EXPECT_EQ(ctx().open.file_name, "title.VOB");
  EXPECT_EQ(ctx().open.file_path, path);
}

TEST_F(OpenFileTest, PathWithoutSeparatorGivesEmptyDirectoryAndNameFromSecondCharacter) {
  Open("tarvex-no-such-file.vob");
  EXPECT_EQ(Remembered(), "");
  EXPECT_EQ(ctx().open.file_dir, "");
  EXPECT_EQ(ctx().open.file_name, "arvex-no-such-file.vob");
}

TEST_F(OpenFileTest, SeparatorAtIndexZeroIsNeverFoundBySplit) {
  Open("/tarvex-no-such-file.vob");
  // The remembered directory is cut at the separator (nothing before it) ...
  EXPECT_EQ(Remembered(), "");
  // ... and the split, which never tests index 0, ends there anyway.
  EXPECT_EQ(ctx().open.file_dir, "");
  EXPECT_EQ(ctx().open.file_name, "tarvex-no-such-file.vob");
}

TEST_F(OpenFileTest, VideoManagerIsNeverRecognisedFromTheChooserBuffer) {
  std::string path = Make("VIDEO_TS.IFO", 2048);
  ctx().open.vmg_selected = 1;
  Open(path);
  EXPECT_EQ(ctx().open.vmg_selected, 0);
  EXPECT_EQ(ctx().open.file_type, kFileIfo);
}

TEST_F(OpenFileTest, CancelAfterAFileWasOpenLeavesNoFileAndAnEmptyList) {
  Open(Make("a.vob", 4096));
  ctx().AddReportLine("listed line");
  Open(std::nullopt);
  EXPECT_FALSE(ctx().open.file_handle.is_open());
  EXPECT_TRUE(ctx().report.empty());
  // Nothing else changes.
  EXPECT_EQ(ctx().open.file_type, kFileVob);
  EXPECT_EQ(ctx().open.record_count, 2u);
  EXPECT_EQ(ctx().open.file_path, f.dir.file("a.vob"));
}

TEST_F(OpenFileTest, ListIsClearedOnlyWhenAFileWasOpen) {
  Open(f.dir.file("missing.vob"));
  ctx().AddReportLine("kept");
  Open(std::nullopt);
  ASSERT_EQ(ctx().report.size(), 1u);
  EXPECT_EQ(ctx().report.line(0), "kept");
}

// --- OpenSelectedFile ----------------------------------------------------------------------

TEST_F(OpenFileTest, UpperAndLowerCaseVobAreVobFiles) {
  Open(Make("A.VOB", 2048));
  EXPECT_EQ(ctx().open.file_type, kFileVob);
  Open(Make("b.vob", 2048));
  EXPECT_EQ(ctx().open.file_type, kFileVob);
  Open(Make("c.VoB", 2048));
  EXPECT_EQ(ctx().open.file_type, kFileVob);
  EXPECT_TRUE(Messages().empty());
}

TEST_F(OpenFileTest, Vob2IsOfUnknownType) {
  std::string path = Make("c.vob2", 2048);
  Open(path);
  EXPECT_EQ(ctx().open.file_type, kFileUnknown);
  ASSERT_EQ(Messages().size(), 1u);
  EXPECT_EQ(Messages()[0], "File selection error!: This file type, " + path +
                               ", is unknown or not currently supported");
  // The file stays open; nothing is listed.
  EXPECT_TRUE(ctx().open.file_handle.is_open());
  EXPECT_EQ(ctx().open.file_open, 1);
  EXPECT_TRUE(ctx().report.empty());
}

TEST_F(OpenFileTest, TypeComesFromTheLastThreeLettersIgnoringCase) {
  struct Case {
    const char* name;
    std::int32_t type;
  } cases[] = {{"x.M2p", kFileM2p}, {"x.iFO", kFileIfo},         {"x.SuP", kFileSup},
               {"xvob", kFileVob},  {"x.ifo.txt", kFileUnknown}, {"ob", kFileUnknown}};
  for (const Case& c : cases) {
    ctx().open.file_path = Make(c.name, 0);
    if (std::string(c.name) == "ob") ctx().open.file_path = "ob";  // shorter than three letters
    OpenSelectedFile(ctx());
    EXPECT_EQ(ctx().open.file_type, c.type) << c.name;
  }
}

TEST_F(OpenFileTest, VobOfWholeRecordsSetsCountScrollRangeAndPosition) {
  Open(Make("t.vob", 40 * 2048));
  EXPECT_TRUE(Messages().empty());
  EXPECT_EQ(ctx().open.record_count, 40u);
  EXPECT_EQ(ctx().stream.scroll_range, 40u >> 4);
  EXPECT_EQ(ctx().open.page_end, 16u);
  EXPECT_EQ(ctx().open.scroll_page, 16);
  EXPECT_EQ(ctx().open.file_open, 1);
}

TEST_F(OpenFileTest, VobOf2049BytesGetsLengthMessageAndOneRecord) {
  std::string path = Make("short.vob", 2049);
  Open(path);
  ASSERT_EQ(Messages().size(), 1u);
  EXPECT_EQ(Messages()[0], "File format error!: Selected VOB file " + path + " has illegal length");
  EXPECT_EQ(ctx().open.record_count, 1u);
  EXPECT_EQ(ctx().stream.scroll_range, 0u);
  EXPECT_EQ(ctx().open.page_end, 16u);
  EXPECT_EQ(ctx().open.scroll_page, 16);
  EXPECT_TRUE(ctx().open.file_handle.is_open());
}

// Records whose first four bytes are 00 00 01 (0xE0 + r): every line of the listing names its
// record's code ("Illegal pack_start_code 1e0", "... 1e1" ...).
std::vector<std::uint8_t> NumberedRecords(std::size_t records, std::size_t extra_bytes = 0) {
  std::vector<std::uint8_t> bytes(records * 2048 + extra_bytes, 0);
  for (std::size_t r = 0; r < records; ++r) {
    bytes[r * 2048 + 2] = 0x01;
    bytes[r * 2048 + 3] = static_cast<std::uint8_t>(0xE0 + r);
  }
  return bytes;
}

TEST_F(OpenFileTest, VobListsItsFirstPageOfSixteenRecords) {
  std::string path = f.dir.file("twenty.vob");
  test::WriteFileBytes(path, NumberedRecords(20));
  Open(path);
  ASSERT_EQ(ctx().report.size(), 16u);
  EXPECT_EQ(ctx().report.line(0), "000000Illegal pack_start_code 1e0");
  EXPECT_EQ(ctx().report.line(15), "000015Illegal pack_start_code 1ef");
  EXPECT_EQ(ctx().stream.scroll_range, 1u);
}

TEST_F(OpenFileTest, VobOf2049BytesListsRecordsZeroAndOne) {
  std::string path = f.dir.file("short.vob");
  std::vector<std::uint8_t> bytes = NumberedRecords(1, 1);
  bytes[2048] = 0x77;  // the one byte of record 1
  test::WriteFileBytes(path, bytes);
  Open(path);
  EXPECT_EQ(ctx().open.record_count, 1u);
  // Record 1 comes from a short read: its one byte over the rest of record 0.
  ASSERT_EQ(ctx().report.size(), 2u);
  EXPECT_EQ(ctx().report.line(0), "000000Illegal pack_start_code 1e0");
  EXPECT_EQ(ctx().report.line(1), "000001Illegal pack_start_code 770001e0");
}

TEST_F(OpenFileTest, EmptyVobHasNoRecordsAndNoMessage) {
  Open(Make("empty.vob", 0));
  EXPECT_TRUE(Messages().empty());
  EXPECT_EQ(ctx().open.record_count, 0u);
  EXPECT_TRUE(ctx().open.file_handle.is_open());
}

TEST_F(OpenFileTest, M2pAfterVobListsNothingAndKeepsRecordCount) {
  Open(Make("first.vob", 5 * 2048));
  ctx().stream.scroll_range = 99;
  ctx().open.page_end = 3;
  Open(Make("stream.m2p", 9 * 2048));
  EXPECT_EQ(ctx().open.file_type, kFileM2p);
  EXPECT_EQ(ctx().open.record_count, 5u);
  EXPECT_TRUE(ctx().report.empty());
  EXPECT_TRUE(ctx().open.file_handle.is_open());
  EXPECT_TRUE(Messages().empty());
  // No page, no scroll bar change.
  EXPECT_EQ(ctx().stream.scroll_range, 99u);
  EXPECT_EQ(ctx().open.page_end, 3u);
}

TEST_F(OpenFileTest, IfoClearsTheListAndUsesTheEarlierRecordCount) {
  ctx().open.record_count = 77;  // left from an earlier VOB
  ctx().AddReportLine("old line");
  ctx().open.file_path = Make("VTS_01_0.IFO", 4096);
  OpenSelectedFile(ctx());
  EXPECT_EQ(ctx().open.file_type, kFileIfo);
  EXPECT_EQ(ctx().open.record_count, 77u);
  EXPECT_EQ(ctx().stream.scroll_range, 77u);
  EXPECT_EQ(ctx().open.page_end, 16u);
  EXPECT_EQ(ctx().open.scroll_page, 16);
  for (const std::string& line : ctx().report.lines()) EXPECT_NE(line, "old line");
}

TEST_F(OpenFileTest, SupSetsScrollStateLikeIfo) {
  ctx().open.record_count = 12;
  ctx().open.file_path = Make("menu.sup", 100);
  OpenSelectedFile(ctx());
  EXPECT_EQ(ctx().open.file_type, kFileSup);
  EXPECT_EQ(ctx().open.record_count, 12u);
  EXPECT_EQ(ctx().stream.scroll_range, 12u);
  EXPECT_EQ(ctx().open.page_end, 16u);
  EXPECT_EQ(ctx().open.scroll_page, 16);
}

TEST_F(OpenFileTest, MissingFileCanNotBeOpened) {
  std::string path = f.dir.file("gone.vob");
  Open(path);
  ASSERT_EQ(Messages().size(), 1u);
  EXPECT_EQ(Messages()[0], "File selection error!: Can not open " + path);
  EXPECT_FALSE(ctx().open.file_handle.is_open());
  EXPECT_EQ(ctx().open.file_open, 0);
  EXPECT_EQ(ctx().open.file_path, path);
  EXPECT_EQ(ctx().open.record_count, 0u);
}

TEST_F(OpenFileTest, DirectoryCanNotBeOpened) {
  std::string path = f.dir.file("folder.vob");
  std::filesystem::create_directory(path);
  Open(path);
  ASSERT_EQ(Messages().size(), 1u);
  EXPECT_EQ(Messages()[0], "File selection error!: Can not open " + path);
  EXPECT_FALSE(ctx().open.file_handle.is_open());
}

TEST_F(OpenFileTest, DanglingLinkCanNotBeOpened) {
  std::string path = f.dir.file("link.vob");
  ASSERT_EQ(::symlink(f.dir.file("nowhere").c_str(), path.c_str()), 0);
  Open(path);
  ASSERT_EQ(Messages().size(), 1u);
  EXPECT_EQ(Messages()[0], "File selection error!: Can not open " + path);
}

TEST_F(OpenFileTest, SocketCanNotBeOpened) {
  std::string path = f.dir.file("sock.vob");
  int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
  ASSERT_GE(fd, 0);
  // Bound by its name from inside the test folder: a socket address holds at most 107 bytes,
  // whatever the length of the temporary folder's path.
  sockaddr_un addr{};
  addr.sun_family = AF_UNIX;
  const std::string name = "sock.vob";
  std::copy(name.begin(), name.end(), addr.sun_path);
  const std::filesystem::path previous = std::filesystem::current_path();
  std::filesystem::current_path(f.dir.path());
  const int bound = ::bind(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr);
  std::filesystem::current_path(previous);
  ASSERT_EQ(bound, 0);
  Open(path);
  ::close(fd);
  ASSERT_EQ(Messages().size(), 1u);
  EXPECT_EQ(Messages()[0], "File selection error!: Can not open " + path);
}

TEST_F(OpenFileTest, UnreadableFileCanNotBeOpened) {
  std::string path = Make("locked.vob", 2048);
  ASSERT_EQ(::chmod(path.c_str(), 0), 0);
  // Opened in a child without the capabilities that let root read any file: the messages shown
  // there, one a line, and whether the file was left open.
  std::string seen = test::RunWithoutFileAccessOverride([&] {
    Open(path);
    std::string text;
    for (const std::string& message : Messages()) text += message + "\n";
    return text + (ctx().open.file_handle.is_open() ? "open" : "closed");
  });
  EXPECT_EQ(seen, "File selection error!: Can not open " + path + "\nclosed");
}

TEST_F(OpenFileTest, NewOpenClosesThePreviousFile) {
  Open(Make("one.vob", 2048));
  ASSERT_TRUE(ctx().open.file_handle.is_open());
  Open(f.dir.file("missing.vob"));
  EXPECT_FALSE(ctx().open.file_handle.is_open());
  EXPECT_EQ(ctx().open.record_count, 1u);
}

TEST_F(OpenFileTest, PathEndsAtItsFirstZeroByte) {
  std::string path = Make("z.vob", 2048);
  Open(path + std::string("\0.m2p", 5));
  EXPECT_EQ(ctx().open.file_type, kFileVob);
  EXPECT_EQ(ctx().open.file_path, path);
}

}  // namespace
}  // namespace tarvex
