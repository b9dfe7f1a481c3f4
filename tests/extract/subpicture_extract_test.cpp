#include <gtest/gtest.h>

#include "extract/extract.h"
#include "extract_test_support.h"

namespace tarvex {
namespace {

using namespace test;  // NOLINT

struct SupRun {
  SupRun() { std::filesystem::create_directory(fx.dir.file("out")); }
  void Open(const std::vector<Record>& records) { fx.OpenBytes("in.vob", Concat(records), 1); }
  void Answer(const std::string& name) { fx.ui.chooser_answers.push_back(out(name)); }
  std::string out(const std::string& name) const { return fx.dir.file("out") + "/" + name; }
  std::vector<std::string> files() const { return FilesIn(fx.dir.file("out")); }
  Bytes file(const std::string& name) const { return ReadFileBytes(out(name)); }
  Fixture fx;
};

TEST(ExtractSubPicturesTest, ThreeUnitsGiveThreeNumberedFiles) {
  SupRun run;
  Record u1 = SubPicturePack(0x20, true, 1), u1b = SubPicturePack(0x20, false, 2);
  Record u2 = SubPicturePack(0x20, true, 3), u3 = SubPicturePack(0x20, true, 4);
  run.Open({NavPack(), u1, VideoPack(9), u1b, u2, NavPack(), u3});
  run.Answer("base.SUP");
  ExtractSubPictures(*run.fx.ctx);
  EXPECT_EQ(run.files(),
            (std::vector<std::string>{"base000001.SUP", "base000002.sup", "base000003.sup"}));
  EXPECT_EQ(run.file("base000001.SUP"), Join({Slice(u1, 29), Slice(u1b, 24)}));
  EXPECT_EQ(run.file("base000002.sup"), Slice(u2, 29));
  EXPECT_EQ(run.file("base000003.sup"), Slice(u3, 29));
  EXPECT_TRUE(run.fx.lines().empty());
  auto choosers = run.fx.ui.Choosers();
  ASSERT_EQ(choosers.size(), 1u);
  EXPECT_EQ(choosers[0].purpose, ChooserPurpose::kSubPictures);
  EXPECT_EQ(choosers[0].filter, "SubPicture(*.SUP)|*.SUP|");
  EXPECT_EQ(choosers[0].default_name, "");
  EXPECT_EQ(choosers[0].flags, 0x1004u);
}

TEST(ExtractSubPicturesTest, NumberedFileThatIsTheStreamItselfGetsTheUnitRead) {
  SupRun run;
  Record u1 = SubPicturePack(0x20, true, 1), u2 = SubPicturePack(0x20, true, 2);
  std::vector<Record> records = {u1, u2};
  records.insert(records.end(), 3000, VideoPack(3));  // more than one read-ahead window
  run.Open(records);
  // The second numbered file is another name of the open stream: making it truncates the
  // stream under the walk, and the unit whose PTS opened it is still written from the record
  // as it was read; then the walk finds nothing more.
  std::filesystem::create_hard_link(run.fx.dir.file("in.vob"), run.out("x000002.sup"));
  run.Answer("x.SUP");
  ExtractSubPictures(*run.fx.ctx);
  EXPECT_EQ(run.file("x000001.SUP"), Slice(u1, 29));
  EXPECT_EQ(run.file("x000002.sup"), Slice(u2, 29));
  EXPECT_EQ(ReadFileBytes(run.fx.dir.file("in.vob")), Slice(u2, 29));
}

TEST(ExtractSubPicturesTest, FirstPackWithoutPtsGoesToFileOneAndNextPtsOpensFileTwo) {
  SupRun run;
  Record cut = SubPicturePack(0x20, false, 1), u = SubPicturePack(0x20, true, 2);
  run.Open({cut, u});
  run.Answer("x.SUP");
  ExtractSubPictures(*run.fx.ctx);
  EXPECT_EQ(run.files(), (std::vector<std::string>{"x000001.SUP", "x000002.sup"}));
  EXPECT_EQ(run.file("x000001.SUP"), Slice(cut, 24));
  EXPECT_EQ(run.file("x000002.sup"), Slice(u, 29));
}

TEST(ExtractSubPicturesTest, InterleavedStreamsAlternateInOneSeriesNamedWithStream00) {
  SupRun run;
  Record a1 = SubPicturePack(0x20, true, 1), b1 = SubPicturePack(0x21, true, 2);
  Record a2 = SubPicturePack(0x20, true, 3), b2 = SubPicturePack(0x21, true, 4);
  run.Open({a1, b1, a2, b2});
  run.Answer("s.SUP");
  ExtractSubPictures(*run.fx.ctx);
  EXPECT_EQ(run.files(),
            (std::vector<std::string>{"s000001.SUP", "s000002.sup", "s000003.sup", "s000004.sup"}));
  EXPECT_EQ(run.file("s000001.SUP"), Slice(a1, 29));
  EXPECT_EQ(run.file("s000002.sup"), Slice(b1, 29));
  EXPECT_EQ(run.file("s000003.sup"), Slice(a2, 29));
  EXPECT_EQ(run.file("s000004.sup"), Slice(b2, 29));
}

TEST(ExtractSubPicturesTest, StuffingBeforeSubStreamIdIsSkippedNotWritten) {
  SupRun run;
  Record a =
      MakePesPack(0xBD, 0x80, Join({Pts(), {0xFF, 0xFF, 0xFF}}), Join({{0x20}, Pattern(2048, 5)}));
  run.Open({a});
  run.Answer("s.SUP");
  ExtractSubPictures(*run.fx.ctx);
  EXPECT_EQ(run.file("s000001.SUP"), Slice(a, 32));
  EXPECT_EQ(run.file("s000001.SUP")[0], Pattern(1, 5)[0]);
}

TEST(ExtractSubPicturesTest, PayloadLengthFollowsThePesLength) {
  SupRun run;
  Record a = SubPicturePack(0x20, true, 1);
  SetPesLength(a, 300);  // payload 29 .. 319
  run.Open({a});
  run.Answer("s.SUP");
  ExtractSubPictures(*run.fx.ctx);
  EXPECT_EQ(run.file("s000001.SUP"), Slice(a, 29, 320));
}

TEST(ExtractSubPicturesTest, StreamWithoutSubPicturesPrintsEndOfFileLine) {
  SupRun run;
  run.Open({NavPack(), VideoPack(1), Ac3Pack(0x80, 2)});
  run.Answer("s.SUP");
  ExtractSubPictures(*run.fx.ctx);
  EXPECT_EQ(run.fx.lines(), (std::vector<std::string>{"End of file, no audio sectors found!"}));
  EXPECT_TRUE(run.files().empty());
  EXPECT_TRUE(run.fx.ui.Choosers().empty());
}

TEST(ExtractSubPicturesTest, CancelCreatesNothing) {
  SupRun run;
  run.Open({SubPicturePack(0x20, true, 1)});
  ExtractSubPictures(*run.fx.ctx);
  EXPECT_TRUE(run.files().empty());
  EXPECT_TRUE(run.fx.lines().empty());
}

TEST(ExtractSubPicturesTest, IllegalSectorDumpsAndClosesTheCurrentFile) {
  SupRun run;
  Record a = SubPicturePack(0x20, true, 1);
  run.Open({a, NavPack(), NavPack(), IllegalPack(), SubPicturePack(0x20, true, 2)});
  run.Answer("s.SUP");
  ExtractSubPictures(*run.fx.ctx);
  ASSERT_EQ(run.fx.lines().size(), 134u);
  EXPECT_EQ(run.fx.lines()[0], "Illegal sector type, aborting extract operation!");
  EXPECT_EQ(run.fx.lines()[1], "Error at: offset 6144 sector number 3");
  EXPECT_EQ(run.fx.lines()[4], "Hex display of record 3 at file address 6144");
  EXPECT_EQ(run.files(), (std::vector<std::string>{"s000001.SUP"}));
  EXPECT_EQ(run.file("s000001.SUP"), Slice(a, 29));
}

TEST(ExtractSubPicturesTest, PaddingPackEndsTheCopyWithUnknownSectorLine) {
  SupRun run;
  Record a = SubPicturePack(0x20, true, 1);
  run.Open({a, PaddingPack(), SubPicturePack(0x20, true, 2)});
  run.Answer("s.SUP");
  ExtractSubPictures(*run.fx.ctx);
  EXPECT_EQ(run.fx.lines(),
            (std::vector<std::string>{"Unknown sector type, aborting extract operation!"}));
  EXPECT_EQ(run.files(), (std::vector<std::string>{"s000001.SUP"}));
}

TEST(ExtractSubPicturesTest, CreationFailureBoxShowsTheNumberedName) {
  SupRun run;
  run.Open({SubPicturePack(0x20, true, 1), SubPicturePack(0x20, true, 2)});
  std::filesystem::create_directory(run.out("s000002.sup"));
  run.Answer("s.SUP");
  ExtractSubPictures(*run.fx.ctx);
  EXPECT_EQ(run.fx.ui.Messages(),
            (std::vector<std::string>{"File system error!: " + run.out("s000002.sup")}));
  EXPECT_EQ(run.files(), (std::vector<std::string>{"s000001.SUP", "s000002.sup"}));
}

TEST(ExtractSubPicturesTest, CreationFailureOfTheFirstFileShowsItsUpperCaseName) {
  SupRun run;
  run.Open({SubPicturePack(0x20, true, 1)});
  std::filesystem::create_directory(run.out("s000001.SUP"));
  run.Answer("s.SUP");
  ExtractSubPictures(*run.fx.ctx);
  EXPECT_EQ(run.fx.ui.Messages(),
            (std::vector<std::string>{"File system error!: " + run.out("s000001.SUP")}));
}

}  // namespace
}  // namespace tarvex
