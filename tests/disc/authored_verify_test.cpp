// verify on discs authored at test time by ffmpeg, spumux and dvdauthor, clean and with faults
// whose findings are worked out from the discs' own bytes.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "disc/authored_disc.h"
#include "disc/disc_test_support.h"
#include "disc/verify.h"

namespace tarvex {
namespace {

VerifyResult Verify(const std::string& path) {
  return test::VerifyAt(path);
}

// "check FILE:TABLE#ENTRY" or "check FILE@RECORD" of each finding.
std::vector<std::string> Places(const VerifyResult& r) {
  std::vector<std::string> places;
  for (const Finding& f : r.findings) {
    std::string p = f.check + " " + f.file;
    if (f.table) p += ":" + *f.table;
    if (f.entry) p += "#" + std::to_string(*f.entry);
    if (f.sector) p += "@" + std::to_string(*f.sector);
    places.push_back(p);
  }
  return places;
}

// The first record of a VOB holding a pack of private stream 1 sub-stream id, or -1.
long FirstPackOf(const std::string& vob, std::uint8_t id) {
  std::vector<std::uint8_t> bytes = test::ReadFileBytes(vob);
  for (std::size_t r = 0; r + 2048 <= bytes.size(); r += 2048) {
    if (bytes[r + 14] == 0 && bytes[r + 15] == 0 && bytes[r + 16] == 1 && bytes[r + 17] == 0xBD &&
        bytes[r + 23 + bytes[r + 22]] == id) {
      return static_cast<long>(r / 2048);
    }
  }
  return -1;
}

class AuthoredVerify : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(test::HaveAuthoringTools()) << "ffmpeg, spumux or dvdauthor missing";
  }
};

// DTS stream 1 (0x89) and sub-picture stream 17 (0x31) are DVD-Video streams like the first
// ones of their kinds.
TEST_F(AuthoredVerify, DtsAfterTheFirstAndSubpicturesAboveFifteenVerifyClean) {
  VerifyResult r = Verify(test::WidePalDisc());
  EXPECT_TRUE(r.findings.empty()) << VerifyText(r);
}

// A 16:9 title that permits letterbox but not pan-scan: its control's pan-scan number (0)
// names no stream. With the wide-screen packs (0x24) renumbered 0x20, 0x20 is undeclared and
// the wide-screen stream missing.
TEST_F(AuthoredVerify, SubpictureNumbersOfDisplaysNotPermittedMapNoStream) {
  test::TempDir dir;
  std::string disc = test::CopyDisc(test::WidePalDisc(), dir, "renumbered");
  std::string vob = disc + "/VIDEO_TS/VTS_01_1.VOB";
  long first = FirstPackOf(vob, 0x24);
  ASSERT_GE(first, 0);
  ASSERT_GT(test::RenumberStreams(vob, {{0x24, 0x20}}), 0u);
  VerifyResult r = Verify(disc);
  EXPECT_EQ(Places(r),
            (std::vector<std::string>{"stream.missing VTS_01_0.IFO:VTS_PGCIT#1",
                                      "stream.undeclared VTS_01_1.VOB@" + std::to_string(first)}))
      << VerifyText(r);
  ASSERT_FALSE(r.findings.empty());
  EXPECT_EQ(r.findings[0].message,
            "sub-picture stream 1 (en, wide) plays as 0x24, which none of the chain's cells holds");
}

// dvdauthor declares MPEG audio 2 channels whatever its frames say: a mono stream gives the
// channel warning, and nothing else is wrong.
TEST_F(AuthoredVerify, MonoMpegAudioDeclaredStereoIsAChannelWarning) {
  test::TempDir dir;
  test::MakeClip(dir, {.file = "mono.mpg", .seconds = 1, .audio = {"mp2"}, .channels = {1}});
  std::string disc = test::AuthorDisc(dir, R"(<dvdauthor dest="out">
  <vmgm><menus><video format="pal" aspect="4:3"/></menus></vmgm>
  <titleset><titles>
    <video format="pal" aspect="4:3"/><audio lang="en"/><pgc><vob file="mono.mpg"/></pgc>
  </titles></titleset>
</dvdauthor>
)");
  ASSERT_FALSE(disc.empty());
  VerifyResult r = Verify(disc);
  EXPECT_EQ(Places(r), (std::vector<std::string>{"stream.audio-channels VTS_01_0.IFO:VTSI_MAT"}))
      << VerifyText(r);
  ASSERT_EQ(r.findings.size(), 1u);
  EXPECT_EQ(r.findings[0].severity, Severity::kWarning);
  const std::string& m = r.findings[0].message;
  EXPECT_TRUE(
      m.starts_with("title audio stream 1 (mpeg1, en) as 0xc0: declared 2 channels; the "
                    "stream (VTS_01_1.VOB record "))
      << m;
  EXPECT_TRUE(m.ends_with(") has 1 channel")) << m;
}

TEST_F(AuthoredVerify, TwoTitlesAndTwoMenuLanguagesVerifyClean) {
  VerifyResult r = Verify(test::NtscTwoTitleDisc());
  EXPECT_TRUE(r.findings.empty()) << VerifyText(r);
}

// The byte offset of program chain k (from 1) of language unit u (from 1) of the video
// manager's menu table, read through VMGM_PGCI_UT's pointers.
std::size_t MenuChainOffset(const std::vector<std::uint8_t>& ifo, std::size_t u, std::size_t k) {
  auto be32 = [&](std::size_t at) {
    return (std::size_t{ifo.at(at)} << 24) | (std::size_t{ifo.at(at + 1)} << 16) |
           (std::size_t{ifo.at(at + 2)} << 8) | ifo.at(at + 3);
  };
  std::size_t table = be32(0xC8) * 2048;               // VMGM_PGCI_UT sector
  std::size_t unit = table + be32(table + 8 * u + 4);  // language unit pointer u
  return unit + be32(unit + 8 * k + 4);                // chain pointer k
}

