#include "app/save_report.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/paths.h"
#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;

TEST(SaveReport, ChooserAsksForATextFileStartingInTheHomeFolder) {
  Fixture f;
  SaveReportAsText(*f.ctx);  // no answer: cancelled
  ASSERT_EQ(f.ui.Choosers().size(), 1u);
  const ChooserRequest r = f.ui.Choosers()[0];
  EXPECT_EQ(f.ui.events[0].kind, ScriptedUi::Kind::kSaveChooser);
  EXPECT_EQ(r.purpose, ChooserPurpose::kSaveReport);
  EXPECT_EQ(r.filter, "Text File(*.TXT)|*.TXT|");
  EXPECT_EQ(r.initial_dir, HomeDirectory());
  EXPECT_EQ(r.default_name, "");
  EXPECT_EQ(r.flags, kChooserPathMustExist | kChooserHideReadOnly);
}

TEST(SaveReport, CancelledChooserWritesNothing) {
  Fixture f;
  f.ctx->AddReportLine("line");
  f.ui.chooser_answers.push_back(std::nullopt);
  SaveReportAsText(*f.ctx);
  EXPECT_EQ(f.ui.events.size(), 1u);
  EXPECT_FALSE(f.ctx->report.selection().has_value());
}

TEST(SaveReport, WritesEveryLineWithCrLf) {
  Fixture f;
  std::string path = f.dir.file("report.txt");
  f.ctx->AddReportLine("000000 Navigations  SCR 0.000");
  f.ctx->AddReportLine(" ");
  f.ctx->AddReportLine("");
  f.ctx->AddReportLine("last");
  f.ui.chooser_answers.push_back(path);
  SaveReportAsText(*f.ctx);
  EXPECT_TRUE(f.ui.Messages().empty());  // a new file: no question
  EXPECT_EQ(test::ReadFileText(path), "000000 Navigations  SCR 0.000\r\n \r\n\r\nlast\r\n");
  EXPECT_EQ(f.ctx->report.selection(), std::optional<std::size_t>(3));
}

TEST(SaveReport, EmptyListGivesAnEmptyFileAfterTheOverwriteQuestion) {
  Fixture f;
  std::string path = f.dir.file("old.txt");
  test::WriteFileBytes(path, {'o', 'l', 'd'});
  f.ui.chooser_answers.push_back(path);
  f.ui.yes_no_answers.push_back(true);
  SaveReportAsText(*f.ctx);
  EXPECT_EQ(f.ui.Messages(), std::vector<std::string>{"File exists!: Overwrite this file?"});
  EXPECT_EQ(f.ui.events.back().kind, ScriptedUi::Kind::kQuestion);
  EXPECT_EQ(test::ReadFileText(path), "");
}

TEST(SaveReport, EmptyListGivesAnEmptyNewFile) {
  Fixture f;
  std::string path = f.dir.file("new.txt");
  f.ui.chooser_answers.push_back(path);
  SaveReportAsText(*f.ctx);
  EXPECT_TRUE(File::Exists(path));
  EXPECT_EQ(test::ReadFileText(path), "");
}

TEST(SaveReport, OnlyTheFirstThousandLinesAreWritten) {
  Fixture f;
  std::string path = f.dir.file("long.txt");
  std::string want;
  for (int i = 0; i < 1500; ++i) {
    std::string line = "line " + std::to_string(i);
    f.ctx->AddReportLine(line);
    if (i < 1000) want += line + "\r\n";
  }
  f.ui.chooser_answers.push_back(path);
  SaveReportAsText(*f.ctx);
  std::string got = test::ReadFileText(path);
  EXPECT_EQ(got, want);
  EXPECT_EQ(got.substr(got.size() - 10), "line 999\r\n");
  EXPECT_EQ(f.ctx->report.selection(), std::optional<std::size_t>(999));
  EXPECT_EQ(f.ctx->report.size(), 1500u);
}

TEST(SaveReport, AnsweringNoLeavesTheExistingFileUntouched) {
  Fixture f;
  std::string path = f.dir.file("keep.txt");
  test::WriteFileBytes(path, {'k', 'e', 'e', 'p', '\n'});
  f.ctx->AddReportLine("new");
  f.ui.chooser_answers.push_back(path);
  f.ui.yes_no_answers.push_back(false);
  SaveReportAsText(*f.ctx);
  EXPECT_EQ(f.ui.Messages(), std::vector<std::string>{"File exists!: Overwrite this file?"});
  EXPECT_EQ(test::ReadFileText(path), "keep\n");
  EXPECT_FALSE(f.ctx->report.selection().has_value());
}

TEST(SaveReport, AnsweringYesReplacesALongerFileCompletely) {
  Fixture f;
  std::string path = f.dir.file("long_old.txt");
  test::WriteFileBytes(path, std::vector<std::uint8_t>(5000, 'x'));
  f.ctx->AddReportLine("short");
  f.ui.chooser_answers.push_back(path);
  f.ui.yes_no_answers.push_back(true);
  SaveReportAsText(*f.ctx);
  EXPECT_EQ(test::ReadFileText(path), "short\r\n");
}

TEST(SaveReport, UnwritablePathShowsNoMessage) {
  Fixture f;
  f.ctx->AddReportLine("line");
  f.ui.chooser_answers.push_back(f.dir.file("missing/dir/report.txt"));
  SaveReportAsText(*f.ctx);
  EXPECT_TRUE(f.ui.Messages().empty());
  EXPECT_FALSE(File::Exists(f.dir.file("missing/dir/report.txt")));
}

}  // namespace
}  // namespace tarvex
