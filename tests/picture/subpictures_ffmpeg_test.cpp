// subpictures against ffmpeg: every unit of discs authored with spumux, taken out of the VOB by
// ffmpeg's demuxer and decoded by its dvdsub decoder with the chain's palette given explicitly,
// has the pixels of the PNG tarvex-cli wrote; ffmpeg reads the .idx/.sub back to the same
// units at the same times, and mkvmerge muxes them.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "disc/authored_disc.h"
#include "disc/disc_test_support.h"
#include "disc/model.h"
#include "picture/ffmpeg_dvdsub.h"
#include "picture/picture_discs.h"

#ifdef TARVEX_CLI_PATH

namespace tarvex::test {
namespace {

// The contract's conversion, written out again: BT.601 with Y in 16-235.
std::string Bt601Hex(std::uint32_t entry) {
  double y = (entry >> 16) & 0xFF, cr = (entry >> 8) & 0xFF, cb = entry & 0xFF;
  double l = 1.164 * (y - 16);
  double rgb[3] = {l + 1.596 * (cr - 128), l - 0.813 * (cr - 128) - 0.391 * (cb - 128),
                   l + 2.018 * (cb - 128)};
  char text[8];
  int v[3];
  for (int i = 0; i < 3; ++i)
    v[i] = std::min(255, std::max(0, static_cast<int>(std::lround(rgb[i]))));
  std::snprintf(text, sizeof text, "%02x%02x%02x", v[0], v[1], v[2]);
  return text;
}

// The title's chain palette read from the disc model, converted by the test's own formula.
std::vector<std::string> ChainPalette(const std::string& path) {
  std::string error;
  std::optional<Disc> disc = LoadDisc(path, error);
  EXPECT_TRUE(disc) << error;
  std::vector<std::string> out;
  if (!disc || disc->title_sets.empty() || disc->title_sets[0].pgcs.empty()) return out;
  for (std::uint32_t e : disc->title_sets[0].pgcs[0].palette) out.push_back(Bt601Hex(e));
  return out;
}

std::string Join(const std::vector<std::string>& v) {
  std::string s;
  for (const std::string& x : v) s += (s.empty() ? "" : ",") + x;
  return s;
}

// The units of stream id in the title VOB, as ffmpeg's demuxer takes them out.
std::vector<std::vector<std::uint8_t>> FfmpegUnits(const TempDir& dir, const std::string& input,
                                                   const std::string& id) {
  std::string out = dir.file("ffmpeg-" + id + ".bin");
  std::string log =
      CaptureCommand("ffmpeg -v error -y -i " + ShellQuote(input) + " -map 0:i:" + id +
                     " -c copy -f data " + ShellQuote(out) + " 2>&1");
  EXPECT_TRUE(std::filesystem::exists(out)) << log;
  return std::filesystem::exists(out) ? SplitUnits(ReadFileBytes(out))
                                      : std::vector<std::vector<std::uint8_t>>{};
}

// Our PNG of a unit against ffmpeg's decoding: the same pixels where ffmpeg shows any, fully
// transparent everywhere else.
void ExpectSamePixels(const PngImage& ours, int ours_x, int ours_y,
                      const std::optional<DecodedRect>& theirs, const std::string& what) {
  ASSERT_EQ(ours.channels, 4) << what;
  int mismatches = 0;
  for (std::uint32_t y = 0; y < ours.height; ++y) {
    for (std::uint32_t x = 0; x < ours.width; ++x) {
      const std::uint8_t* p = ours.pixels.data() + (std::size_t{y} * ours.width + x) * 4;
      int tx = ours_x + static_cast<int>(x) - (theirs ? theirs->x : 0);
      int ty = ours_y + static_cast<int>(y) - (theirs ? theirs->y : 0);
      bool inside = theirs && tx >= 0 && ty >= 0 && tx < theirs->width && ty < theirs->height;
      if (!inside) {
        if (p[3] != 0 && ++mismatches < 5)
          ADD_FAILURE() << what << ": visible outside ffmpeg's area at " << x << "," << y;
        continue;
      }
      const std::uint8_t* q = theirs->rgba.data() + (std::size_t(ty) * theirs->width + tx) * 4;
      bool same =
          p[3] == q[3] && (p[3] == 0 || (std::abs(p[0] - q[0]) <= 2 && std::abs(p[1] - q[1]) <= 2 &&
                                         std::abs(p[2] - q[2]) <= 2));
      if (!same && ++mismatches < 5)
        ADD_FAILURE() << what << ": pixel " << x << "," << y << " is " << int(p[0]) << " "
                      << int(p[1]) << " " << int(p[2]) << " " << int(p[3]) << ", ffmpeg "
                      << int(q[0]) << " " << int(q[1]) << " " << int(q[2]) << " " << int(q[3]);
    }
  }
  EXPECT_EQ(mismatches, 0) << what;
}

struct Case {
  std::string disc;
  int stream = 1;
  std::string display;  // "" for a 4:3 title
  std::string id;       // the stream id ffmpeg's demuxer names
};

nlohmann::json CheckAgainstFfmpeg(const Case& c, const TempDir& dir) {
  std::vector<std::string> args = {
      "subpictures", c.disc,  "--title",       "1",        "--stream",     std::to_string(c.stream),
      "--json",      "--png", dir.file("png"), "--vobsub", dir.file("sub")};
  if (!c.display.empty()) args.insert(args.end(), {"--display", c.display});
  CliRun run = RunCli(args);
  EXPECT_EQ(run.status, 0) << run.err;
  nlohmann::json index = ParseJson(run.out);
  EXPECT_EQ(index, ParseJson(ReadFileText(dir.file("png/index.json"))));
  EXPECT_EQ(index["stream_id"], c.id);
  std::vector<std::string> palette = ChainPalette(c.disc);
  EXPECT_EQ(index["palette"], nlohmann::json(palette));
  auto units = FfmpegUnits(dir, c.disc + "/VIDEO_TS/VTS_01_1.VOB", c.id);
  EXPECT_EQ(units.size(), index["units"].size());
  for (std::size_t i = 0; i < units.size() && i < index["units"].size(); ++i) {
    const nlohmann::json& u = index["units"][i];
    PngImage ours = ReadPng(dir.file("png/" + u["file"].get<std::string>()));
    EXPECT_EQ(ours.width, u["width"].get<std::uint32_t>());
    EXPECT_EQ(ours.height, u["height"].get<std::uint32_t>());
    std::optional<DecodedRect> theirs = DecodeWithFfmpeg(units[i], Join(palette));
    // Every unit of these discs shows something: a comparison of transparent pictures proves
    // nothing.
    EXPECT_TRUE(theirs) << c.id << " unit " << i + 1;
    ExpectSamePixels(ours, u["x"], u["y"], theirs, c.id + " unit " + std::to_string(i + 1));
  }
  return index;
}

// The .idx/.sub pair read back by ffmpeg: the same units, at the unit's start minus its delay.
void CheckVobsub(const TempDir& dir, const nlohmann::json& index, const std::string& id) {
  auto units = FfmpegUnits(dir, dir.file("sub.idx"), "0x20");
  auto original = FfmpegUnits(dir, index["disc"].get<std::string>() + "/VIDEO_TS/VTS_01_1.VOB", id);
  EXPECT_EQ(units, original);
  std::string idx = ReadFileText(dir.file("sub.idx"));
  std::string line = "palette: ";
  for (std::size_t i = 0; i < index["palette"].size(); ++i)
    line += (i ? ", " : "") + index["palette"][i].get<std::string>();
  EXPECT_NE(idx.find(line + "\n"), std::string::npos) << idx;
  EXPECT_NE(idx.find("size: "), std::string::npos) << idx;
  std::string packets =
      CaptureCommand("ffprobe -v error -show_entries packet=pts_time -of csv=p=0 " +
                     ShellQuote(dir.file("sub.idx")));
  std::istringstream lines(packets);
  std::vector<double> times;
  for (double t; lines >> t;) times.push_back(t);
  ASSERT_EQ(times.size(), index["units"].size()) << packets;
  for (std::size_t i = 0; i < times.size(); ++i) {
    // spumux starts each unit at its PTS: the start delay is 0.
    EXPECT_NEAR(times[i], index["units"][i]["start"].get<double>(), 0.0015) << i;
  }
  std::string log = CaptureCommand("mkvmerge -q -o " + ShellQuote(dir.file("sub.mkv")) + " " +
                                   ShellQuote(dir.file("sub.idx")) + " 2>&1; echo status=$?");
  EXPECT_NE(log.find("status=0"), std::string::npos) << log;
  std::string identify = CaptureCommand("mkvmerge -J " + ShellQuote(dir.file("sub.mkv")));
  nlohmann::json info = ParseJson(identify);
  ASSERT_EQ(info["tracks"].size(), 1u) << identify;
  EXPECT_EQ(info["tracks"][0]["codec"], "VobSub");
}

TEST(SubpicturesFfmpeg, EveryUnitOfBothStreamsWithTheDiscsOwnPalette) {
  if (!HaveAuthoringTools()) GTEST_SKIP() << "ffmpeg, spumux or dvdauthor missing";
  const std::string& disc = PictureDisc();
  ASSERT_FALSE(disc.empty());
  // The palette of the dvdauthor XML comes back through the IFO (within the rounding of its
  // conversion to Y Cr Cb and back).
  std::vector<std::string> palette = ChainPalette(disc);
  ASSERT_EQ(palette.size(), 16u);
  for (int i = 0; i < 16; ++i) {
    int want = std::stoi(kPictureDiscPalette[i], nullptr, 16),
        got = std::stoi(palette[i], nullptr, 16);
    for (int shift : {0, 8, 16}) EXPECT_NEAR((got >> shift) & 0xFF, (want >> shift) & 0xFF, 4) << i;
  }
  TempDir first;
  nlohmann::json one = CheckAgainstFfmpeg({disc, 1, "", "0x20"}, first);
  ASSERT_EQ(one["units"].size(), 2u);
  // Times as the spumux XML gives them, within a frame (1001/30000 s).
  EXPECT_NEAR(one["units"][0]["start"].get<double>(), 0.5, 0.034);
  EXPECT_NEAR(one["units"][0]["end"].get<double>(), 1.5, 0.034);
  EXPECT_NEAR(one["units"][1]["start"].get<double>(), 2.0, 0.034);
  EXPECT_FALSE(one["units"][0]["forced"].get<bool>());
  EXPECT_TRUE(one["units"][1]["forced"].get<bool>());
  CheckVobsub(first, one, "0x20");
  TempDir second;
  nlohmann::json two = CheckAgainstFfmpeg({disc, 2, "", "0x21"}, second);
  ASSERT_EQ(two["units"].size(), 1u);
  EXPECT_NEAR(two["units"][0]["start"].get<double>(), 1.0, 0.034);
  EXPECT_NEAR(two["units"][0]["end"].get<double>(), 2.5, 0.034);
}

TEST(SubpicturesFfmpeg, WideAndLetterboxFormsOfASixteenByNineTitle) {
  if (!HaveAuthoringTools()) GTEST_SKIP() << "ffmpeg, spumux or dvdauthor missing";
  const std::string& disc = WidePictureDisc();
  ASSERT_FALSE(disc.empty());
  TempDir wide, letterbox;
  nlohmann::json w = CheckAgainstFfmpeg({disc, 1, "wide", "0x20"}, wide);
  nlohmann::json l = CheckAgainstFfmpeg({disc, 1, "letterbox", "0x21"}, letterbox);
  ASSERT_EQ(w["units"].size(), 1u);
  ASSERT_EQ(l["units"].size(), 1u);
  // The frame of wide.png: 520 x 60 at 100,400; shown 0.5-1.5 s (PAL frames of 40 ms).
  EXPECT_EQ(w["units"][0]["x"], 100);
  EXPECT_EQ(w["units"][0]["y"], 400);
  EXPECT_EQ(w["units"][0]["width"], 520);
  EXPECT_EQ(w["units"][0]["height"], 60);
  EXPECT_EQ(l["units"][0]["y"], 450);
  EXPECT_NEAR(w["units"][0]["start"].get<double>(), 0.5, 0.04);
  EXPECT_NEAR(w["units"][0]["end"].get<double>(), 1.5, 0.04);
  CliRun pan = RunCli({"subpictures", disc, "--title", "1", "--display", "pan-scan"});
  EXPECT_EQ(pan.status, 1);
  EXPECT_NE(pan.err.find("not available"), std::string::npos) << pan.err;
  CliRun missing = RunCli({"subpictures", disc, "--title", "1", "--stream", "2"});
  EXPECT_EQ(missing.status, 1);
}

}  // namespace
}  // namespace tarvex::test

#endif  // TARVEX_CLI_PATH
