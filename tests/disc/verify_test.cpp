// verify on the sample, on a disc that maps its streams through the chain's control, and on
// damaged copies made by tools/damage-disc.py: each fault gives exactly the findings worked out
// by hand from the sample's tables (the places and values below).
#include "disc/verify.h"

#include <gtest/gtest.h>

#include <sstream>
#include <tuple>

#include "disc/disc_test_support.h"

namespace tarvex {
namespace {

VerifyResult Verify(const std::string& path, bool ifo_only = false) {
  return test::VerifyAt(path, ifo_only);
}

std::string Lines(const VerifyResult& r) {
  return VerifyText(r);
}

TEST(Verify, SampleDiscHasNoFindings) {
  VerifyResult r = Verify(test::SampleDisc());
  EXPECT_EQ(r.errors, 0u) << Lines(r);
  EXPECT_EQ(r.warnings, 0u) << Lines(r);
  EXPECT_TRUE(r.findings.empty()) << Lines(r);
  EXPECT_TRUE(Verify(test::SampleDisc(), true).findings.empty());
}

TEST(Verify, StreamsMappedThroughTheControlVerifyClean) {
  test::TempDir dir;
  VerifyResult r = Verify(test::RemappedSample(dir));
  EXPECT_TRUE(r.findings.empty()) << Lines(r);
}

// One expected finding: check, file, table, entry, record.
struct Expected {
  std::string check, file;
  std::optional<std::string> table;
  std::optional<std::uint32_t> entry;
  std::optional<std::uint64_t> record;
  bool operator==(const Expected&) const = default;
};

std::ostream& operator<<(std::ostream& os, const Expected& e) {
  os << e.check << " " << e.file;
  if (e.table) os << ":" << *e.table;
  if (e.entry) os << "#" << *e.entry;
  if (e.record) os << "@" << *e.record;
  return os;
}

Expected AtFile(const char* check, const char* file) {
  return {check, file, std::nullopt, std::nullopt, std::nullopt};
}
Expected AtTable(const char* check, const char* file, const char* table,
                 std::optional<std::uint32_t> entry = std::nullopt) {
  return {check, file, table, entry, std::nullopt};
}
Expected AtRecord(const char* check, const char* file, std::uint64_t record) {
  return {check, file, std::nullopt, std::nullopt, record};
}

constexpr const char* kVts = "VTS_01_0.IFO";
constexpr const char* kVmg = "VIDEO_TS.IFO";
constexpr const char* kVob = "VTS_01_1.VOB";

struct Case {
  const char* name;
  std::vector<Expected> findings;
};

// Worked out by hand from the sample's tables: cells 0-390, 391-859, 860-1245 of 1246
// sectors; navigation packs at 0, 30, 77, 155, 234, ..., 1154; one title set starting at
// sector 40; one title chain of 3 programs, 3 cells and 3 audio streams (0x80, 0xA1, 0xC2).
const std::vector<Case>& Cases() {
  static const std::vector<Case> kCases = {
      {"bup-missing", {AtFile("file.bup-missing", "VTS_01_0.BUP")}},
      {"bup-differs", {AtFile("file.bup-differs", "VTS_01_0.BUP")}},
      {"file-size", {AtFile("file.size", kVob)}},
      {"vob-numbering", {AtFile("file.vob-numbering", "VTS_01_3.VOB")}},
      // Without part 1 the sectors of the set are not known: no table range is held against it.
      {"vob-first-missing", {AtFile("file.vob-numbering", "VTS_01_2.VOB")}},
      {"vob-missing", {AtFile("file.missing", kVob)}},
      {"file-extra", {AtFile("file.extra", "VTS_02_1.VOB")}},
      {"file-unknown", {AtFile("file.unknown", "README.TXT")}},
      // The title set is unusable: its title cannot be found either.
      {"identifier",
       {AtTable("ifo.identifier", kVts, "VTSI_MAT"),
        AtTable("tt_srpt.title-set", kVmg, "TT_SRPT", 1)}},
      {"end-address", {AtTable("ifo.end-address", kVts, "VTSI_MAT")}},
      // 16 sectors of IFO, VTS_EA 1305, VTSI_EA 8: the backup is looked for at 1297, it lies
      // at 16 + 28 + 1246 = 1290.
      {"backup-address", {AtTable("ifo.backup-address", kVts, "VTSI_MAT")}},
      {"table-outside", {AtTable("ifo.table-address", kVmg, "TXTDT_MG")}},
      {"table-end", {AtTable("ifo.table-address", kVts, "VTS_C_ADT")}},
      {"title-set-count",
       {AtFile("file.missing", "VTS_02_0.IFO"), AtTable("ifo.title-set-count", kVmg, "VMGI_MAT"),
        AtTable("ifo.title-set-count", kVmg, "VTS_ATRT")}},
      {"atrt-attributes", {AtTable("vts_atrt.attributes", kVmg, "VTS_ATRT", 1)}},
      {"tt-title-set", {AtTable("tt_srpt.title-set", kVmg, "TT_SRPT", 1)}},
      {"tt-title", {AtTable("tt_srpt.title", kVmg, "TT_SRPT", 1)}},
      {"tt-start-sector", {AtTable("tt_srpt.start-sector", kVmg, "TT_SRPT", 1)}},
      {"tt-chapters", {AtTable("tt_srpt.chapters", kVmg, "TT_SRPT", 1)}},
      {"ptt-target", {AtTable("ptt.target", kVts, "VTS_PTT_SRPT", 1)}},
      // 4 programs over 3 cells; the program map's fourth byte is its pad byte, 0.
      {"pgc-programs",
       {AtTable("pgc.structure", kVts, "VTS_PGCIT", 1),
        AtTable("pgc.program-map", kVts, "VTS_PGCIT", 1)}},
      {"pgc-program-map", {AtTable("pgc.program-map", kVts, "VTS_PGCIT", 1)}},
      {"pgc-cell-sectors", {AtTable("pgc.cell-sectors", kVts, "VTS_PGCIT", 1)}},
      {"pgc-cell-position", {AtTable("pgc.cell-position", kVts, "VTS_PGCIT", 1)}},
      {"pgc-links", {AtTable("pgc.links", kVts, "VTS_PGCIT", 1)}},
      {"pgc-command", {AtTable("pgc.command", kVts, "VTS_PGCIT", 1)}},
      // Pre command 3 of the title chain (3 pre and 1 post commands): "g0 = 0; LinkPGCN 5"
      // with 1 chain in VTS_PGCIT, then a link highlighting button 40 (at most 36).
      {"pgc-command-set-link", {AtTable("pgc.command", kVts, "VTS_PGCIT", 1)}},
      {"pgc-command-sub-link", {AtTable("pgc.command", kVts, "VTS_PGCIT", 1)}},
      {"pgc-time", {AtTable("pgc.time", kVts, "VTS_PGCIT", 1)}},
      {"pgc-stream-control", {AtTable("pgc.stream-control", kVts, "VTS_PGCIT", 1)}},
      {"c-adt-vob-count", {AtTable("c_adt.order", kVts, "VTS_C_ADT")}},
      // The pack at 155 is not listed; entry 4 (156) names a video pack.
      {"admap-navpack",
       {AtRecord("vobu_admap.navpacks", kVob, 155),
        AtTable("vobu_admap.navpacks", kVts, "VTS_VOBU_ADMAP", 4)}},
      // Entry 17 (1154 -> 1300) lies beyond the VOBs; cell 3's last VOBU and the pack at 1154
      // are then missing from the map.
      {"admap-order",
       {AtTable("vobu_admap.order", kVts, "VTS_VOBU_ADMAP", 17),
        AtTable("pgc.cell-sectors", kVts, "VTS_PGCIT", 1),
        AtRecord("vobu_admap.navpacks", kVob, 1154),
        AtTable("vobu_admap.navpacks", kVts, "VTS_VOBU_ADMAP", 17)}},
      {"tmapt-entry", {AtTable("tmapt.entry", kVts, "VTS_TMAPT", 1)}},
      {"nav-lbn", {AtRecord("nav.lbn", kVob, 30)}},
      {"nav-vobu-end", {AtRecord("nav.vobu-end", kVob, 30)}},
      {"nav-next-vobu", {AtRecord("nav.next-vobu", kVob, 30)}},
      {"nav-previous-vobu", {AtRecord("nav.previous-vobu", kVob, 77)}},
      {"button-command", {AtRecord("nav.button-command", "VTS_01_0.VOB", 0)}},
      // The root menu's navigation pack at 0 has 2 buttons; its chain's language unit holds
      // 2 chains: chain 32767 and button 3 are not there.
      {"button-command-set-link", {AtRecord("nav.button-command", "VTS_01_0.VOB", 0)}},
      {"button-command-highlight", {AtRecord("nav.button-command", "VTS_01_0.VOB", 0)}},
      {"nav-cell", {AtRecord("nav.cell", kVob, 470)}},
      {"vobu-length", {AtRecord("nav.vobu-length", kVob, 30)}},
      {"mux-rate", {AtRecord("vob.mux-rate", kVob, 40)}},
      {"scr-order", {AtRecord("vob.scr-order", kVob, 40)}},
      // The set starts without its navigation pack: VOBU 1 of the map is no navigation pack,
      // and the pack at 30 points back to a VOBU that is not there.
      {"first-pack",
       {AtRecord("vob.first-pack", kVob, 0),
        AtTable("vobu_admap.navpacks", kVts, "VTS_VOBU_ADMAP", 1),
        AtRecord("nav.previous-vobu", kVob, 30)}},
      {"vob-pack", {AtRecord("vob.pack", kVob, 100)}},
      // The title menu's one cell plays the 28 records of VIDEO_TS.VOB; without it none is
      // played (its streams are then not compared, its buttons not followed).
      {"vob-unplayed", {AtRecord("vob.unplayed", "VIDEO_TS.VOB", 0)}},
      // 0xA3 is nowhere; 0xA1, first at record 3, is no longer played by any stream.
      {"stream-missing",
       {AtTable("stream.missing", kVts, "VTS_PGCIT", 1), AtRecord("stream.undeclared", kVob, 3)}},
      {"stream-undeclared", {AtRecord("stream.undeclared", kVob, 4)}},
      // The count differs from the copy in VTS_ATRT too.
      {"stream-count",
       {AtTable("vts_atrt.attributes", kVmg, "VTS_ATRT", 1),
        AtTable("stream.count", kVts, "VTSI_MAT")}},
      // The first sequence header (record 1) gives 704x480; VTSI_MAT declares 720x480.
      {"video-attributes", {AtTable("stream.video-attributes", kVts, "VTSI_MAT")}},
      // Audio stream 1, AC-3 48 kHz stereo as 0x80: declared 96 kHz, then 3 channels.
      {"audio-attributes", {AtTable("stream.audio-attributes", kVts, "VTSI_MAT")}},
      {"audio-channels", {AtTable("stream.audio-channels", kVts, "VTSI_MAT")}},
  };
  return kCases;
}

std::vector<Expected> Found(const VerifyResult& r) {
  std::vector<Expected> found;
  for (const Finding& f : r.findings) {
    found.push_back({f.check, f.file, f.table, f.entry, f.sector});
  }
  return found;
}

TEST(Verify, EachDamageGivesExactlyItsFindings) {
  test::TempDir dir;
  for (const Case& c : Cases()) {
    SCOPED_TRACE(c.name);
    std::string disc = test::Damage(dir, c.name);
    VerifyResult r = Verify(disc);
    EXPECT_EQ(Found(r), c.findings) << Lines(r);
  }
}

// The sample as a disc whose title VOB claims 1 GiB and one record (only its size is read:
// the IFO checks need no more).
class OversizedVob final : public DiscAccess {
 public:
  OversizedVob() {
    std::string error;
    inner_ = OpenDisc(test::SampleDisc(), error);
    files_ = inner_->files();
    for (DiscFileEntry& f : files_) {
      if (f.name == "VTS_01_1.VOB") f.size = (1ull << 30) + 2048;
    }
  }
  const char* kind() const override { return "folder"; }
  const std::vector<DiscFileEntry>& files() const override { return files_; }
  std::unique_ptr<DiscFile> Open(const std::string& name) override { return inner_->Open(name); }

