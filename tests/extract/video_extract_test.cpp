#include <gtest/gtest.h>

#include "extract/extract.h"
#include "extract_test_support.h"

namespace tarvex {
namespace {

using namespace test;  // NOLINT

struct VideoRun {
  VideoRun() { std::filesystem::create_directory(fx.dir.file("out")); }
  void Open(const std::vector<Record>& records) { OpenRaw(Concat(records)); }
  void OpenRaw(const Bytes& bytes) { fx.OpenBytes("in.vob", bytes, kFileVob); }
  void Answer(const std::string& name) { fx.ui.chooser_answers.push_back(out(name)); }
  std::string out(const std::string& name) const { return fx.dir.file("out") + "/" + name; }
  std::vector<std::string> files() const { return FilesIn(fx.dir.file("out")); }
  const std::vector<std::string>& lines() const { return fx.lines(); }
  Fixture fx;
};

// A video pack whose payload ends with a sequence end code.
Record StillEnd(std::uint32_t seed) {
  Record r = VideoPack(seed);
  r[1000] = 0, r[1001] = 0, r[1002] = 1, r[1003] = 0xB7;
  return r;
}

TEST(ExtractVideoTest, EveryVideoPayloadGoesIntoTheChosenFile) {
  VideoRun run;
  Record a = VideoPack(1), b = VideoPack(2);
  SetPesLength(b, 1500);
  run.Open({NavPack(), a, Ac3Pack(0x80, 3), SubPicturePack(0x20, true, 4), b, NavPack()});
  run.Answer("movie.M2V");
  ExtractVideo(*run.fx.ctx);
  EXPECT_EQ(run.files(), (std::vector<std::string>{"movie.M2V"}));
  EXPECT_EQ(ReadFileBytes(run.out("movie.M2V")), Join({Slice(a, 28), Slice(b, 28, 1520)}));
  EXPECT_TRUE(run.lines().empty());  // no closing line
}

TEST(ExtractVideoTest, ChooserOffersM2vFilterWithoutDefaultName) {
  VideoRun run;
  run.Open({VideoPack(1)});
  run.Answer("movie.M2V");
  ExtractVideo(*run.fx.ctx);
  auto choosers = run.fx.ui.Choosers();
  ASSERT_EQ(choosers.size(), 1u);
  EXPECT_EQ(choosers[0].purpose, ChooserPurpose::kVideo);
  EXPECT_EQ(choosers[0].filter, "MPEG Video(*.M2V)|*.M2V|");
  EXPECT_EQ(choosers[0].default_name, "");
  EXPECT_EQ(choosers[0].flags, 0x1004u);
}

TEST(ExtractVideoTest, StreamWithoutVideoOnlyPrintsEndOfFileLine) {
  VideoRun run;
  run.Open({NavPack(), Ac3Pack(0x80, 1), PaddingPack()});
  run.Answer("movie.M2V");
  ExtractVideo(*run.fx.ctx);
  EXPECT_EQ(run.lines(), (std::vector<std::string>{"End of file, no audio sectors found!"}));
  EXPECT_TRUE(run.fx.ui.Choosers().empty());
  EXPECT_TRUE(run.files().empty());
}

TEST(ExtractVideoTest, StuffingInThePesHeaderIsWrittenIntoTheOutput) {
  VideoRun run;
  Record a = VideoPack(1, {0xFF, 0xFF, 0xFF, 0xFF});
  a[22] = 9;  // header data length: PTS and four stuffing bytes
  run.Open({a});
  run.Answer("movie.M2V");
  ExtractVideo(*run.fx.ctx);
  Bytes out = ReadFileBytes(run.out("movie.M2V"));
  ASSERT_EQ(out.size(), 2048u - 28);
  EXPECT_EQ(Slice(out, 0, 5), (Bytes{0xFF, 0xFF, 0xFF, 0xFF, Pattern(1, 1)[0]}));
}

TEST(ExtractVideoTest, CancelStopsWithoutAnyLineOrFile) {
  VideoRun run;
  run.Open({VideoPack(1)});
  ExtractVideo(*run.fx.ctx);
  EXPECT_TRUE(run.lines().empty());
  EXPECT_TRUE(run.files().empty());
  EXPECT_EQ(run.fx.ui.Choosers().size(), 1u);
}

TEST(ExtractVideoTest, IllegalSectorBeforeFirstVideoDumpsWithoutAskingForAFile) {
  VideoRun run;
  run.Open({NavPack(), IllegalPack(), VideoPack(1)});
  run.Answer("movie.M2V");
  ExtractVideo(*run.fx.ctx);
  ASSERT_EQ(run.lines().size(), 134u);
  EXPECT_EQ(run.lines()[0], "Illegal sector type, aborting extract operation!");
  EXPECT_EQ(run.lines()[1], "Error at: offset 2048 sector number 1");
  EXPECT_EQ(run.lines()[2], "Sector type found by get_sector_type: 00 0");
  EXPECT_EQ(run.lines()[3], "Sector data:");
  EXPECT_EQ(run.lines()[4], "Hex display of record 1 at file address 2048");
  EXPECT_TRUE(run.fx.ui.Choosers().empty());
  EXPECT_TRUE(run.files().empty());
}

TEST(ExtractVideoTest, IllegalSectorAfterVideoKeepsWhatWasWritten) {
  VideoRun run;
  Record a = VideoPack(1);
  run.Open({a, IllegalPack(), VideoPack(2)});
  run.Answer("movie.M2V");
  ExtractVideo(*run.fx.ctx);
  ASSERT_EQ(run.lines().size(), 134u);
  EXPECT_EQ(run.lines()[1], "Error at: offset 2048 sector number 1");
  EXPECT_EQ(ReadFileBytes(run.out("movie.M2V")), Slice(a, 28));
}

TEST(ExtractVideoTest, PaddingPackEndsTheCopyWithUnknownSectorLine) {
  VideoRun run;
  Record a = VideoPack(1);
  // Phase 1 passes the padding pack; phase 2 starts again from record 0 and stops at it.
  run.Open({PaddingPack(), a});
  run.Answer("movie.M2V");
  ExtractVideo(*run.fx.ctx);
  EXPECT_EQ(run.lines(),
            (std::vector<std::string>{"Unknown sector type, aborting extract operation!"}));
  EXPECT_EQ(ReadFileBytes(run.out("movie.M2V")), Bytes{});
}

TEST(ExtractVideoTest, CreationFailureShowsEmptyFileSystemErrorBox) {
  VideoRun run;
  run.Open({VideoPack(1)});
  std::filesystem::create_directory(run.out("movie.M2V"));
  run.Answer("movie.M2V");
  ExtractVideo(*run.fx.ctx);
  EXPECT_EQ(run.fx.ui.Messages(), (std::vector<std::string>{"File system error!: "}));
  EXPECT_TRUE(run.lines().empty());
  auto& ev = run.fx.ui.events;
  ASSERT_EQ(ev.size(), 4u);
  EXPECT_EQ(ev[1].kind, ScriptedUi::Kind::kWaitCursor);
  EXPECT_TRUE(ev[1].on);
  EXPECT_EQ(ev[3].kind, ScriptedUi::Kind::kWaitCursor);
  EXPECT_FALSE(ev[3].on);
}

TEST(ExtractVideoTest, TruncatedLastRecordIsCopiedWithThePreviousRecordsTail) {
  VideoRun run;
  Record a = VideoPack(1), b = VideoPack(2);
  run.OpenRaw(Join({a, Slice(b, 0, 500)}));
  run.Answer("movie.M2V");
  ExtractVideo(*run.fx.ctx);
  EXPECT_EQ(ReadFileBytes(run.out("movie.M2V")),
            Join({Slice(a, 28), Slice(b, 28, 500), Slice(a, 500)}));
}

TEST(ExtractStillsTest, NStillsGiveNPlusOneFilesTheLastEmpty) {
  VideoRun run;
  Record s1a = VideoPack(1), s1b = StillEnd(2), s2 = StillEnd(3), s3 = StillEnd(4);
  run.Open({NavPack(), s1a, s1b, NavPack(), s2, Ac3Pack(0x80, 9), s3});
  run.Answer("menu.M2V");
  ExtractStills(*run.fx.ctx);
  EXPECT_EQ(run.files(), (std::vector<std::string>{"menu0001.m2v", "menu0002.m2v", "menu0003.m2v",
                                                   "menu0004.m2v"}));
  // The bytes after the end code stay with the still they end.
  EXPECT_EQ(ReadFileBytes(run.out("menu0001.m2v")), Join({Slice(s1a, 28), Slice(s1b, 28)}));
  EXPECT_EQ(ReadFileBytes(run.out("menu0002.m2v")), Slice(s2, 28));
  EXPECT_EQ(ReadFileBytes(run.out("menu0003.m2v")), Slice(s3, 28));
  EXPECT_EQ(ReadFileBytes(run.out("menu0004.m2v")), Bytes{});
  auto choosers = run.fx.ui.Choosers();
  ASSERT_EQ(choosers.size(), 1u);
  EXPECT_EQ(choosers[0].purpose, ChooserPurpose::kStills);
  EXPECT_EQ(choosers[0].filter, "MPEG Video(*.M2V)|*.M2V|");
  EXPECT_EQ(choosers[0].default_name, "");
}

TEST(ExtractStillsTest, EndCodeScanStopsShortOfTheLastPayloadOffsetBytes) {
  // Payload offset s = 28: positions p < 2048 - 28 = 2020 are scanned.
  VideoRun run;
  Record seen = VideoPack(1);
  seen[2019] = 0, seen[2020] = 0, seen[2021] = 1, seen[2022] = 0xB7;
  Record missed = VideoPack(2);
  missed[2020] = 0, missed[2021] = 0, missed[2022] = 1, missed[2023] = 0xB7;
  run.Open({missed, seen, VideoPack(3)});
  run.Answer("menu.M2V");
  ExtractStills(*run.fx.ctx);
  EXPECT_EQ(run.files(), (std::vector<std::string>{"menu0001.m2v", "menu0002.m2v"}));
  EXPECT_EQ(ReadFileBytes(run.out("menu0001.m2v")), Join({Slice(missed, 28), Slice(seen, 28)}));
}

TEST(ExtractStillsTest, EndCodeInThePackHeaderAreaBeyondPayloadIsScannedFromS) {
  // The scan runs over the record from s whatever the packet length says.
  VideoRun run;
  Record a = VideoPack(1);
  SetPesLength(a, 200);  // payload 28 .. 219
  a[500] = 0, a[501] = 0, a[502] = 1, a[503] = 0xB7;
  run.Open({a, VideoPack(2)});
  run.Answer("menu.M2V");
  ExtractStills(*run.fx.ctx);
  EXPECT_EQ(run.files(), (std::vector<std::string>{"menu0001.m2v", "menu0002.m2v"}));
  EXPECT_EQ(ReadFileBytes(run.out("menu0001.m2v")), Slice(a, 28, 220));
}

TEST(ExtractStillsTest, NamesUseLowerCaseM2vAndDropTheLastFourCharacters) {
  VideoRun run;
  run.Open({StillEnd(1), VideoPack(2)});
  run.Answer("title.mpg");
  ExtractStills(*run.fx.ctx);
  VideoRun run2;
  run2.Open({VideoPack(1)});
  run2.Answer("abcdWXYZ");
  ExtractStills(*run2.fx.ctx);
  EXPECT_EQ(run.files(), (std::vector<std::string>{"title0001.m2v", "title0002.m2v"}));
  EXPECT_EQ(run2.files(), (std::vector<std::string>{"abcd0001.m2v"}));
}

TEST(ExtractStillsTest, CreationFailureBoxShowsTheNumberedName) {
  VideoRun run;
  run.Open({StillEnd(1), VideoPack(2)});
  std::filesystem::create_directory(run.out("menu0002.m2v"));
  run.Answer("menu.M2V");
  ExtractStills(*run.fx.ctx);
  EXPECT_EQ(run.fx.ui.Messages(),
            (std::vector<std::string>{"File system error!: " + run.out("menu0002.m2v")}));
  EXPECT_EQ(ReadFileBytes(run.out("menu0001.m2v")), Slice(StillEnd(1), 28));
}

TEST(ExtractStillsTest, CreationFailureOfTheFirstFileShowsItsName) {
  VideoRun run;
  run.Open({VideoPack(1)});
  std::filesystem::create_directory(run.out("menu0001.m2v"));
  run.Answer("menu.M2V");
  ExtractStills(*run.fx.ctx);
  EXPECT_EQ(run.fx.ui.Messages(),
            (std::vector<std::string>{"File system error!: " + run.out("menu0001.m2v")}));
  EXPECT_TRUE(run.lines().empty());
}

TEST(ExtractStillsTest, StreamWithoutVideoPrintsEndOfFileLine) {
  VideoRun run;
  run.Open({NavPack()});
  run.Answer("menu.M2V");
  ExtractStills(*run.fx.ctx);
  EXPECT_EQ(run.lines(), (std::vector<std::string>{"End of file, no audio sectors found!"}));
  EXPECT_TRUE(run.files().empty());
}

}  // namespace
}  // namespace tarvex
