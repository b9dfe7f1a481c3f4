// Angle blocks and interleaved units, built by hand: a title set in memory whose chain holds an
// ordinary cell, an interleaved angle block of two cells whose units alternate (2 angles x 2
// units of 3 sectors), and another ordinary cell. Every sector carries its own number, so the
// bytes of a rip say which sectors it took, in which order.
#include <gtest/gtest.h>

#include "archive/chapters.h"
#include "archive/rip.h"
#include "stream/nav_layout.h"

namespace tarvex {
namespace {

constexpr std::size_t kSector = 2048;
constexpr std::size_t kPciBytes = 0x3D4;  // the PCI packet's length in DVD navigation packs
constexpr std::size_t kDsiData = kDsiAfterPciLength + kPciBytes + 7;

void Put32(std::vector<std::uint8_t>& b, std::size_t at, std::uint32_t v) {
  for (int i = 0; i < 4; ++i) b[at + i] = static_cast<std::uint8_t>(v >> (24 - 8 * i));
}

// Sector n: its number in bytes 100-103, the rest 0xEE.
std::vector<std::uint8_t> Sectors(std::size_t count) {
  std::vector<std::uint8_t> bytes(count * kSector, 0xEE);
  for (std::size_t n = 0; n < count; ++n)
    Put32(bytes, n * kSector + 100, static_cast<std::uint32_t>(n));
  return bytes;
}

// Makes sector n a navigation pack whose unit ends ilvu_ea sectors on and whose next unit of
// the same angle starts next_sa sectors on.
void NavPack(std::vector<std::uint8_t>& bytes, std::size_t n, std::uint32_t ilvu_ea,
             std::uint32_t next_sa) {
  std::size_t r = n * kSector;
  Put32(bytes, r, 0x000001BA);
  Put32(bytes, r + kPciStartCode, 0x000001BF);
  bytes[r + kPciLength] = kPciBytes >> 8;
  bytes[r + kPciLength + 1] = kPciBytes & 0xFF;
  bytes[r + kPciSubStream] = 0;
  bytes[r + kDsiData + kDsiSmlPbiCategory] = 0x40;  // in an interleaved unit
  bytes[r + kDsiData + kDsiSmlPbiCategory + 1] = 0;
  Put32(bytes, r + kDsiData + kDsiIlvuEa, ilvu_ea);
  Put32(bytes, r + kDsiData + kDsiNxtIlvuSa, next_sa);
}

Cell MakeCell(std::uint32_t number, std::uint32_t first, std::uint32_t last, std::uint8_t mode,
              bool interleaved, PlaybackTime time) {
  Cell c;
  c.number = number;
  c.first_sector = first;
  c.last_sector = last;
  // Byte 0: block mode (bits 7-6: 1 first, 2 inside, 3 last), block type (5-4: 1 angle),
  // interleaved (bit 2).
  c.category[0] = mode == 0 ? 0 : static_cast<std::uint8_t>((mode << 6) | 0x10);
  if (interleaved) c.category[0] |= 0x04;
  c.time = time;
  return c;
}

PlaybackTime Pal(std::uint8_t s, std::uint8_t f) {
  return PlaybackTime{.seconds = s, .frames = f, .rate_code = 1};
}

// Sectors 0-1 cell 1; 2-4 angle 1 unit 1, 5-7 angle 2 unit 1, 8-10 angle 1 unit 2, 11-13
// angle 2 unit 2; 14-15 cell 4.
struct HandDisc {
  Disc disc;
  explicit HandDisc(bool interleaved) {
    std::vector<std::uint8_t> vob = Sectors(16);
    if (interleaved) {
      NavPack(vob, 2, 2, 6);
      NavPack(vob, 8, 2, 6);
      NavPack(vob, 5, 2, 6);
      NavPack(vob, 11, 2, 0x7FFFFFFF);
    }
    disc.kind = "folder";
    disc.access = OpenMemoryDisc({{"VTS_01_1.VOB", vob}});
    TitleSet& ts = disc.title_sets.emplace_back();
    ts.number = 1;
    ts.present = true;
    ts.title_vobs.parts.push_back({"VTS_01_1.VOB", vob.size(), 0});
    ts.title_vobs.sectors = 16;
    Pgc& pgc = ts.pgcs.emplace_back();
    pgc.number = 1;
    pgc.program_map = {1, 2, 4};
    std::uint32_t a2_first = interleaved ? 5 : 8, a1_last = interleaved ? 10 : 7;
    pgc.cells = {MakeCell(1, 0, 1, 0, false, Pal(1, 0)),
                 MakeCell(2, 2, a1_last, 1, interleaved, Pal(2, 12)),
                 MakeCell(3, a2_first, 13, 3, interleaved, Pal(2, 12)),
                 MakeCell(4, 14, 15, 0, false, Pal(0, 12))};
    ts.parts.push_back({{1, 1}, {1, 2}, {1, 3}});
  }
};

// The sector numbers a rip wrote, in order.
std::vector<std::uint32_t> RippedSectors(const Disc& disc, std::uint32_t angle) {
  std::vector<TitleEntry> titles = DiscTitles(disc);
  EXPECT_EQ(titles.size(), 1u);
  std::vector<std::uint8_t> out;
  RipOptions options{.angle = angle,
                     .write = [&out](std::span<const std::uint8_t> b, std::string&) {
                       out.insert(out.end(), b.begin(), b.end());
                       return true;
                     }};
  RipResult result = RipTitle(disc, PlanTitleCells(disc, titles[0], angle), options);
  EXPECT_TRUE(result.ok) << result.error;
  EXPECT_EQ(result.bytes, out.size());
  std::vector<std::uint32_t> sectors;
  for (std::size_t r = 0; r + kSector <= out.size(); r += kSector) {
    sectors.push_back(ByteView(out).be32(r + 100));
  }
  return sectors;
}

TEST(RipUnits, InterleavedBlockGivesEachAngleItsOwnUnits) {
  HandDisc hand(true);
  EXPECT_EQ(DiscTitles(hand.disc)[0].angles, 2u);
  EXPECT_EQ(RippedSectors(hand.disc, 1),
            (std::vector<std::uint32_t>{0, 1, 2, 3, 4, 8, 9, 10, 14, 15}));
  EXPECT_EQ(RippedSectors(hand.disc, 2),
            (std::vector<std::uint32_t>{0, 1, 5, 6, 7, 11, 12, 13, 14, 15}));
  std::string error;
  std::vector<TitleEntry> titles = DiscTitles(hand.disc);
  EXPECT_EQ(RipSize(hand.disc, PlanTitleCells(hand.disc, titles[0], 2), error), 10u * kSector);
}

TEST(RipUnits, AngleBlockWithoutInterleavingTakesTheAnglesCell) {
  HandDisc hand(false);
  EXPECT_EQ(RippedSectors(hand.disc, 1),
            (std::vector<std::uint32_t>{0, 1, 2, 3, 4, 5, 6, 7, 14, 15}));
  EXPECT_EQ(RippedSectors(hand.disc, 2),
            (std::vector<std::uint32_t>{0, 1, 8, 9, 10, 11, 12, 13, 14, 15}));
}

TEST(RipUnits, BrokenInterleaveLinkIsAnErrorNamingTheSector) {
  HandDisc hand(true);
  std::vector<std::uint8_t> vob = Sectors(16);
  NavPack(vob, 2, 2, 0x7FFFFFFF);  // angle 1's first unit links nowhere
  hand.disc.access = OpenMemoryDisc({{"VTS_01_1.VOB", vob}});
  std::vector<TitleEntry> titles = DiscTitles(hand.disc);
  RipOptions options{.write = [](std::span<const std::uint8_t>, std::string&) { return true; }};
  RipResult result = RipTitle(hand.disc, PlanTitleCells(hand.disc, titles[0], 1), options);
  EXPECT_FALSE(result.ok);
  EXPECT_NE(result.error.find("sector 2 "), std::string::npos) << result.error;
  EXPECT_EQ(result.bytes, 5u * kSector);  // cell 1 and the unit 2-4 were written
}

TEST(RipUnits, ShortVobFileIsAReadErrorNamingFileAndSector) {
  HandDisc hand(false);
  std::vector<std::uint8_t> vob = Sectors(12);  // the file lost its last 4 sectors (12-15)
  hand.disc.access = OpenMemoryDisc({{"VTS_01_1.VOB", vob}});
  std::vector<TitleEntry> titles = DiscTitles(hand.disc);
  RipOptions options{.write = [](std::span<const std::uint8_t>, std::string&) { return true; }};
  RipResult result = RipTitle(hand.disc, PlanTitleCells(hand.disc, titles[0], 1), options);
  EXPECT_FALSE(result.ok);
  EXPECT_NE(result.error.find("VTS_01_1.VOB: sector 14 cannot be read"), std::string::npos)
      << result.error;
}

// Chapters 1-3 start at cells 1, 2 (the angle block) and 4: 0 s, 1 s, then 1 s + 2.48 s (one
// angle's cell of 2 s 12 frames at 25 fps); the title ends 0.48 s later.
TEST(RipUnits, ChapterTimesCountOneAngleOfTheBlock) {
  HandDisc hand(true);
  for (std::uint32_t angle : {1u, 2u}) {
    TitleCells plan = PlanTitleCells(hand.disc, DiscTitles(hand.disc)[0], angle);
    ASSERT_EQ(plan.chapters.size(), 3u);
    EXPECT_EQ(ChapterClock(plan.chapters[0].start_ticks), "00:00:00.000");
    EXPECT_EQ(ChapterClock(plan.chapters[1].start_ticks), "00:00:01.000");
    EXPECT_EQ(ChapterClock(plan.chapters[2].start_ticks), "00:00:03.480");
    EXPECT_EQ(ChapterClock(plan.chapters[2].end_ticks), "00:00:03.960");
  }
}

// Two NTSC cells of one hour by their time codes (108000 frames of 1001/30000 s = 3603.6 s
// each): the third chapter starts at 7207.2 s, not at the 7200 s the time codes read.
TEST(RipUnits, NtscChapterTimesDoNotDrift) {
  HandDisc hand(false);
  Pgc& pgc = hand.disc.title_sets[0].pgcs[0];
  PlaybackTime hour{.hours = 1, .rate_code = 3};
  pgc.cells = {MakeCell(1, 0, 1, 0, false, hour), MakeCell(2, 2, 3, 0, false, hour),
               MakeCell(3, 4, 5, 0, false, PlaybackTime{.frames = 1, .rate_code = 3})};
  pgc.program_map = {1, 2, 3};
  TitleCells plan = PlanTitleCells(hand.disc, DiscTitles(hand.disc)[0], 1);
  std::string ogm = ChapterFile(plan.chapters, ChapterFormat::kOgm);
  EXPECT_EQ(ogm,
            "CHAPTER01=00:00:00.000\nCHAPTER01NAME=Chapter 01\n"
            "CHAPTER02=01:00:03.600\nCHAPTER02NAME=Chapter 02\n"
            "CHAPTER03=02:00:07.200\nCHAPTER03NAME=Chapter 03\n");
  // The title ends one frame (33.367 ms) after chapter 3 starts: 7207.233 s.
  EXPECT_EQ(ChapterFile(plan.chapters, ChapterFormat::kFfmetadata),
            ";FFMETADATA1\n\n[CHAPTER]\nTIMEBASE=1/1000\nSTART=0\nEND=3603600\n"
            "title=Chapter 01\n\n[CHAPTER]\nTIMEBASE=1/1000\nSTART=3603600\nEND=7207200\n"
            "title=Chapter 02\n\n[CHAPTER]\nTIMEBASE=1/1000\nSTART=7207200\nEND=7207233\n"
            "title=Chapter 03\n");
  std::string xml = ChapterFile(plan.chapters, ChapterFormat::kMatroska);
  EXPECT_NE(xml.find("<ChapterTimeStart>02:00:07.200</ChapterTimeStart>\n"
                     "      <ChapterTimeEnd>02:00:07.233</ChapterTimeEnd>"),
            std::string::npos)
      << xml;
  EXPECT_NE(xml.find("<ChapterString>Chapter 03</ChapterString>"), std::string::npos);
}

}  // namespace
}  // namespace tarvex
