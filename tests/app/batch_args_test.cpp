#include "app/batch_args.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/test_support.h"

namespace tarvex {
namespace {

using test::Fixture;

BatchArgs Parse(std::vector<const char*> args) {
  BatchArgs batch;
  ParseBatchArguments(static_cast<int>(args.size()), args.data(), batch);
  return batch;
}

// Stand-in for the batch assembly: leaves the paths it was given in the report list.
void RecordingAssemble(AppContext& ctx) {
  ctx.AddReportLine("assemble " + ctx.batch.asm_path + " -> " + ctx.batch.obj_path);
}

TEST(BatchArguments, SourceAndOutputAssembleOnceOnTheFirstPaint) {
  Fixture f;
  f.ctx->batch = Parse({"tarvex", "-asm=a.ini", "-obj=b.ifo"});
  EXPECT_EQ(f.ctx->batch.batch_args, 2);
  EXPECT_EQ(f.ctx->batch.asm_path, "a.ini");
  EXPECT_EQ(f.ctx->batch.obj_path, "b.ifo");
  WindowState window;
  EXPECT_TRUE(FirstPaint(*f.ctx, window, RecordingAssemble));
  EXPECT_EQ(window.first_paint_done, 1);
  EXPECT_EQ(f.lines(), std::vector<std::string>{"assemble a.ini -> b.ifo"});
}

TEST(BatchArguments, SourceAloneCountsOneAndRunsInteractively) {
  Fixture f;
  f.ctx->batch = Parse({"tarvex", "-asm=a.ini"});
  EXPECT_EQ(f.ctx->batch.batch_args, 1);
  WindowState window;
  EXPECT_FALSE(FirstPaint(*f.ctx, window, RecordingAssemble));
  EXPECT_EQ(window.first_paint_done, 1);
  EXPECT_TRUE(f.lines().empty());
}

TEST(BatchArguments, RepeatedSourceCountsTwiceAndRunsWithTheLastSourceAndNoOutput) {
  Fixture f;
  f.ctx->batch = Parse({"tarvex", "-asm=a.ini", "-asm=c.ini"});
  EXPECT_EQ(f.ctx->batch.batch_args, 2);
  EXPECT_EQ(f.ctx->batch.asm_path, "c.ini");
  EXPECT_EQ(f.ctx->batch.obj_path, "");
  WindowState window;
  EXPECT_TRUE(FirstPaint(*f.ctx, window, RecordingAssemble));
  EXPECT_EQ(f.lines(), std::vector<std::string>{"assemble c.ini -> "});
}

TEST(BatchArguments, OptionsAreCaseSensitive) {
  BatchArgs batch = Parse({"tarvex", "-ASM=a.ini", "-Obj=b.ifo"});
  EXPECT_EQ(batch.batch_args, 0);
  EXPECT_EQ(batch.asm_path, "");
  EXPECT_EQ(batch.obj_path, "");
}

TEST(BatchArguments, RepaintNeverStartsASecondRun) {
  Fixture f;
  f.ctx->batch = Parse({"tarvex", "-obj=b.ifo", "-asm=a.ini"});
  WindowState window;
  EXPECT_TRUE(FirstPaint(*f.ctx, window, RecordingAssemble));
  EXPECT_FALSE(FirstPaint(*f.ctx, window, RecordingAssemble));
  EXPECT_FALSE(FirstPaint(*f.ctx, window, RecordingAssemble));
  EXPECT_EQ(f.lines().size(), 1u);
}

TEST(BatchArguments, ProgramPathIsNeverExamined) {
  BatchArgs batch = Parse({"-asm=self.ini", "-obj=b.ifo"});
  EXPECT_EQ(batch.batch_args, 1);
  EXPECT_EQ(batch.asm_path, "");
  EXPECT_EQ(batch.obj_path, "b.ifo");
}

TEST(BatchArguments, OtherArgumentsAreIgnoredAndEmptyValuesCount) {
  BatchArgs batch = Parse({"tarvex", "-asm", "asm=x", "--asm=y", "-obj=", "-asm=/d/VTS_01_0.INI"});
  EXPECT_EQ(batch.batch_args, 2);
  EXPECT_EQ(batch.asm_path, "/d/VTS_01_0.INI");
  EXPECT_EQ(batch.obj_path, "");
}

TEST(BatchArguments, ThreeArgumentsRunInteractively) {
  Fixture f;
  f.ctx->batch = Parse({"tarvex", "-asm=a.ini", "-obj=b.ifo", "-obj=c.ifo"});
  EXPECT_EQ(f.ctx->batch.batch_args, 3);
  WindowState window;
  EXPECT_FALSE(FirstPaint(*f.ctx, window, RecordingAssemble));
  EXPECT_TRUE(f.lines().empty());
}

}  // namespace
}  // namespace tarvex
