// tarvex-cli info, verify and list --json: exit statuses, JSON parsed back, help.
#include <gtest/gtest.h>

#include <cstdlib>

#include "disc/disc_test_support.h"

#ifdef TARVEX_CLI_PATH

namespace tarvex {
namespace {

using test::RunCli;

TEST(DiscCli, VerifyExitStatuses) {
  test::CliRun clean = RunCli({"verify", test::SampleDisc()});
  EXPECT_EQ(clean.status, 0);
  EXPECT_EQ(clean.out, "");
  EXPECT_NE(clean.err.find("0 errors, 0 warnings"), std::string::npos) << clean.err;

  test::TempDir dir;
  test::CliRun damaged = RunCli({"verify", test::Damage(dir, "nav-lbn")});
  EXPECT_EQ(damaged.status, 1);
  EXPECT_EQ(damaged.out,
            "error VTS_01_1.VOB@30 nav.lbn: at sector 30, PCI says 31 and DSI says 30\n");

  test::CliRun warning = RunCli({"verify", test::Damage(dir, "mux-rate")});
  EXPECT_EQ(warning.status, 0);  // warnings only

  test::CliRun missing = RunCli({"verify", dir.file("nothing")});
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.err,
            "tarvex-cli verify: " + dir.file("nothing") + ": no such file or folder\n");

  EXPECT_EQ(RunCli({"verify"}).status, 2);
  EXPECT_EQ(RunCli({"verify", "--bogus", test::SampleDisc()}).status, 2);
  EXPECT_EQ(RunCli({"info"}).status, 2);
}

// An image without a UDF file system (here an ISO 9660 image of the sample, made without
// -dvd-video or -udf) is refused with one line of ours, nothing from the image library.
TEST(DiscCli, ImageWithoutUdfIsRefusedInOneLine) {
  ASSERT_TRUE(test::HaveTool("genisoimage")) << "genisoimage missing (tools/install-deps.sh test)";
  test::TempDir dir;
  std::string iso = dir.file("plain.iso");
  std::string command = "genisoimage -quiet -o " + test::ShellQuote(iso) + " " +
                        test::ShellQuote(test::SampleDisc()) + " 2>/dev/null";
  ASSERT_EQ(std::system(command.c_str()), 0);
  test::CliRun run = RunCli({"info", iso});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, "tarvex-cli info: " + iso + ": no UDF file system in the image\n");
}

TEST(DiscCli, VerifySummaryCountsInWords) {
  test::TempDir dir;
  test::CliRun damaged = RunCli({"verify", test::Damage(dir, "nav-lbn")});
  EXPECT_EQ(damaged.err, test::Damage(dir, "nav-lbn") + ": 1 error, 0 warnings, 0 notes\n");
}

TEST(DiscCli, VerifyJsonAndListChecks) {
  test::CliRun run = RunCli({"verify", "--json", test::SampleDisc()});
  EXPECT_EQ(run.status, 0);
  nlohmann::json j = test::ParseJson(run.out);
  EXPECT_EQ(j["disc"], test::SampleDisc());
  EXPECT_TRUE(j["findings"].empty());
  EXPECT_EQ(j["errors"], 0);
  EXPECT_EQ(j["warnings"], 0);

  test::CliRun checks = RunCli({"verify", "--list-checks"});
  EXPECT_EQ(checks.status, 0);
  EXPECT_NE(checks.out.find("nav.lbn "), std::string::npos);
  EXPECT_NE(checks.out.find("vobu_admap.navpacks"), std::string::npos);
  test::ParseJson(RunCli({"verify", "--list-checks", "--json"}).out);

  EXPECT_EQ(RunCli({"verify", "--ifo-only", test::SampleDisc()}).status, 0);
}

