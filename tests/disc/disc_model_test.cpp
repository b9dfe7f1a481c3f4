// The disc model on the sample disc. Expected values come from samples/README.md and from
// the IFO reports of the sample (tarvex-cli ifo FILE TABLE), read by hand.
#include <gtest/gtest.h>

#include "disc/disc_test_support.h"
#include "disc/model.h"

namespace tarvex {
namespace {

Disc LoadSample() {
  std::string error;
  std::optional<Disc> disc = LoadDisc(test::SampleDisc(), error);
  EXPECT_TRUE(disc) << error;
  return disc ? std::move(*disc) : Disc{};
}

TEST(DiscModel, OpensTheFolderThatHoldsVideoTsAndVideoTsItself) {
  std::string error;
  EXPECT_TRUE(LoadDisc(test::SampleDisc(), error));
  EXPECT_TRUE(LoadDisc(test::SampleDisc() + "/VIDEO_TS", error));
  EXPECT_FALSE(LoadDisc(test::SampleDisc() + "/nothing", error));
  EXPECT_EQ(error, "no such file or folder");
  test::TempDir empty;
  EXPECT_FALSE(LoadDisc(empty.path(), error));
  EXPECT_EQ(error, "not a VIDEO_TS folder and holds none");
}

TEST(DiscModel, VideoManagerAndTitle) {
  Disc disc = LoadSample();
  EXPECT_EQ(disc.vmg.id, "DVDVIDEO-VMG");
  EXPECT_EQ(disc.vmg.provider, "DVDAuthor 0.7.2");
  EXPECT_EQ(disc.vmg.title_set_count, 1);
  EXPECT_EQ(disc.vmg.vmg_ea, 39u);
  ASSERT_EQ(disc.vmg.titles.size(), 1u);
  const TitleEntry& t = disc.vmg.titles[0];
  EXPECT_EQ(t.chapters, 3);
  EXPECT_EQ(t.angles, 1);
  EXPECT_EQ(t.title_set, 1);
  EXPECT_EQ(t.title_in_set, 1);
  EXPECT_EQ(t.start_sector, 40u);
  ASSERT_EQ(disc.title_sets.size(), 1u);
  // 6 + 28 + 6 sectors of VIDEO_TS.IFO, .VOB and .BUP before the title set.
  EXPECT_EQ(disc.title_sets[0].disc_start, 40u);
}

TEST(DiscModel, TitleChainCellsAndVobus) {
  Disc disc = LoadSample();
  const TitleSet& ts = disc.title_sets[0];
  EXPECT_TRUE(ts.present);
  EXPECT_EQ(ts.vts_ea, 1291u);
  EXPECT_EQ(ts.title_vobs_at, 37u);
  ASSERT_EQ(ts.parts.size(), 1u);
  ASSERT_EQ(ts.parts[0].size(), 3u);
  EXPECT_EQ(ts.parts[0][2].pgcn, 1);
  EXPECT_EQ(ts.parts[0][2].pgn, 3);
  ASSERT_EQ(ts.pgcs.size(), 1u);
  const Pgc& pgc = ts.pgcs[0];
  EXPECT_EQ(pgc.category, 0x81000000u);
  EXPECT_EQ(pgc.declared_programs, 3u);
  EXPECT_EQ(pgc.time.seconds, 8);
  EXPECT_EQ(pgc.audio_control[1], 0x8100);
  EXPECT_EQ(pgc.subpicture_control[0], 0x80000000u);
  EXPECT_EQ(pgc.program_map, (std::vector<std::uint8_t>{1, 2, 3}));
  EXPECT_EQ(pgc.pre.size(), 3u);
  EXPECT_EQ(pgc.post.size(), 1u);
  EXPECT_EQ(pgc.post[0], (NavCommand{0x30, 0x08, 0x00, 0x00, 0x01, 0x42, 0x00, 0x00}));
  ASSERT_EQ(pgc.cells.size(), 3u);
  EXPECT_EQ(pgc.cells[0].first_sector, 0u);
  EXPECT_EQ(pgc.cells[0].last_vobu_start, 313u);
  EXPECT_EQ(pgc.cells[0].last_sector, 390u);
  EXPECT_EQ(pgc.cells[1].first_sector, 391u);
  EXPECT_EQ(pgc.cells[2].last_sector, 1245u);
  EXPECT_EQ(pgc.cells[2].cell_id, 3);
  EXPECT_EQ(pgc.cells[0].time.frames, 28);
  EXPECT_EQ(pgc.palette[0], 0x00EB8080u);

  // 2551808 bytes of VTS_01_1.VOB are 1246 sectors; the navigation packs start the VOBUs.
  EXPECT_EQ(ts.title_vobs.sectors, 1246u);
  EXPECT_EQ(ts.title_vobs.vobu_starts,
            (std::vector<std::uint32_t>{0, 30, 77, 155, 234, 313, 391, 470, 548, 625, 704, 783, 860,
                                        935, 1010, 1082, 1154}));
  ASSERT_EQ(ts.title_vobs.cells.size(), 3u);
  EXPECT_EQ(ts.title_vobs.cells[1].first, 391u);
  EXPECT_EQ(ts.title_vobs.cells[1].last, 859u);
  auto where = ts.title_vobs.Locate(1245);
  ASSERT_TRUE(where);
  EXPECT_EQ(where->first, "VTS_01_1.VOB");
  EXPECT_EQ(where->second, 1245u);
  EXPECT_FALSE(ts.title_vobs.Locate(1246));
  ASSERT_EQ(ts.time_maps.size(), 1u);
  EXPECT_EQ(ts.time_maps[0].entries.size(), 7u);
}

TEST(DiscModel, StreamsAndMenus) {
  Disc disc = LoadSample();
  const TitleSet& ts = disc.title_sets[0];
  EXPECT_STREQ(ts.title.video.standard, "NTSC");
  EXPECT_STREQ(ts.title.video.aspect, "4:3");
  EXPECT_EQ(ts.title.video.width, 720u);
  EXPECT_EQ(ts.title.video.height, 480u);
  ASSERT_EQ(ts.title.audio.size(), 3u);
  EXPECT_STREQ(ts.title.audio[0].format, "ac3");
  EXPECT_STREQ(ts.title.audio[1].format, "lpcm");
  EXPECT_STREQ(ts.title.audio[2].format, "mpeg1");
  EXPECT_EQ(ts.title.audio[1].language, "fr");
  ASSERT_EQ(ts.title.subpictures.size(), 1u);
  EXPECT_EQ(ts.title.subpictures[0].language, "en");
  // The video manager's menu: one language unit, one chain, the title menu.
  ASSERT_EQ(disc.vmg.menus.size(), 1u);
  ASSERT_EQ(disc.vmg.menus[0].pgcs.size(), 1u);
  EXPECT_TRUE(disc.vmg.menus[0].pgcs[0].entry());
  EXPECT_EQ(disc.vmg.menus[0].pgcs[0].menu_id(), 2u);
  ASSERT_TRUE(disc.vmg.first_play);
  // The title set's root menu.
  ASSERT_EQ(ts.menus.size(), 1u);
  EXPECT_EQ(ts.menus[0].pgcs[0].menu_id(), 3u);
}

TEST(Attributes, PlaybackTimesCountFramesAtTheirRate) {
  const std::uint8_t ntsc[] = {0x01, 0x02, 0x03, 0xE8};  // 01:02:03, 28 frames at 30
  PlaybackTime t = DecodePlaybackTime(ByteView(ntsc, 4));
  EXPECT_EQ(t.Milliseconds(), 3723000u + 934u);  // 28 / 29.97 s = 0.93427 s
  EXPECT_EQ(t.Text(), "01:02:03.934");
  const std::uint8_t pal[] = {0x00, 0x00, 0x01, 0x52};  // 1 s, 12 frames at 25
  EXPECT_EQ(DecodePlaybackTime(ByteView(pal, 4)).Milliseconds(), 1480u);
}

TEST(Attributes, StreamControlMapsToStreamIds) {
  EXPECT_EQ(AudioControlNumber(0x8300), 3u);
  EXPECT_FALSE(AudioControlNumber(0x0300));
  EXPECT_EQ(AudioStreamId(4, 3), 0xA3);  // LPCM
  EXPECT_EQ(AudioStreamId(2, 1), 0xC1);  // MPEG-1
  EXPECT_EQ(AudioStreamId(6, 0), 0x88);  // DTS
  SubpictureControl c = DecodeSubpictureControl(0x81020304);
  EXPECT_TRUE(c.available);
  EXPECT_EQ(c.standard, 1u);
  EXPECT_EQ(c.wide, 2u);
  EXPECT_EQ(c.letterbox, 3u);
  EXPECT_EQ(c.pan_scan, 4u);
}

TEST(Attributes, VideoAttributes) {
  const std::uint8_t pal_wide[] = {0x5C, 0x00};  // MPEG-2, PAL, 16:9
  VideoAttributes v = DecodeVideoAttributes(ByteView(pal_wide, 2));
  EXPECT_STREQ(v.standard, "PAL");
  EXPECT_STREQ(v.aspect, "16:9");
  EXPECT_EQ(v.height, 576u);
  EXPECT_DOUBLE_EQ(v.frame_rate, 25.0);
  // Byte 1: the resolution in bits 5-3, letterboxed in bit 2, film in bit 0.
  const std::uint8_t half[] = {0x40, 0x18};  // NTSC 352x240
  v = DecodeVideoAttributes(ByteView(half, 2));
  EXPECT_EQ(v.width, 352u);
  EXPECT_EQ(v.height, 240u);
  EXPECT_FALSE(v.letterboxed);
  const std::uint8_t pal_704[] = {0x5C, 0x08};  // as dvdauthor writes 704x576
  v = DecodeVideoAttributes(ByteView(pal_704, 2));
  EXPECT_EQ(v.width, 704u);
  EXPECT_EQ(v.height, 576u);
  const std::uint8_t letterboxed[] = {0x50, 0x15};  // PAL 352x576, letterboxed, film
  v = DecodeVideoAttributes(ByteView(letterboxed, 2));
  EXPECT_EQ(v.width, 352u);
  EXPECT_TRUE(v.letterboxed);
  EXPECT_TRUE(v.film);
  const std::uint8_t reserved[] = {0x40, 0x20};  // resolution code 4
  v = DecodeVideoAttributes(ByteView(reserved, 2));
  EXPECT_EQ(v.resolution, 4);
  EXPECT_EQ(v.width, 0u);
}

}  // namespace
}  // namespace tarvex
