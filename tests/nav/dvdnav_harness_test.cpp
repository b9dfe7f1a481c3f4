// The libdvdnav player of the playback tests, pinned on the authored discs: each path below is
// the one nav_discs.h derives from the disc's control file, written out by hand.
#include "nav/dvdnav_harness.h"

#include <gtest/gtest.h>

#include "nav/nav_discs.h"

namespace tarvex::test {
namespace {

struct Expected {
  std::string path;
  std::string end = "stop";
};

void ExpectRun(const std::string& disc, const std::string& keys, const Expected& expected) {
  ASSERT_FALSE(disc.empty());
  nlohmann::json run = RunDvdnav(disc, keys);
  EXPECT_EQ(CellPath(run), expected.path) << "keys: " << keys;
  EXPECT_EQ(run.value("end", ""), expected.end) << "keys: " << keys << "\n" << run.dump();
  EXPECT_EQ(run["keys_left"], nlohmann::json::array()) << "keys: " << keys;
}

TEST(DvdnavHarness, ProtectionDefaultButtonPlaysTheRealTitle) {
  const std::string& disc = AuthoredNavDiscs().protection;
  ExpectRun(disc, "", {"vmgm/0/1 c1 [enter*] vts/1/7 c1 t7.1"});
  ExpectRun(disc, "1", {"vmgm/0/1 c1 [1] vts/1/7 c1 t7.1"});
  EXPECT_EQ(RunDvdnav(disc, "")["first_title"], 7);
}

TEST(DvdnavHarness, ProtectionLongestDecoyCallsTheMenuBack) {
  const std::string& disc = AuthoredNavDiscs().protection;
  std::string path = "vts/1/12 c1 t12.1 vmgm/0/1 c1 [enter*] vts/1/7 c1 t7.1";
  ExpectRun(disc, "2", {"vmgm/0/1 c1 [2] " + path});
  // `down` moves the highlight from b1 to b2 and the wait goes on until `enter`.
  ExpectRun(disc, "down,enter", {"vmgm/0/1 c1 [enter] " + path});
}

TEST(DvdnavHarness, ProtectionFirstSectorsAreTheCellsOwn) {
  nlohmann::json run = RunDvdnav(AuthoredNavDiscs().protection, "2");
  ASSERT_EQ(run["cells"].size(), 4u);
  // The menu's only cell starts the menu VOB set; titles 7 and 12 follow title 1 in the title
  // VOB set, 12 after 7.
  EXPECT_EQ(run["cells"][0]["first_sector"], 0);
  EXPECT_EQ(run["cells"][2]["first_sector"], 0);
  EXPECT_GT(run["cells"][3]["first_sector"].get<int>(), 0);
  EXPECT_GT(run["cells"][1]["first_sector"].get<int>(), run["cells"][3]["first_sector"].get<int>());
}

TEST(DvdnavHarness, RegistersCountAndChooseTheButtonsTarget) {
  const std::string& disc = AuthoredNavDiscs().registers;
  std::string counted = "vts/1/1 c1 t1.1 vts/1/1 c1 t1.1 vts/1/1 c1 t1.1 ";
  ExpectRun(disc, "", {counted + "vmgm/0/1 c1 [enter*] vts/1/2 c1 t2.1"});
  ExpectRun(disc, "1", {counted + "vmgm/0/1 c1 [1] vts/1/2 c1 t2.1"});
  // b2 sets g2 to 10: the comparison of b1 then sends playback to title 3.
  ExpectRun(disc, "2", {counted + "vmgm/0/1 c1 [2] vmgm/0/1 c1 [enter*] vts/1/3 c1 t3.1"});
  ExpectRun(disc, "down,enter",
            {counted + "vmgm/0/1 c1 [enter] vmgm/0/1 c1 [enter*] vts/1/3 c1 t3.1"});
}

TEST(DvdnavHarness, RegistersRunStopsAtTheCellLimit) {
  nlohmann::json run = RunDvdnav(AuthoredNavDiscs().registers, "", 2);
  EXPECT_EQ(CellPath(run), "vts/1/1 c1 t1.1 vts/1/1 c1 t1.1");
  EXPECT_EQ(run["end"], "limit");
}

TEST(DvdnavHarness, ChainLoopWithoutCellsIsALoop) {
  const std::string& disc = AuthoredNavDiscs().chain_loop;
  // libdvdnav follows the chains inside the activation of b1 and never returns from it.
  nlohmann::json run = RunDvdnav(disc, "");
  EXPECT_EQ(CellPath(run), "vmgm/0/1 c1 [enter*]");
  EXPECT_EQ(run["end"], "loop");
  EXPECT_EQ(run["first_title"], nullptr);
  ExpectRun(disc, "2", {"vmgm/0/1 c1 [2] vts/1/1 c1 t1.1"});
}

TEST(DvdnavHarness, ResumeReturnsToTheCellTheCallNames) {
  const std::string& disc = AuthoredNavDiscs().resume;
  std::string title1 = "vts/1/1 c1 t1.1 vts/1/1 c2 t1.2 ";
  ExpectRun(disc, "",
            {title1 + "vtsm/1/1 c1 [enter*] vts/1/1 c3 t1.3 vts/1/2 c1 t2.1 vmgm/0/1 c1 [enter*] "
                      "vts/1/2 c2 t2.2"});
  ExpectRun(disc, "2",
            {title1 + "vtsm/1/1 c1 [2] vts/1/2 c1 t2.1 vmgm/0/1 c1 [enter*] vts/1/2 c2 t2.2"});
  ExpectRun(disc, "1,2",
            {title1 + "vtsm/1/1 c1 [1] vts/1/1 c3 t1.3 vts/1/2 c1 t2.1 vmgm/0/1 c1 [2]"});
}

TEST(DvdnavHarness, ResumedCellStartsWhereItsChainSays) {
  nlohmann::json run = RunDvdnav(AuthoredNavDiscs().resume, "");
  ASSERT_GE(run["cells"].size(), 4u);
  // Cells 1, 2 and 3 of title 1 lie one after the other from the start of the VOB set.
  EXPECT_EQ(run["cells"][0]["first_sector"], 0);
  EXPECT_GT(run["cells"][1]["first_sector"].get<int>(), 0);
  EXPECT_GT(run["cells"][3]["first_sector"].get<int>(), run["cells"][1]["first_sector"].get<int>());
}

TEST(DvdnavHarness, TwoTitleSetsRootAndChapterMenus) {
  const std::string& disc = AuthoredNavDiscs().two_title_sets;
  ExpectRun(disc, "", {"vtsm/1/1 c1 [enter*] vts/1/1 c2 t1.2"});
  ExpectRun(disc, "2", {"vtsm/1/1 c1 [2] vtsm/1/2 c1 [enter*] vts/1/1 c1 t1.1 vts/1/1 c2 t1.2"});
  ExpectRun(disc, "2,2", {"vtsm/1/1 c1 [2] vtsm/1/2 c1 [2] vts/1/1 c2 t1.2"});
  ExpectRun(disc, "3,2", {"vtsm/1/1 c1 [3] vtsm/2/1 c1 [2] vtsm/2/2 c1 [enter*] vts/2/2 c2 t3.2"});
  ExpectRun(disc, "3,1", {"vtsm/1/1 c1 [3] vtsm/2/1 c1 [1] vts/2/1 c1 t2.1"});
  EXPECT_EQ(RunDvdnav(disc, "3,1")["first_title"], 2);
}

TEST(DvdnavHarness, ExitFromAButtonAndAfterAStill) {
  const std::string& disc = AuthoredNavDiscs().exit;
  ExpectRun(disc, "", {"vmgm/0/1 c1 [enter*] vts/1/1 c1 t1.1 [skip*]"});
  ExpectRun(disc, "2", {"vmgm/0/1 c1 [2]"});
  // `title` at the still calls the title menu (VMGM menu 1) from the title.
  ExpectRun(disc, "1,title,2", {"vmgm/0/1 c1 [1] vts/1/1 c1 t1.1 [title] vmgm/0/1 c1 [2]"});
}

TEST(DvdnavHarness, AutoActionButtonActivatesWhenSelected) {
  const std::string& disc = AuthoredNavDiscs().auto_action;
  ExpectRun(disc, "", {"vmgm/0/1 c1 [enter*] vts/1/1 c1 t1.1"});
  ExpectRun(disc, "3", {"vmgm/0/1 c1 [3]"});
  nlohmann::json run = RunDvdnav(disc, "down,enter");
  EXPECT_EQ(CellPath(run), "vmgm/0/1 c1 [down] vts/1/2 c1 t2.1");
  EXPECT_EQ(run["keys_left"], nlohmann::json::array({"enter"}));
}

}  // namespace
}  // namespace tarvex::test
