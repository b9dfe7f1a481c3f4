// tarvex-cli extract: how the choosers are answered and the order of the runs.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>

#include "extract_test_support.h"

namespace tarvex {
namespace {

using namespace test;  // NOLINT

#ifdef TARVEX_CLI_PATH

struct CliResult {
  int status = -1;
  std::string out;
};

CliResult RunCli(const std::string& args, const std::string& cwd) {
  std::string cmd = "cd '" + cwd + "' && '" + TARVEX_CLI_PATH + "' " + args + " 2>/dev/null";
  CliResult r;
  if (FILE* p = ::popen(cmd.c_str(), "r")) {
    char buf[4096];
    std::size_t n;
    while ((n = std::fread(buf, 1, sizeof buf, p)) > 0) r.out.append(buf, n);
    int st = ::pclose(p);
    r.status = WIFEXITED(st) ? WEXITSTATUS(st) : -1;
  }
  return r;
}

class CliExtract : public ::testing::Test {
 protected:
  void SetUp() override {
    ::setenv("XDG_CONFIG_HOME", dir.file("config").c_str(), 1);
    std::filesystem::create_directory(dir.file("out"));
    a = Ac3Pack(0x80, 1);
    w = LpcmPack(0xA1, 0x01, 2);
    v1 = VideoPack(3);
    v2 = VideoPack(4);
    v2[1000] = 0, v2[1001] = 0, v2[1002] = 1, v2[1003] = 0xB7;  // sequence end code
    s1 = SubPicturePack(0x20, true, 5);
    s2 = SubPicturePack(0x20, true, 6);
    WriteFileBytes(dir.file("movie.vob"), Concat({NavPack(), v1, a, w, s1, v2, s2, a}));
    // The command needs the open step: the stream must list.
    ASSERT_FALSE(RunCli("open movie.vob", dir.path()).out.empty()) << "open lists nothing";
  }
  TempDir dir;
  Record a, w, v1, v2, s1, s2;
};

TEST_F(CliExtract, AnswersEveryChooserFromDirAndStem) {
  CliResult r =
      RunCli("extract movie.vob --audio --video --stills --subpictures --dir out", dir.path());
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(FilesIn(dir.file("out")),
            (std::vector<std::string>{"audio00.AC3", "audio01.WAV", "movie.M2V", "movie000001.SUP",
                                      "movie000002.sup", "movie0001.m2v", "movie0002.m2v"}));
  EXPECT_EQ(ReadFileBytes(dir.file("out/audio00.AC3")), Join({Slice(a, 32), Slice(a, 32)}));
  EXPECT_EQ(ReadFileBytes(dir.file("out/audio01.WAV")).size(), 44u + 2012);
  EXPECT_EQ(ReadFileBytes(dir.file("out/movie.M2V")), Join({Slice(v1, 28), Slice(v2, 28)}));
  EXPECT_EQ(ReadFileBytes(dir.file("out/movie0001.m2v")), Join({Slice(v1, 28), Slice(v2, 28)}));
  EXPECT_EQ(ReadFileBytes(dir.file("out/movie0002.m2v")), Bytes{});
  EXPECT_EQ(ReadFileBytes(dir.file("out/movie000001.SUP")), Slice(s1, 29));
  EXPECT_EQ(ReadFileBytes(dir.file("out/movie000002.sup")), Slice(s2, 29));
  // The report list of the last run (sub-pictures) is printed: it is empty.
  EXPECT_EQ(r.out, "");
}

TEST_F(CliExtract, ExplicitOutputsAnswerTheirChoosers) {
  CliResult r = RunCli(
      "extract movie.vob --video --stills --subpictures --video-out out/v.m2v "
      "--stills-out out/still.xyz --subpictures-out out/sp.sup",
      dir.path());
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(FilesIn(dir.file("out")),
            (std::vector<std::string>{"sp000001.SUP", "sp000002.sup", "still0001.m2v",
                                      "still0002.m2v", "v.m2v"}));
}

TEST_F(CliExtract, AudioFilesGoToTheCurrentFolderWithoutDir) {
  CliResult r = RunCli("extract movie.vob --audio", dir.path());
  EXPECT_EQ(r.status, 0);
  EXPECT_TRUE(File::Exists(dir.file("audio00.AC3")));
  EXPECT_TRUE(File::Exists(dir.file("audio01.WAV")));
}

TEST_F(CliExtract, RunsInTheFixedOrderAndPrintsTheLastRunsReport) {
  // Video first would leave an empty list; sub-pictures run last and find nothing here.
  WriteFileBytes(dir.file("novideo.vob"), Concat({NavPack(), a}));
  CliResult r = RunCli("extract novideo.vob --subpictures --audio --dir out", dir.path());
  EXPECT_EQ(r.out, "End of file, no audio sectors found!\n");
  EXPECT_TRUE(File::Exists(dir.file("out/audio00.AC3")));
}

TEST_F(CliExtract, UnopenableFileStopsBeforeAnyExtraction) {
  CliResult r = RunCli("extract missing.vob --audio --video --dir out", dir.path());
  EXPECT_EQ(r.status, 1);
  EXPECT_TRUE(FilesIn(dir.file("out")).empty());
}

TEST_F(CliExtract, CreationFailureIsAMessageBoxAndExitStatusOne) {
  std::filesystem::create_directory(dir.file("out/movie0001.m2v"));
  CliResult r = RunCli("extract movie.vob --stills --dir out", dir.path());
  EXPECT_EQ(r.status, 1);
}

#endif

}  // namespace
}  // namespace tarvex
