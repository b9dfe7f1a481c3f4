// Hostile input: mutated IFOs, truncated and garbage VOBs give findings, never a crash (the
// sanitizer build runs these too).
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "disc/disc_test_support.h"
#include "disc/info.h"
#include "disc/verify.h"

namespace tarvex {
namespace {

VerifyResult VerifyPath(const std::string& path) {
  std::string error;
  std::optional<Disc> disc = LoadDisc(path, error);
  EXPECT_TRUE(disc) << error;
  if (!disc) return {};
  test::ParseJson(DiscInfoJson(*disc));
  VerifyResult r = VerifyDisc(*disc);
  test::ParseJson(VerifyJson(path, r));
  return r;
}

TEST(Hostile, MutatedIfosGiveFindingsNeverACrash) {
  test::TempDir dir;
  std::string disc = test::CopySample(dir, "mutated");
  std::string vmg = disc + "/VIDEO_TS/VIDEO_TS.IFO", vts = disc + "/VIDEO_TS/VTS_01_0.IFO";
  const std::vector<std::uint8_t> vmg_bytes = test::ReadFileBytes(vmg);
  const std::vector<std::uint8_t> vts_bytes = test::ReadFileBytes(vts);
  std::uint32_t seed = 2024;
  auto next = [&seed] { return seed = seed * 1664525u + 1013904223u; };
  for (int round = 0; round < 60; ++round) {
    std::vector<std::uint8_t> a = vmg_bytes, b = vts_bytes;
    for (int k = 0; k < 16; ++k) {
      std::vector<std::uint8_t>& target = next() % 2 ? a : b;
      // Mostly the counts and offsets near the table starts, where damage reaches furthest.
      std::size_t at = next() % 3 == 0 ? next() % target.size()
                                       : (next() % (target.size() / 2048)) * 2048 + next() % 16;
      target[at] = next() % 2 ? 0xFF : static_cast<std::uint8_t>(next());
    }
    test::WriteFileBytes(vmg, a);
    test::WriteFileBytes(vts, b);
    VerifyResult r = VerifyPath(disc);
    // Every mutation at least breaks the backup copies.
    EXPECT_FALSE(r.findings.empty()) << "round " << round;
  }
}

TEST(Hostile, TruncatedVobGivesErrors) {
  test::TempDir dir;
  std::string disc = test::CopySample(dir, "truncated");
  std::filesystem::resize_file(disc + "/VIDEO_TS/VTS_01_1.VOB", 1200 * 2048 + 1000);
  VerifyResult r = VerifyPath(disc);
  EXPECT_GT(r.errors, 0u);
  bool beyond = false;
  for (const Finding& f : r.findings) beyond = beyond || f.check == "pgc.cell-sectors";
  EXPECT_TRUE(beyond) << VerifyText(r);
}

// A VOB of random bytes: one finding for the whole stretch without pack headers.
TEST(Hostile, GarbageVobGivesErrors) {
  test::TempDir dir;
  std::string disc = test::CopySample(dir, "garbage");
  std::vector<std::uint8_t> garbage(1246 * 2048);
  std::uint32_t seed = 7;
  for (std::uint8_t& b : garbage) b = static_cast<std::uint8_t>((seed = seed * 69069u + 1) >> 24);
  test::WriteFileBytes(disc + "/VIDEO_TS/VTS_01_1.VOB", garbage);
  VerifyResult r = VerifyPath(disc);
  std::vector<const Finding*> packs;
  for (const Finding& f : r.findings) {
    if (f.check == "vob.pack") packs.push_back(&f);
  }
  ASSERT_EQ(packs.size(), 1u) << VerifyText(r);
  EXPECT_EQ(packs[0]->sector, 0u);
  EXPECT_NE(packs[0]->message.find("no MPEG-2 pack header in 1246 records, 0 to 1245"),
            std::string::npos)
      << packs[0]->message;
  EXPECT_GT(r.errors, 1u);  // the address map's VOBUs have no navigation packs either
}

// Every other record without a pack header: each is a finding of its own, and past the limit
// they are counted, not listed.
TEST(Hostile, ScatteredDamageIsCountedBeyondTheListedFindings) {
  test::TempDir dir;
  std::string disc = test::CopySample(dir, "scattered");
  std::string vob = disc + "/VIDEO_TS/VTS_01_1.VOB";
  std::vector<std::uint8_t> bytes = test::ReadFileBytes(vob);
  for (std::size_t r = 1; r < 1246; r += 2) bytes[r * 2048 + 3] = 0xFF;  // 623 records
  test::WriteFileBytes(vob, bytes);
  VerifyResult r = VerifyPath(disc);
  EXPECT_GE(r.errors, 623u);
  std::vector<const Finding*> packs;
  for (const Finding& f : r.findings) {
    if (f.check == "vob.pack") packs.push_back(&f);
  }
  ASSERT_EQ(packs.size(), Findings::kPerCheckLimit);
  EXPECT_EQ(packs[0]->message, "no MPEG-2 pack header (the record starts 000001ff)");
  EXPECT_NE(packs.back()->message.find("(and 423 more findings of this check, not listed)"),
            std::string::npos)
      << packs.back()->message;
}

// The sample's title set IFO cut to 3000 bytes: its tables from sector 2 on lie past the end
// of the file (its VTSI_EA still says 8 sectors), and with no chain read the streams of the
// VOBs are not listed as undeclared one by one.
TEST(Hostile, TruncatedIfoNamesTheTablesPastItsEnd) {
  test::TempDir dir;
  std::string disc = test::CopySample(dir, "truncated-ifo");
  std::string ifo = disc + "/VIDEO_TS/VTS_01_0.IFO";
  std::vector<std::uint8_t> bytes = test::ReadFileBytes(ifo);
  bytes.resize(3000);
  test::WriteFileBytes(ifo, bytes);
  VerifyResult r = VerifyPath(disc);
  std::vector<std::string> tables;
  for (const Finding& f : r.findings) {
    EXPECT_NE(f.check, "stream.undeclared") << f.message;
    if (f.check != "ifo.table-address") continue;
    tables.push_back(f.table.value_or(""));
    EXPECT_NE(f.message.find("lies beyond the end of the file (3000 bytes)"), std::string::npos)
        << f.message;
  }
  EXPECT_EQ(tables,
            (std::vector<std::string>{"VTS_PGCIT", "VTSM_PGCI_UT", "VTS_TMAPT", "VTSM_C_ADT",
                                      "VTSM_VOBU_ADMAP", "VTS_C_ADT", "VTS_VOBU_ADMAP"}));
}

TEST(Hostile, EmptyAndMissingFiles) {
  test::TempDir dir;
  std::string disc = test::CopySample(dir, "empty");
  test::WriteFileBytes(disc + "/VIDEO_TS/VTS_01_0.IFO", {});
  test::WriteFileBytes(disc + "/VIDEO_TS/VIDEO_TS.VOB", {});
  VerifyResult r = VerifyPath(disc);
  EXPECT_GT(r.errors, 0u);
  // Without VIDEO_TS.IFO the title sets are read on their own, an empty IFO among them.
  std::filesystem::remove(disc + "/VIDEO_TS/VIDEO_TS.IFO");
  r = VerifyPath(disc);
  EXPECT_TRUE(std::any_of(r.findings.begin(), r.findings.end(), [](const Finding& f) {
    return f.check == "file.missing" && f.file == "VIDEO_TS.IFO";
  })) << VerifyText(r);
  std::filesystem::remove(disc + "/VIDEO_TS/VTS_01_0.IFO");
  std::string error;
  EXPECT_FALSE(LoadDisc(disc, error));
  EXPECT_EQ(error, "no VIDEO_TS.IFO and no title set IFO (VTS_nn_0.IFO)");
}

// An empty VIDEO_TS.IFO has no sectors: its end address is said to be wrong against an empty
// file, not against sector -1.
TEST(Hostile, EmptyVideoManagerIfo) {
  test::TempDir dir;
  std::string disc = test::CopySample(dir, "empty-vmg");
  test::WriteFileBytes(disc + "/VIDEO_TS/VIDEO_TS.IFO", {});
  VerifyResult r = VerifyPath(disc);
  std::vector<std::string> end_addresses;
  for (const Finding& f : r.findings) {
    if (f.check == "ifo.end-address" && f.file == "VIDEO_TS.IFO")
      end_addresses.push_back(f.message);
  }
  // The menu VOB's 28 sectors still need sectors 0 to 27 (its start, 0, is right).
  EXPECT_EQ(end_addresses,
            (std::vector<std::string>{"VMGI_EA 0, but the IFO is empty",
                                      "VMG_EA 0, but IFO, menu VOB and BUP need sectors 0 to 27"}))
      << VerifyText(r);
}

}  // namespace
}  // namespace tarvex