 private:
  std::unique_ptr<DiscAccess> inner_;
  std::vector<DiscFileEntry> files_;
};

TEST(Verify, VobOverOneGibibyte) {
  std::string error;
  std::optional<Disc> disc = LoadDisc(std::make_shared<OversizedVob>(), "big", error);
  ASSERT_TRUE(disc) << error;
  VerifyResult r = VerifyDisc(*disc, {.ifo_only = true});
  // The title set's end address no longer matches its VOBs either.
  EXPECT_EQ(Found(r), (std::vector<Expected>{AtFile("file.vob-size", kVob),
                                             AtTable("ifo.end-address", kVts, "VTSI_MAT")}))
      << Lines(r);
}

TEST(Verify, EveryDamageCaseIsTested) {
  std::string list = test::CaptureCommand(
      "python3 " + test::ShellQuote(std::string(TARVEX_SOURCE_DIR) + "/tools/damage-disc.py") +
      " --list");
  std::size_t lines = static_cast<std::size_t>(std::count(list.begin(), list.end(), '\n'));
  EXPECT_EQ(lines, Cases().size());
  for (const Case& c : Cases()) EXPECT_NE(list.find(std::string(c.name) + " "), std::string::npos);
}

TEST(Verify, IfoOnlyLeavesTheVobsAlone) {
  test::TempDir dir;
  std::string disc = test::Damage(dir, "nav-lbn");
  EXPECT_TRUE(Verify(disc, true).findings.empty());
  disc = test::Damage(dir, "pgc-links");
  EXPECT_EQ(Verify(disc, true).errors, 1u);
}

TEST(Verify, SeverityCountsAndLineFormat) {
  test::TempDir dir;
  VerifyResult r = Verify(test::Damage(dir, "pgc-time"));
  EXPECT_EQ(r.errors, 0u);
  EXPECT_EQ(r.warnings, 1u);
  ASSERT_EQ(r.findings.size(), 1u);
  EXPECT_EQ(FindingLine(r.findings[0]).substr(0, 48),
            "warning VTS_01_0.IFO:VTS_PGCIT#1 pgc.time: playb");
  r = Verify(test::Damage(dir, "nav-lbn"));
  EXPECT_EQ(FindingLine(r.findings[0]),
            "error VTS_01_1.VOB@30 nav.lbn: at sector 30, PCI says 31 and DSI says 30");
}

TEST(Verify, JsonParsesBackWithTheFixedKeys) {
  test::TempDir dir;
  VerifyResult r = Verify(test::Damage(dir, "admap-navpack"));
  nlohmann::json j = test::ParseJson(VerifyJson("the disc", r));
  EXPECT_EQ(j["disc"], "the disc");
  EXPECT_EQ(j["errors"], 2);
  EXPECT_EQ(j["warnings"], 0);
  ASSERT_EQ(j["findings"].size(), 2u);
  const nlohmann::json& f = j["findings"][0];
  EXPECT_EQ(f["severity"], "error");
  EXPECT_EQ(f["check"], "vobu_admap.navpacks");
  EXPECT_EQ(f["file"], "VTS_01_1.VOB");
  EXPECT_TRUE(f["table"].is_null());
  EXPECT_TRUE(f["entry"].is_null());
  EXPECT_EQ(f["sector"], 155);
  EXPECT_TRUE(f["message"].is_string());
  EXPECT_EQ(j["findings"][1]["table"], "VTS_VOBU_ADMAP");
  EXPECT_EQ(j["findings"][1]["entry"], 4);
  EXPECT_TRUE(j["findings"][1]["sector"].is_null());
}

// The table of checks in docs/whole-discs.md says what --list-checks says, row by row.
TEST(Verify, ReadmeTableIsTheListOfChecks) {
  std::vector<std::string> expected, rows;
  for (const CheckInfo& c : AllChecks()) {
    expected.push_back(std::string("| `") + c.id + "` | " + SeverityName(c.severity) + " | " +
                       c.explanation + " |");
  }
  std::istringstream readme(
      test::ReadFileText(std::string(TARVEX_SOURCE_DIR) + "/docs/whole-discs.md"));
  for (std::string line; std::getline(readme, line);) {
    for (const char* severity : {"` | error | ", "` | warning | ", "` | info | "}) {
      if (line.rfind("| `", 0) == 0 && line.find(severity) != std::string::npos) {
        rows.push_back(line);
      }
    }
  }
  EXPECT_EQ(rows, expected);
}

TEST(Verify, EveryCheckHasAnIdSeverityAndExplanation) {
  std::set<std::string> ids;
  for (const CheckInfo& c : AllChecks()) {
    EXPECT_TRUE(ids.insert(c.id).second) << c.id;
    EXPECT_NE(std::string(c.explanation), "");
  }
  nlohmann::json j = test::ParseJson(ListChecksJson());
  EXPECT_EQ(j["checks"].size(), ids.size());
  EXPECT_THROW(FindCheck("no.such-check"), std::logic_error);
}

}  // namespace
}  // namespace tarvex
