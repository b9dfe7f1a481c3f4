// What real discs from other authoring programs do differently, built from copies of the
// sample: content that no chain plays, language codes that name no language, IFOs padded past
// their information part, and folders of title sets without VIDEO_TS.IFO. The offsets and
// expected values come from the sample's tables (samples/README.md and its IFO reports):
// VIDEO_TS.IFO has 6 sectors (VMGI_EA 5, VMG_EA 39), TT_SRPT at sector 1, VMGM_PGCI_UT at 2 with
// one language unit "en" of one chain (1 program, 1 cell, sectors 0 to 27 of the 28 of
// VIDEO_TS.VOB); VTS_01_0.IFO has 9 sectors (VTSI_EA 8, VTS_EA 1291), its menu VOB 28 sectors
// and its title VOB 1246.
#include <gtest/gtest.h>

#include <filesystem>

#include "disc/checks.h"
#include "disc/disc_test_support.h"
#include "disc/info.h"
#include "disc/verify.h"

namespace tarvex {
namespace {

constexpr std::size_t kSector = 2048;

std::string VideoTs(const std::string& disc) {
  return disc + "/VIDEO_TS/";
}

// An IFO change written into the IFO and its backup alike.
void PatchIfo(const std::string& disc, const std::string& ifo, std::size_t offset,
              const std::vector<std::uint8_t>& bytes) {
  test::Patch(VideoTs(disc) + ifo + ".IFO", offset, bytes);
  test::Patch(VideoTs(disc) + ifo + ".BUP", offset, bytes);
}

std::vector<std::string> Lines(const VerifyResult& r) {
  std::vector<std::string> lines;
  for (const Finding& f : r.findings) lines.push_back(FindingLine(f));
  return lines;
}

Disc Load(const std::string& path) {
  std::string error;
  std::optional<Disc> disc = LoadDisc(path, error);
  EXPECT_TRUE(disc) << error;
  return disc ? std::move(*disc) : Disc{};
}

// ---- content that no chain plays ----------------------------------------------------------

// The video manager menu's only chain (pointer at 2 x 2048 + 16 + 8, chain at unit offset 16
// + its offset) loses its cell: programs and cells 0, playback time 0. The menu is also
// declared 16:9 (VMGM_V_ATR 0x43 -> 0x4F), while the sequence headers of VIDEO_TS.VOB say
// 4:3. Its AC-3 (0x80) and sub-picture (0x20) packs are then played by no chain.
std::string MenuWithoutCells(const test::TempDir& dir) {
  std::string disc = test::CopySample(dir, "no-cells");
  std::vector<std::uint8_t> ifo = test::ReadFileBytes(VideoTs(disc) + "VIDEO_TS.IFO");
  std::size_t unit = 2 * kSector + 16;
  std::size_t chain = unit + ((std::size_t{ifo[unit + 12]} << 24) | (ifo[unit + 13] << 16) |
                              (ifo[unit + 14] << 8) | ifo[unit + 15]);
  EXPECT_EQ(ifo[chain + 2], 1);  // 1 program
  EXPECT_EQ(ifo[chain + 3], 1);  // 1 cell
  PatchIfo(disc, "VIDEO_TS", chain + 2, {0, 0, 0, 0, 0, 0});
  PatchIfo(disc, "VIDEO_TS", 0x100, {0x4F});
  return disc;
}

TEST(AuthoringVariants, ContentNoChainPlaysIsOneNoteNotStreamErrors) {
  test::TempDir dir;
  VerifyResult r = test::VerifyAt(MenuWithoutCells(dir));
  EXPECT_EQ(Lines(r), (std::vector<std::string>{
                          "info VIDEO_TS.VOB@0 vob.unplayed: 28 records that no cell of any menu "
                          "chain plays: VIDEO_TS.VOB records 0 to 27"}));
  EXPECT_EQ(r.errors, 0u);
  EXPECT_EQ(r.infos, 1u);
}

// The pack and navigation pack checks still read every record: a navigation pack that no cell
// plays (record 10 of VIDEO_TS.VOB, PCI nv_pck_lbn at 45) is still checked.
TEST(AuthoringVariants, NavigationPacksNoChainPlaysAreStillChecked) {
  test::TempDir dir;
  std::string disc = MenuWithoutCells(dir);
  test::Patch(VideoTs(disc) + "VIDEO_TS.VOB", 10 * kSector + 45, {0, 0, 0, 11});
  VerifyResult r = test::VerifyAt(disc);
  EXPECT_EQ(Lines(r),
            (std::vector<std::string>{
                "error VIDEO_TS.VOB@10 nav.lbn: at sector 10, PCI says 11 and DSI says 10",
                "info VIDEO_TS.VOB@0 vob.unplayed: 28 records that no cell of any menu "
                "chain plays: VIDEO_TS.VOB records 0 to 27"}));
}

// One pass over VTS_01_0.VOB (navigation packs at 0, 10 and 18, the sub-picture pack at 8) with
// a chain whose one cell plays sectors 10 to 17: the sub-picture stream is not among the
// streams found, the records before and after the cell are one note with two ranges.
TEST(AuthoringVariants, OnlyThePacksACellPlaysCountAsItsStreams) {
  Disc disc = Load(test::SampleDisc());
  const TitleSet& ts = disc.title_sets.at(0);
  Pgc pgc;
  pgc.number = 1;
  Cell cell;
  cell.first_sector = 10;
  cell.last_sector = 17;
  cell.vob_id = 1;
  cell.cell_id = 1;
  pgc.cells.push_back(cell);
  std::vector<DomainChain> chains = {{&pgc, 1, ""}};
  VobSetNames names{
      ts.ifo_name, "VTSM_C_ADT", "VTSM_VOBU_ADMAP", "VTSM_PGCI_UT", "VTSI_MAT", "menu", {}};
  Findings out;
  StreamPresence found = ScanVobSet(disc, ts.menu_vobs, names, PlayedSectors(chains), out);
  EXPECT_FALSE(found.all[0x20]);
  EXPECT_TRUE(found.all[0xE0]);
  ASSERT_EQ(out.all().size(), 1u);
  EXPECT_EQ(FindingLine(out.all()[0]),
            "info VTS_01_0.VOB@0 vob.unplayed: 20 records that no cell of any menu chain plays: "
            "VTS_01_0.VOB records 0 to 9, 18 to 27");
}

TEST(AuthoringVariants, PlayedSectorsMergeTheCellsOfEveryChain) {
  Pgc a, b;
  for (auto [first, last] : {std::pair{20u, 29u}, std::pair{0u, 9u}}) {
    Cell c;
    c.first_sector = first;
    c.last_sector = last;
    a.cells.push_back(c);
  }
  Cell overlapping, reversed;
  overlapping.first_sector = 5;
  overlapping.last_sector = 12;
  reversed.first_sector = 50;  // a damaged cell that ends before it starts plays nothing
  reversed.last_sector = 40;
  b.cells = {overlapping, reversed};
  PlayedSectors played({{&a, 1, ""}, {&b, 1, ""}});
  for (std::uint64_t s : {0, 9, 12, 20, 29}) EXPECT_TRUE(played.Contains(s)) << s;
  for (std::uint64_t s : {13, 19, 30, 40, 45, 50}) EXPECT_FALSE(played.Contains(s)) << s;
  EXPECT_FALSE(PlayedSectors({}).Contains(0));
}

// ---- unspecified languages ----------------------------------------------------------------

// VTSI_MAT: audio stream 1's language (0x204 + 2) 0xFFFF, audio stream 2's (0x20C + 2) 0x0000,
// sub-picture stream 1's (0x256 + 2) 0xFFFF; the language units of VMGM_PGCI_UT (sector 2) and
// VTSM_PGCI_UT (sector 3) 0x0000 and 0xFFFF.
std::string UnspecifiedLanguages(const test::TempDir& dir) {
  std::string disc = test::CopySample(dir, "languages");
  PatchIfo(disc, "VTS_01_0", 0x206, {0xFF, 0xFF});
  PatchIfo(disc, "VTS_01_0", 0x20E, {0x00, 0x00});
  PatchIfo(disc, "VTS_01_0", 0x258, {0xFF, 0xFF});
  PatchIfo(disc, "VTS_01_0", 3 * kSector + 8, {0xFF, 0xFF});
  PatchIfo(disc, "VIDEO_TS", 2 * kSector + 8, {0x00, 0x00});
  return disc;
}

TEST(AuthoringVariants, LanguageCodesThatAreNoLettersAreNullInJson) {
  test::TempDir dir;
  nlohmann::json j = test::ParseJson(DiscInfoJson(Load(UnspecifiedLanguages(dir))));
  const nlohmann::json& title = j["titles"][0];
  ASSERT_EQ(title["audio"].size(), 3u);
  EXPECT_TRUE(title["audio"][0]["language"].is_null());
  EXPECT_TRUE(title["audio"][1]["language"].is_null());
  EXPECT_EQ(title["audio"][2]["language"], "de");
  ASSERT_EQ(title["subpictures"].size(), 1u);
  EXPECT_TRUE(title["subpictures"][0]["language"].is_null());
  // The video manager's title menu, the title set's root menu and its second chain.
  ASSERT_EQ(j["menus"].size(), 3u);
  for (const nlohmann::json& menu : j["menus"]) EXPECT_TRUE(menu["language"].is_null()) << menu;
}

TEST(AuthoringVariants, LanguageCodesThatAreNoLettersAreDashesInText) {
  test::TempDir dir;
  std::string text = DiscInfoText(Load(UnspecifiedLanguages(dir)));
  for (const char* line :
       {"  Audio 1: -- ac3, 48000 Hz, 2 channels, stream 0x80\n",
        "  Audio 2: -- lpcm, 48000 Hz, 2 channels, stream 0xa1\n",
        "  Audio 3: de mpeg1, 48000 Hz, 2 channels, stream 0xc2\n",
        "  Subpicture 1: --, stream 0x20\n", "  Video manager, language --, PGC 1 (title menu): ",
        "  Title set 1, language --, PGC 1 (root menu): "}) {
    EXPECT_NE(text.find(line), std::string::npos) << line << "\n" << text;
  }
  for (char c : text) EXPECT_TRUE(c == '\n' || (c >= 0x20 && c < 0x7F)) << int(c);
}

TEST(AuthoringVariants, SpecifiedLanguageIsTwoAsciiLetters) {
  EXPECT_EQ(SpecifiedLanguage('e', 'n'), "en");
  EXPECT_EQ(SpecifiedLanguage('D', 'E'), "DE");
  EXPECT_EQ(SpecifiedLanguage(0xFF, 0xFF), std::nullopt);
  EXPECT_EQ(SpecifiedLanguage(0, 0), std::nullopt);
  EXPECT_EQ(SpecifiedLanguage('e', 0), std::nullopt);
  EXPECT_EQ(SpecifiedLanguage('1', '2'), std::nullopt);
  EXPECT_EQ(SpecifiedLanguage(0xE9, 'n'), std::nullopt);  // Latin-1, not ASCII
}

// ---- padded IFOs --------------------------------------------------------------------------

// An IFO and its backup padded with zeros to 16 sectors; the VOB start sectors that follow
// move on by the padding.
void PadIfo(const std::string& disc, const std::string& ifo, std::size_t sectors) {
  for (const char* extension : {".IFO", ".BUP"}) {
    std::string path = VideoTs(disc) + ifo + extension;
    std::vector<std::uint8_t> bytes = test::ReadFileBytes(path);
    bytes.resize(sectors * kSector);
    test::WriteFileBytes(path, bytes);
  }
}

std::vector<std::uint8_t> Be32(std::uint32_t v) {
  return {static_cast<std::uint8_t>(v >> 24), static_cast<std::uint8_t>(v >> 16),
          static_cast<std::uint8_t>(v >> 8), static_cast<std::uint8_t>(v)};
}

// VIDEO_TS.IFO padded from 6 to 16 sectors, VMGI_EA still 5: the menu VOB starts at 16
// (VMGM_VOBS_SA at 0xC0), the BUP at 16 + 28 = 44, VMG_EA (at 0x0C) counts 16 + 28 + 16 = 60
// sectors, 59, and the title set starts at 60 (TT_SRPT title 1's start sector at 2048 + 8 + 8).
// A player looking for the backup at VMG_EA - VMGI_EA = 54 reads sectors 10 to 15 of the BUP.
TEST(AuthoringVariants, PaddedVideoManagerIfoIsABackupWarning) {
  test::TempDir dir;
  std::string disc = test::CopySample(dir, "padded-vmg");
  PadIfo(disc, "VIDEO_TS", 16);
  PatchIfo(disc, "VIDEO_TS", 0xC0, Be32(16));
  PatchIfo(disc, "VIDEO_TS", 0x0C, Be32(59));
  PatchIfo(disc, "VIDEO_TS", kSector + 16, Be32(60));
  VerifyResult r = test::VerifyAt(disc);
  EXPECT_EQ(Lines(r),
            (std::vector<std::string>{
                "warning VIDEO_TS.IFO:VMGI_MAT ifo.backup-address: VMG_EA 59 - VMGI_EA 5 puts the "
                "backup at sector 54, but VIDEO_TS.BUP starts at sector 44: a player that locates "
                "the backup by these addresses reads the wrong sectors"}));
  EXPECT_EQ(r.errors, 0u);
}

// VTS_01_0.IFO padded from 9 to 16 sectors, VTSI_EA still 8: menu VOB at 16 (VTSM_VOBS_SA at
// 0xC0), title VOB at 44 (VTSTT_VOBS_SA at 0xC4), BUP at 44 + 1246 = 1290, VTS_EA 1305.
TEST(AuthoringVariants, PaddedTitleSetIfoIsABackupWarning) {
  test::TempDir dir;
  std::string disc = test::CopySample(dir, "padded-vts");
  PadIfo(disc, "VTS_01_0", 16);
  PatchIfo(disc, "VTS_01_0", 0xC0, Be32(16));
  PatchIfo(disc, "VTS_01_0", 0xC4, Be32(44));
  PatchIfo(disc, "VTS_01_0", 0x0C, Be32(1305));
  VerifyResult r = test::VerifyAt(disc);
  EXPECT_EQ(Lines(r),
            (std::vector<std::string>{
                "warning VTS_01_0.IFO:VTSI_MAT ifo.backup-address: VTS_EA 1305 - VTSI_EA 8 puts "
                "the backup at sector 1297, but VTS_01_0.BUP starts at sector 1290: a player "
                "that locates the backup by these addresses reads the wrong sectors"}));
}

// VMGI_EA (at 0x1C) past the file, or short of the tables (VMGM_VOBU_ADMAP starts at sector
// 5): errors, as before.
TEST(AuthoringVariants, InformationEndPastTheFileOrShortOfTheTablesIsAnError) {
  test::TempDir dir;
  std::string past = test::CopySample(dir, "past");
  PatchIfo(past, "VIDEO_TS", 0x1C, Be32(6));
  EXPECT_EQ(Lines(test::VerifyAt(past, true)),
            (std::vector<std::string>{"error VIDEO_TS.IFO:VMGI_MAT ifo.end-address: VMGI_EA 6, "
                                      "but the IFO has 6 sectors (0 to 5): it ends past the "
                                      "file"}));
  std::string short_of = test::CopySample(dir, "short");
  PatchIfo(short_of, "VIDEO_TS", 0x1C, Be32(4));
  VerifyResult r = test::VerifyAt(short_of, true);
  ASSERT_FALSE(r.findings.empty());
  EXPECT_EQ(FindingLine(r.findings[0]),
            "error VIDEO_TS.IFO:VMGI_MAT ifo.end-address: VMGI_EA 4, but the tables of the IFO "
            "reach sector 5");
  for (const Finding& f : r.findings) EXPECT_EQ(f.severity, Severity::kError) << FindingLine(f);
}

// ---- folders of title sets without VIDEO_TS.IFO -------------------------------------------

std::string WithoutVideoManager(const test::TempDir& dir, const std::string& name) {
  std::string disc = test::CopySample(dir, name);
  for (const char* file : {"VIDEO_TS.IFO", "VIDEO_TS.BUP", "VIDEO_TS.VOB"}) {
    std::filesystem::remove(VideoTs(disc) + file);
  }
  return disc;
}

// The buttons of the title set's menu jump to title 1 of the video manager's TT_SRPT: without
// the video manager the titles are not known, so such a jump is no finding.
TEST(AuthoringVariants, FolderWithoutVideoManagerVerifiesItsTitleSets) {
  test::TempDir dir;
  std::string disc = WithoutVideoManager(dir, "partial");
  EXPECT_EQ(Lines(test::VerifyAt(disc)),
            (std::vector<std::string>{"error VIDEO_TS.IFO file.missing: the video manager's IFO "
                                      "is missing: each title set is checked on its own"}));
  // Its title set is checked: a navigation pack fault of the title VOB (record 30) is found.
  test::Patch(VideoTs(disc) + "VTS_01_1.VOB", 30 * kSector + 45, {0, 0, 0, 31});
  std::vector<std::string> lines = Lines(test::VerifyAt(disc));
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[1], "error VTS_01_1.VOB@30 nav.lbn: at sector 30, PCI says 31 and DSI says 30");
}

// Two title sets (the sample's copied as title set 2): each title is numbered within its set.
TEST(AuthoringVariants, InfoListsTheTitlesOfEachTitleSet) {
  test::TempDir dir;
  std::string disc = WithoutVideoManager(dir, "two-sets");
  for (const char* file : {"0.IFO", "0.BUP", "0.VOB", "1.VOB"}) {
    std::filesystem::copy_file(VideoTs(disc) + "VTS_01_" + file, VideoTs(disc) + "VTS_02_" + file);
  }
  Disc loaded = Load(disc);
  nlohmann::json j = test::ParseJson(DiscInfoJson(loaded));
  EXPECT_TRUE(j["vmg"].is_null());
  EXPECT_TRUE(j["longest_title"].is_null());
  ASSERT_EQ(j["titles"].size(), 2u);
  for (int set = 1; set <= 2; ++set) {
    const nlohmann::json& t = j["titles"][set - 1];
    EXPECT_EQ(t["number"], 1);
    EXPECT_EQ(t["title_set"], set);
    EXPECT_EQ(t["title_in_set"], 1);
    EXPECT_EQ(t["length"], 8.0);
    EXPECT_EQ(t["angles"], 1);
    EXPECT_EQ(t["chapters"].size(), 3u);
  }
  // The root menu and the second chain of each title set's menu unit.
  EXPECT_EQ(j["menus"].size(), 4u);
  std::string text = DiscInfoText(loaded);
  EXPECT_NE(text.find("Video manager: none (no VIDEO_TS.IFO); titles numbered within their "
                      "title sets\nTitle 1: title set 1, title 1, 00:00:08.000, 3 chapters, "
                      "3 cells, 1 angle\n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("\nTitle 1: title set 2, title 1, 00:00:08.000, 3 chapters, 3 cells, "
                      "1 angle\n"),
            std::string::npos)
      << text;
  EXPECT_EQ(text.find("Longest title"), std::string::npos);
  EXPECT_EQ(Lines(VerifyDisc(loaded)),
            (std::vector<std::string>{"error VIDEO_TS.IFO file.missing: the video manager's IFO "
                                      "is missing: each title set is checked on its own"}));
}

// A title set with VOBs but no IFO, and a folder with no IFO at all.
TEST(AuthoringVariants, FolderWithoutAnyIfo) {
  test::TempDir dir;
  std::string disc = WithoutVideoManager(dir, "no-ifo");
  std::filesystem::copy_file(VideoTs(disc) + "VTS_01_1.VOB", VideoTs(disc) + "VTS_02_1.VOB");
  VerifyResult r = test::VerifyAt(disc, true);
  EXPECT_EQ(Lines(r), (std::vector<std::string>{
                          "error VIDEO_TS.IFO file.missing: the video manager's IFO is missing: "
                          "each title set is checked on its own",
                          "error VTS_02_0.IFO file.missing: title set 2 has VOB files, but its "
                          "IFO is missing"}));
  std::filesystem::remove(VideoTs(disc) + "VTS_01_0.IFO");
  std::string error;
  EXPECT_FALSE(LoadDisc(disc, error));
  EXPECT_EQ(error, "no VIDEO_TS.IFO and no title set IFO (VTS_nn_0.IFO)");
}

TEST(AuthoringVariants, CliInfoAndVerifyReadAFolderWithoutVideoManager) {
#ifdef TARVEX_CLI_PATH
  test::TempDir dir;
  std::string disc = WithoutVideoManager(dir, "cli");
  test::CliRun info = test::RunCli({"info", "--json", disc});
  EXPECT_EQ(info.status, 0) << info.err;
  EXPECT_TRUE(test::ParseJson(info.out)["vmg"].is_null());
  test::CliRun verify = test::RunCli({"verify", disc});
  EXPECT_EQ(verify.status, 1);
  EXPECT_NE(verify.out.find("file.missing"), std::string::npos) << verify.out;
#endif
}

}  // namespace
}  // namespace tarvex