TEST(DiscCli, InfoTextAndJson) {
  test::CliRun text = RunCli({"info", test::SampleDisc()});
  EXPECT_EQ(text.status, 0);
  EXPECT_NE(text.out.find("Title 1: title set 1, title 1, 00:00:08.000, 3 chapters, 3 cells"),
            std::string::npos)
      << text.out;
  EXPECT_NE(text.out.find("  Audio 2: fr lpcm, 48000 Hz, 2 channels, stream 0xa1"),
            std::string::npos);
  test::CliRun json = RunCli({"info", "--json", test::SampleDisc()});
  EXPECT_EQ(json.status, 0);
  nlohmann::json j = test::ParseJson(json.out);
  EXPECT_EQ(j["titles"][0]["chapters"].size(), 3u);
  test::CliRun missing = RunCli({"info", "/nonexistent/disc"});
  EXPECT_EQ(missing.status, 1);
  EXPECT_NE(missing.err.find("no such file or folder"), std::string::npos);
  EXPECT_NE(RunCli({"info", "--help"}).out.find("--json"), std::string::npos);
  EXPECT_NE(RunCli({"verify", "--help"}).out.find("--ifo-only"), std::string::npos);
}

TEST(DiscCli, ListJsonOneObjectPerPack) {
  std::string vob = test::SampleDisc() + "/VIDEO_TS/VTS_01_1.VOB";
  test::CliRun run = RunCli({"list", vob, "0", "6", "--json"});
  EXPECT_EQ(run.status, 0);
  nlohmann::json j = test::ParseJson(run.out);
  const nlohmann::json& p = j["packets"];
  ASSERT_EQ(p.size(), 6u);
  // Records 0 to 4 of the title VOB: navigation, video, AC-3, LPCM and MPEG audio packs
  // (samples/README.md).
  EXPECT_EQ(p[0]["record"], 0);
  EXPECT_EQ(p[0]["type"], "Navigations");
  EXPECT_EQ(p[0]["stream_id"], "0xbf");
  EXPECT_EQ(p[1]["type"], "Video");
  EXPECT_EQ(p[1]["stream_id"], "0xe0");
  EXPECT_EQ(p[2]["type"], "AC-3 Audio");
  EXPECT_EQ(p[2]["stream_id"], "0xbd");
  EXPECT_EQ(p[2]["sub_stream_id"], "0x80");
  EXPECT_EQ(p[3]["type"], "PCM Audio");
  EXPECT_EQ(p[3]["sub_stream_id"], "0xa1");
  EXPECT_EQ(p[4]["type"], "MPEG Audio");
  EXPECT_EQ(p[4]["stream_id"], "0xc2");
  EXPECT_FALSE(p[4].contains("sub_stream_id"));
  // The listing's "SCR 146.086 PTS 48003 DTS 45000" of record 1: 146 x 300 + 86 ticks.
  EXPECT_EQ(p[1]["scr"], 146 * 300 + 86);
  EXPECT_EQ(p[1]["scr_base"], 146);
  EXPECT_EQ(p[1]["pts"], 48003);
  EXPECT_EQ(p[1]["dts"], 45000);
  EXPECT_FALSE(p[0].contains("pts"));
  // Records past the end of the file are not listed.
  nlohmann::json tail = test::ParseJson(RunCli({"list", vob, "1244", "1300", "--json"}).out);
  EXPECT_EQ(tail["packets"].size(), 2u);
  EXPECT_EQ(RunCli({"list", "/nonexistent.VOB", "0", "1", "--json"}).status, 1);
}

TEST(DiscCli, ExistingCommandsAreUnchanged) {
  std::string vob = test::SampleDisc() + "/VIDEO_TS/VTS_01_1.VOB";
  test::CliRun run = RunCli({"list", vob, "0", "2"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out,
            "000000 Navigations  SCR 0.000\n000001 Video  SCR 146.086 PTS 48003 DTS 45000\n"
            " -> Video: Frame number 0 Frame type 1 GOP\n");
}

}  // namespace
}  // namespace tarvex

#endif  // TARVEX_CLI_PATH
