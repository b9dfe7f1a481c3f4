// Extraction on the sample disc: the title's two sub-picture units and the decoding of the
// first one (lines worked out by hand from the unit's bytes), and the menu's stills.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>

#include "extract/extract.h"
#include "extract_test_support.h"
#include "platform/bytes.h"
#include "stream/subpicture_unit.h"

namespace tarvex {
namespace {

using namespace test;  // NOLINT

std::string SamplePath(const std::string& name) {
  return std::string(TARVEX_SOURCE_DIR) + "/samples/disc/VIDEO_TS/" + name;
}

class SampleExtract : public ::testing::Test {
 protected:
  void OpenSample(const std::string& name) {
    std::string path = SamplePath(name);
    ASSERT_TRUE(File::Exists(path)) << "sample " << path << " missing";
    fx.ctx->open.file_handle = File::OpenRead(path);
    fx.ctx->open.file_type = kFileVob;
    fx.ctx->open.file_path = path;
    fx.ctx->open.record_count = static_cast<std::uint32_t>(fx.ctx->open.file_handle.Length() >> 11);
  }
  std::string out(const std::string& name) { return fx.dir.file(name); }
  Fixture fx;
};

// The first unit as the sample's record 191 holds it: PES header with PTS and extension up to
// 30, sub-stream id 0x20 at 31, 242 bytes of unit from 32. Its display control sequence table
// lies at 212: 00 00 | 00 EC | 01 | 03 10 11 | 04 0F F0 | 05 0A 02 2F 17 C1 A3 | 06 00 04 00 6C
// FF ... The display address command steps over two of its four bytes, so its third byte, 00,
// is decoded as a command of its own, then 6C (no line), then FF ends.
const std::vector<std::string> kFirstUnitLines = {
    "Size of sub-picture unit: 242",
    "Offset to Display Control Sequence Table: 212",
    "Display Control Command Time: 0",
    "Start address of next command table: 236",
    "Set display start timing of pixel data.",
    "Set color code of pixel data to: 1011",
    "Set pixel mix ratio to: 0ff0",
    "Set display area to: 0a022f17c1a3",
    "Set display address to: 0004006c",
    "Forcedly start display of this sub-picture",
};

TEST_F(SampleExtract, TitleSubPictureUnitsGoToTwoFilesAndTheFirstDecodes) {
  ASSERT_NO_FATAL_FAILURE(OpenSample("VTS_01_1.VOB"));
  fx.ui.chooser_answers.push_back(out("title.SUP"));
  ExtractSubPictures(*fx.ctx);
  EXPECT_TRUE(fx.lines().empty());
  Bytes first = ReadFileBytes(out("title000001.SUP"));
  Bytes second = ReadFileBytes(out("title000002.sup"));
  EXPECT_FALSE(File::Exists(out("title000003.sup")));
  ASSERT_EQ(first.size(), 242u);
  ASSERT_EQ(second.size(), 310u);
  EXPECT_EQ(Slice(first, 0, 4), (Bytes{0x00, 0xF2, 0x00, 0xD4}));   // 242, 212
  EXPECT_EQ(Slice(second, 0, 4), (Bytes{0x01, 0x36, 0x01, 0x18}));  // 310, 280
  Bytes stream = ReadFileBytes(SamplePath("VTS_01_1.VOB"));
  EXPECT_EQ(first, Slice(stream, 191 * 2048 + 32, 191 * 2048 + 32 + 242));
  EXPECT_EQ(second, Slice(stream, 661 * 2048 + 32, 661 * 2048 + 32 + 310));

  Fixture sup;
  sup.ctx->open.file_handle = File::OpenRead(out("title000001.SUP"));
  sup.ctx->open.file_type = kFileSup;
  DecodeSubpictureUnit(*sup.ctx, 0);
  EXPECT_EQ(sup.lines(), kFirstUnitLines);

#ifdef TARVEX_CLI_PATH
  // Opening the file with tarvex-cli shows the same lines.
  std::string cmd =
      std::string("'") + TARVEX_CLI_PATH + "' open '" + out("title000001.SUP") + "' 2>/dev/null";
  std::string printed;
  if (FILE* p = ::popen(cmd.c_str(), "r")) {
    char buf[4096];
    std::size_t n;
    while ((n = std::fread(buf, 1, sizeof buf, p)) > 0) printed.append(buf, n);
    ::pclose(p);
  }
  std::string expected;
  for (const auto& line : kFirstUnitLines) expected += line + "\n";
  EXPECT_EQ(printed, expected);
#endif
}

TEST_F(SampleExtract, MenuWithoutSequenceEndCodeGivesOneStillEqualToTheVideo) {
  ASSERT_NO_FATAL_FAILURE(OpenSample("VIDEO_TS.VOB"));
  fx.ui.chooser_answers.push_back(out("menu.M2V"));
  fx.ui.chooser_answers.push_back(out("video.M2V"));
  ExtractStills(*fx.ctx);
  ExtractVideo(*fx.ctx);
  EXPECT_TRUE(fx.lines().empty());
  Bytes still = ReadFileBytes(out("menu0001.m2v"));
  EXPECT_FALSE(File::Exists(out("menu0002.m2v")));
  EXPECT_FALSE(still.empty());
  EXPECT_EQ(still, ReadFileBytes(out("video.M2V")));
  // The first video pack's PES header ends in one stuffing byte, which is written; the
  // sequence header follows it.
  Bytes menu = ReadFileBytes(SamplePath("VIDEO_TS.VOB"));
  std::size_t first_video = 0;
  while (first_video + 2048 <= menu.size() && menu[first_video + 17] != 0xE0) first_video += 2048;
  std::size_t header_end = first_video + 23 + menu[first_video + 22];
  ASSERT_EQ(menu[header_end - 1], 0xFF);
  EXPECT_EQ(Slice(still, 0, 5), (Bytes{0xFF, 0x00, 0x00, 0x01, 0xB3}));
}

TEST_F(SampleExtract, TitleAudioStreamsGetTheirOwnFiles) {
  ASSERT_NO_FATAL_FAILURE(OpenSample("VTS_01_1.VOB"));
  for (const char* name : {"a0.AC3", "a1.WAV", "a2.MPA"})
    fx.ui.chooser_answers.push_back(out(name));
  ExtractAudio(*fx.ctx);
  auto choosers = fx.ui.Choosers();
  ASSERT_EQ(choosers.size(), 3u);
  EXPECT_EQ(choosers[0].default_name, "audio00.AC3");
  EXPECT_EQ(choosers[1].default_name, "audio01.WAV");
  EXPECT_EQ(choosers[2].default_name, "audio02.MPA");
  Bytes wav = ReadFileBytes(out("a1.WAV"));
  ASSERT_GT(wav.size(), 44u);
  std::uint32_t n = static_cast<std::uint32_t>(wav.size() - 44);
  // 16-bit stereo 48 kHz: channels 2, 48000, byte-rate field 6000, block align 4, 16 bits.
  EXPECT_EQ(ByteView(wav).le32(4), n - 8);
  EXPECT_EQ(ByteView(wav).le16(22), 2);
  EXPECT_EQ(ByteView(wav).le32(24), 48000u);
  EXPECT_EQ(ByteView(wav).le32(28), 6000u);
  EXPECT_EQ(ByteView(wav).le16(32), 4);
  EXPECT_EQ(ByteView(wav).le16(34), 16);
  EXPECT_EQ(ByteView(wav).le32(40), n - 36);
  // AC-3 frames begin with the sync word 0B 77; the MPEG audio file with a frame sync.
  Bytes ac3 = ReadFileBytes(out("a0.AC3"));
  Bytes mpa = ReadFileBytes(out("a2.MPA"));
  ASSERT_GE(ac3.size(), 2u);
  ASSERT_GE(mpa.size(), 2u);
  EXPECT_EQ(ac3[0], 0x0B);
  EXPECT_EQ(ac3[1], 0x77);
  EXPECT_EQ(mpa[0], 0xFF);
  EXPECT_EQ(mpa[1] & 0xE0, 0xE0);
}

}  // namespace
}  // namespace tarvex