void PatchIfo(const std::string& disc, const std::string& ifo, std::size_t offset,
              const std::vector<std::uint8_t>& bytes) {
  for (const char* extension : {"IFO", "BUP"}) {
    test::Patch(disc + "/VIDEO_TS/" + ifo.substr(0, 9) + extension, offset, bytes);
  }
}

// Menu chain 1 of language unit 2 makes its audio play as 0xC3: the finding names the unit.
TEST_F(AuthoredVerify, MenuStreamFindingsNameTheLanguageUnit) {
  test::TempDir dir;
  std::string disc = test::CopyDisc(test::NtscTwoTitleDisc(), dir, "menu-audio");
  auto ifo = test::ReadFileBytes(disc + "/VIDEO_TS/VIDEO_TS.IFO");
  PatchIfo(disc, "VIDEO_TS.IFO", MenuChainOffset(ifo, 2, 1) + 0x0C, {0x83, 0x00});
  VerifyResult r = Verify(disc);
  EXPECT_EQ(Places(r), (std::vector<std::string>{"stream.missing VIDEO_TS.IFO:VMGM_PGCI_UT#1"}))
      << VerifyText(r);
  ASSERT_EQ(r.findings.size(), 1u);
  EXPECT_EQ(r.findings[0].message,
            "language unit 2 (fr): audio stream 1 (mpeg1, no language) plays as 0xc3, which none "
            "of the chain's cells holds");
}

// A chain whose cell is in no cell address entry: which streams the cell holds is unknown,
// the cell position finding alone says what is wrong.
TEST_F(AuthoredVerify, ChainWithAnUnknownCellHasNoStreamFindings) {
  test::TempDir dir;
  std::string disc = test::CopyDisc(test::NtscTwoTitleDisc(), dir, "menu-cell");
  auto ifo = test::ReadFileBytes(disc + "/VIDEO_TS/VIDEO_TS.IFO");
  std::size_t pgc = MenuChainOffset(ifo, 1, 1);
  std::size_t positions = pgc + ((std::size_t{ifo.at(pgc + 0xEA)} << 8) | ifo.at(pgc + 0xEB));
  PatchIfo(disc, "VIDEO_TS.IFO", positions + 3, {9});  // cell 1: cell id 9
  VerifyResult r = Verify(disc);
  EXPECT_EQ(Places(r), (std::vector<std::string>{"pgc.cell-position VIDEO_TS.IFO:VMGM_PGCI_UT#1"}))
      << VerifyText(r);
}

// The navigation pack before title 1's sub-picture names cell 99: its VOBU's packs still
// belong to the cell the cell address table puts there, so nothing but the pack is wrong.
TEST_F(AuthoredVerify, NavigationPackOfAnUnknownCellKeepsItsStreamsInTheirCell) {
  test::TempDir dir;
  std::string disc = test::CopyDisc(test::NtscTwoTitleDisc(), dir, "nav-cell");
  std::string vob = disc + "/VIDEO_TS/VTS_01_1.VOB";
  long subpicture = FirstPackOf(vob, 0x20);
  ASSERT_GT(subpicture, 0);
  std::vector<std::uint8_t> bytes = test::ReadFileBytes(vob);
  long nav = subpicture;
  while (nav >= 0 && !(bytes[nav * 2048 + 17] == 0xBB && bytes[nav * 2048 + 41] == 0xBF)) --nav;
  ASSERT_GE(nav, 0);
  test::Patch(vob, static_cast<std::size_t>(nav) * 2048 + 1031 + 27, {99});  // DSI vobu_c_idn
  VerifyResult r = Verify(disc);
  EXPECT_EQ(Places(r), (std::vector<std::string>{"nav.cell VTS_01_1.VOB@" + std::to_string(nav)}))
      << VerifyText(r);
}

// tools/damage-disc.py finds its places through the disc's tables: on the authored disc each
// case it makes gives at least the finding it names. The disc has no title set menu to take the
// three button faults and one audio stream only, which the stream-missing case needs two of.
TEST_F(AuthoredVerify, DamageToolCasesAreFoundOnAnAuthoredDisc) {
  test::TempDir dir;
  std::string tool = std::string(TARVEX_SOURCE_DIR) + "/tools/damage-disc.py";
  std::string made = test::CaptureCommand(
      "python3 " + test::ShellQuote(tool) + " " + test::ShellQuote(test::NtscTwoTitleDisc()) + " " +
      test::ShellQuote(dir.path()) + " all 2>" + test::ShellQuote(dir.file("err")));
  std::string listed = test::CaptureCommand("python3 " + test::ShellQuote(tool) + " --list");
  std::size_t cases = static_cast<std::size_t>(std::count(listed.begin(), listed.end(), '\n'));
  std::istringstream lines(made);
  std::string name, check, where;
  std::size_t found = 0;
  while (lines >> name >> check >> where) {
    SCOPED_TRACE(name);
    std::vector<std::string> places = Places(Verify(dir.file(name)));
    EXPECT_NE(std::find(places.begin(), places.end(), check + " " + where), places.end())
        << check << " " << where;
    ++found;
  }
  EXPECT_EQ(found, cases - 4) << test::ReadFileText(dir.file("err"));
  EXPECT_NE(test::ReadFileText(dir.file("err")).find("button-command: title set 1 has no menu VOB"),
            std::string::npos);
}

}  // namespace
}  // namespace tarvex
