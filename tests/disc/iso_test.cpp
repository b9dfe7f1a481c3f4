// An ISO image of the sample made with genisoimage -dvd-video reads like the folder: the same
// info and verify JSON but for the "disc" value (the path given).
#include <gtest/gtest.h>

#include <fstream>

#include "disc/authored_disc.h"
#include "disc/disc_test_support.h"
#include "disc/info.h"
#include "disc/verify.h"

namespace tarvex {
namespace {

std::string MakeIso(const test::TempDir& dir, const std::string& disc) {
  std::string iso = dir.file("disc.iso");
  std::string command = "genisoimage -quiet -dvd-video -V SAMPLE -o " + test::ShellQuote(iso) +
                        " " + test::ShellQuote(disc) + " 2>&1";
  test::CaptureCommand(command);
  return iso;
}

nlohmann::json WithoutDisc(nlohmann::json j) {
  j.erase("disc");
  return j;
}

std::optional<Disc> Load(const std::string& path) {
  std::string error;
  std::optional<Disc> disc = LoadDisc(path, error);
  EXPECT_TRUE(disc) << path << ": " << error;
  return disc;
}

TEST(Iso, SameInfoAndVerifyAsTheFolder) {
  ASSERT_TRUE(test::HaveTool("genisoimage")) << "genisoimage missing (tools/install-deps.sh test)";
  test::TempDir dir;
  std::string iso = MakeIso(dir, test::SampleDisc());
  std::optional<Disc> image = Load(iso), folder = Load(test::SampleDisc());
  ASSERT_TRUE(image && folder);
  EXPECT_EQ(image->kind, "iso");
  // genisoimage lays the files out in DVD-Video order: title set 1 at sector 40 after
  // VIDEO_TS.IFO, as TT_SRPT says.
  EXPECT_EQ(image->title_sets[0].disc_start, 40u);
  nlohmann::json a = test::ParseJson(DiscInfoJson(*image));
  nlohmann::json b = test::ParseJson(DiscInfoJson(*folder));
  EXPECT_EQ(a["disc"], iso);
  EXPECT_EQ(WithoutDisc(a), WithoutDisc(b));
  VerifyResult va = VerifyDisc(*image), vb = VerifyDisc(*folder);
  EXPECT_EQ(va.errors, 0u) << VerifyText(va);
  EXPECT_EQ(WithoutDisc(test::ParseJson(VerifyJson(iso, va))),
            WithoutDisc(test::ParseJson(VerifyJson("folder", vb))));
}

// The discs authored by dvdauthor: two title sets' worth of layout, menus in two languages,
// a 16:9 title; their images read as their folders do.
TEST(Iso, AuthoredDiscsReadTheSameFromTheirImages) {
  ASSERT_TRUE(test::HaveTool("genisoimage") && test::HaveAuthoringTools())
      << "tools/install-deps.sh test";
  for (const std::string& disc : {test::NtscTwoTitleDisc(), test::WidePalDisc()}) {
    SCOPED_TRACE(disc);
    test::TempDir dir;
    std::string iso = MakeIso(dir, disc);
    std::optional<Disc> image = Load(iso), folder = Load(disc);
    ASSERT_TRUE(image && folder);
    EXPECT_EQ(WithoutDisc(test::ParseJson(DiscInfoJson(*image))),
              WithoutDisc(test::ParseJson(DiscInfoJson(*folder))));
    VerifyResult va = VerifyDisc(*image), vb = VerifyDisc(*folder);
    EXPECT_TRUE(va.findings.empty()) << VerifyText(va);
    EXPECT_EQ(WithoutDisc(test::ParseJson(VerifyJson(iso, va))),
              WithoutDisc(test::ParseJson(VerifyJson("folder", vb))));
  }
}

TEST(Iso, DamagedDiscGivesTheSameFindingsFromItsImage) {
  ASSERT_TRUE(test::HaveTool("genisoimage")) << "genisoimage missing (tools/install-deps.sh test)";
  test::TempDir dir;
  std::string disc = test::Damage(dir, "nav-cell");
  std::string iso = MakeIso(dir, disc);
  std::optional<Disc> image = Load(iso), folder = Load(disc);
  ASSERT_TRUE(image && folder);
  EXPECT_EQ(VerifyText(VerifyDisc(*image)), VerifyText(VerifyDisc(*folder)));
}

TEST(Iso, DamagedImagesGiveAnErrorOrFindingsNeverACrash) {
  ASSERT_TRUE(test::HaveTool("genisoimage")) << "genisoimage missing (tools/install-deps.sh test)";
  test::TempDir dir;
  std::string iso = MakeIso(dir, test::SampleDisc());
  std::vector<std::uint8_t> good = test::ReadFileBytes(iso);
  ASSERT_GT(good.size(), 300u * 2048);
  std::uint32_t seed = 12345;
  auto next = [&seed] { return seed = seed * 1103515245u + 12345u; };
  for (int round = 0; round < 40; ++round) {
    std::vector<std::uint8_t> bytes = good;
    if (round % 4 == 0) {
      bytes.resize((next() % bytes.size()) & ~std::size_t{2047});  // cut anywhere
    } else {
      // Damage the file system area (the first 300 sectors hold the descriptors, the
      // directories and the IFOs).
      for (int k = 0; k < 64; ++k) bytes[next() % (300 * 2048)] = static_cast<std::uint8_t>(next());
    }
    std::string error;
    std::unique_ptr<DiscAccess> access = OpenDiscImage(bytes, error);
    if (!access) {
      EXPECT_FALSE(error.empty());
      continue;
    }
    std::optional<Disc> disc = LoadDisc(std::shared_ptr<DiscAccess>(std::move(access)), "x", error);
    if (!disc) continue;
    VerifyResult r = VerifyDisc(*disc);
    test::ParseJson(VerifyJson("x", r));
    test::ParseJson(DiscInfoJson(*disc));
  }
}

}  // namespace
}  // namespace tarvex
