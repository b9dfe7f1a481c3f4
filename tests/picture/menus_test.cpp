// menus on a disc authored with spumux buttons: rectangles, neighbours and the selected and
// activated colours against the highlight information the test reads out of the navigation
// pack itself, the sub-picture's pixel values from ffmpeg's dvdsub decoder, and the picture
// against ffmpeg's decoding of the same frame.
#include <gtest/gtest.h>

#include <cmath>

#include "disc/authored_disc.h"
#include "disc/disc_test_support.h"
#include "disc/model.h"
#include "picture/ffmpeg_dvdsub.h"
#include "picture/picture_discs.h"

#ifdef TARVEX_CLI_PATH

namespace tarvex::test {
namespace {

// The highlight information of a navigation pack, read at the offsets of the PCI: the PCI's
// data starts at byte 45 of the pack, its highlight colours at 0x76 and its 18-byte button
// entries at 0x8E.
struct Button {
  int group, x0, x1, y0, y1, auto_action, up, down, left, right;
};
struct Highlight {
  std::vector<std::uint32_t> colours;  // selected, activated per colour group
  std::vector<Button> buttons;
};

Highlight ReadHighlight(const std::vector<std::uint8_t>& pack) {
  const std::uint8_t* pci = pack.data() + 45;
  Highlight h;
  for (int i = 0; i < 6; ++i) {
    const std::uint8_t* c = pci + 0x76 + 4 * i;
    h.colours.push_back((std::uint32_t{c[0]} << 24) | (c[1] << 16) | (c[2] << 8) | c[3]);
  }
  int count = pci[0x71] & 0x3F;
  for (int n = 0; n < count; ++n) {
    const std::uint8_t* b = pci + 0x8E + 18 * n;
    h.buttons.push_back({b[0] >> 6, ((b[0] & 0x3F) << 4) | (b[1] >> 4), ((b[1] & 3) << 8) | b[2],
                         ((b[3] & 0x3F) << 4) | (b[4] >> 4), ((b[4] & 3) << 8) | b[5], b[3] >> 6,
                         b[6] & 0x3F, b[7] & 0x3F, b[8] & 0x3F, b[9] & 0x3F});
  }
  return h;
}

// The first navigation pack of the menu VOB with buttons.
Highlight MenuHighlight(const std::string& vob) {
  std::vector<std::uint8_t> bytes = ReadFileBytes(vob);
  for (std::size_t at = 0; at + 2048 <= bytes.size(); at += 2048) {
    if (bytes[at + 41] != 0xBF) continue;  // the PCI packet after the system header
    std::vector<std::uint8_t> pack(bytes.begin() + at, bytes.begin() + at + 2048);
    Highlight h = ReadHighlight(pack);
    if (!h.buttons.empty()) return h;
  }
  return {};
}

double Channel(double y, double cr, double cb, int i) {
  double l = 1.164 * (y - 16);
  double v[3] = {l + 1.596 * (cr - 128), l - 0.813 * (cr - 128) - 0.391 * (cb - 128),
                 l + 2.018 * (cb - 128)};
  return std::min(255.0, std::max(0.0, std::round(v[i])));
}

struct Png {
  PngImage image;
  const std::uint8_t* at(int x, int y) const {
    return image.pixels.data() + (std::size_t(y) * image.width + x) * 3;
  }
};

TEST(MenusCli, ButtonsAndTheirColoursAgainstTheNavigationPackAndFfmpeg) {
  if (!HaveAuthoringTools()) GTEST_SKIP() << "ffmpeg, spumux or dvdauthor missing";
  const std::string& disc = MenuPictureDisc();
  ASSERT_FALSE(disc.empty());
  TempDir dir;
  CliRun run = RunCli({"menus", disc, "--json", "--png", dir.file("m")});
  ASSERT_EQ(run.status, 0) << run.err;
  nlohmann::json menus = ParseJson(run.out);
  ASSERT_EQ(menus.size(), 1u) << run.out;
  const nlohmann::json& m = menus[0];
  EXPECT_EQ(m["domain"], "vmgm");
  EXPECT_EQ(m["title_set"], 0);
  EXPECT_EQ(m["pgc"], 1);
  EXPECT_EQ(m["file"], "vmgm-0-" + m["language"].get<std::string>() + "-1.png");
  EXPECT_EQ(m["width"], 720);
  EXPECT_EQ(m["height"], 576);
  std::string vob = disc + "/VIDEO_TS/VIDEO_TS.VOB";
  Highlight h = MenuHighlight(vob);
  ASSERT_EQ(h.buttons.size(), 2u);
  ASSERT_EQ(m["buttons"].size(), 2u);
  for (std::size_t n = 0; n < 2; ++n) {
    const nlohmann::json& b = m["buttons"][n];
    EXPECT_EQ(b["number"], n + 1);
    EXPECT_EQ(b["x0"], h.buttons[n].x0);
    EXPECT_EQ(b["x1"], h.buttons[n].x1);
    EXPECT_EQ(b["y0"], h.buttons[n].y0);
    EXPECT_EQ(b["y1"], h.buttons[n].y1);
    EXPECT_EQ(b["color_group"], h.buttons[n].group);
    EXPECT_EQ(b["auto_action"], h.buttons[n].auto_action == 1);
    EXPECT_EQ(b["up"], h.buttons[n].up);
    EXPECT_EQ(b["down"], h.buttons[n].down);
    EXPECT_EQ(b["left"], h.buttons[n].left);
    EXPECT_EQ(b["right"], h.buttons[n].right);
  }
  // The spumux XML puts b1 at 96,96-304,164 above b2.
  EXPECT_EQ(m["buttons"][0]["x0"], 96);
  EXPECT_EQ(m["buttons"][0]["y0"], 96);
  EXPECT_EQ(m["buttons"][0]["down"], 2);
  EXPECT_EQ(m["buttons"][1]["up"], 1);
  // "jump title 1" always goes to title 1; "exit" goes nowhere.
  const nlohmann::json& target = m["buttons"][0]["target"];
  ASSERT_TRUE(target.is_object()) << m.dump();
  EXPECT_EQ(target["domain"], "vts");
  EXPECT_EQ(target["title_set"], 1);
  EXPECT_EQ(target["title"], 1);
  EXPECT_TRUE(m["buttons"][1]["target"].is_null());

  // The frame as ffmpeg decodes it.
  std::string raw = dir.file("frame.rgb");
  CaptureCommand("ffmpeg -v error -y -i " + ShellQuote(vob) +
                 " -map 0:v:0 -frames:v 1 -f rawvideo -pix_fmt rgb24 " + ShellQuote(raw));
  std::vector<std::uint8_t> frame = ReadFileBytes(raw);
  ASSERT_EQ(frame.size(), 720u * 576 * 3);
  Png plain{ReadPng(dir.file("m/" + m["file"].get<std::string>()))};
  ASSERT_EQ(plain.image.channels, 3);
  // Away from the buttons (below y 300) the picture is the frame alone.
  double squared = 0;
  std::size_t count = 0;
  for (int y = 300; y < 576; ++y) {
    for (int x = 0; x < 720; ++x) {
      for (int i = 0; i < 3; ++i) {
        double d = double(plain.at(x, y)[i]) - frame[(std::size_t(y) * 720 + x) * 3 + i];
        squared += d * d;
        ++count;
      }
    }
  }
  double psnr = 10 * std::log10(255.0 * 255.0 / (squared / count + 1e-9));
  EXPECT_GE(psnr, 35.0);

  // The centre of button 1 in its selected and activated states: the colour code and contrast
  // of its pixel value in the colour group's entries, over the frame.
  std::string stem =
      "m/" + m["file"].get<std::string>().substr(0, m["file"].get<std::string>().size() - 4);
  std::string units = dir.file("units.bin");
  CaptureCommand("ffmpeg -v error -y -i " + ShellQuote(vob) + " -map 0:s:0 -c copy -f data " +
                 ShellQuote(units));
  auto unit_list = SplitUnits(ReadFileBytes(units));
  ASSERT_FALSE(unit_list.empty());
  std::string palette;
  for (int i = 0; i < 16; ++i) palette += std::string(i ? "," : "") + "000000";
  std::optional<DecodedRect> r = DecodeWithFfmpeg(unit_list[0], palette);
  ASSERT_TRUE(r);
  int cx = 98, cy = 130;  // on b1's frame
  int value = r->index[std::size_t(cy - r->y) * r->width + (cx - r->x)];
  std::string error;
  std::optional<Disc> model = LoadDisc(disc, error);
  ASSERT_TRUE(model) << error;
  const auto& pal = model->vmg.menus.at(0).pgcs.at(0).palette;
  int group = h.buttons[0].group;
  for (bool activated : {false, true}) {
    std::uint32_t entry = h.colours[(group - 1) * 2 + (activated ? 1 : 0)];
    int code = (entry >> (16 + 4 * value)) & 0xF, contrast = (entry >> (4 * value)) & 0xF;
    std::uint32_t yuv = pal[code];
    Png state{ReadPng(dir.file(stem + "-b1-" + (activated ? "activated" : "selected") + ".png"))};
    ASSERT_EQ(state.image.width, 720u);
    int a = 17 * contrast;
    // spumux gives the highlight and select pictures of these buttons visible colours.
    EXPECT_GT(contrast, 0) << (activated ? "activated" : "selected");
    for (int i = 0; i < 3; ++i) {
      double c = Channel((yuv >> 16) & 0xFF, (yuv >> 8) & 0xFF, yuv & 0xFF, i);
      double p = frame[(std::size_t(cy) * 720 + cx) * 3 + i];
      EXPECT_NEAR(state.at(cx, cy)[i], (a * c + (255 - a) * p) / 255, 4)
          << (activated ? "activated " : "selected ") << i;
    }
  }
}

TEST(MenusCli, ASixteenByNineMenuShowsItsWideButtonsAndSubPicture) {
  if (!HaveAuthoringTools()) GTEST_SKIP() << "ffmpeg, spumux or dvdauthor missing";
  const std::string& disc = WideMenuDisc();
  ASSERT_FALSE(disc.empty());
  TempDir dir;
  CliRun run = RunCli({"menus", disc, "--json", "--png", dir.file("m")});
  ASSERT_EQ(run.status, 0) << run.err;
  nlohmann::json menus = ParseJson(run.out);
  ASSERT_EQ(menus.size(), 1u) << run.out;
  ASSERT_EQ(menus[0]["buttons"].size(), 1u) << run.out;
  // The wide form's button, as the spumux XML of stream 0 places it, not the letterbox one's.
  const nlohmann::json& b = menus[0]["buttons"][0];
  EXPECT_EQ(b["x0"], 100);
  EXPECT_EQ(b["y0"], 100);
  EXPECT_EQ(b["x1"], 300);
  EXPECT_EQ(b["y1"], 160);
  // The wide stream's grey box is drawn, the letterbox stream's is not: the picture at the
  // letterbox box is the frame as ffmpeg decodes it.
  std::string stem = menus[0]["file"].get<std::string>();
  Png plain{ReadPng(dir.file("m/" + stem))};
  ASSERT_EQ(plain.image.width, 720u);
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(plain.at(200, 130)[i], 200, 12) << i;
  std::string raw = dir.file("frame.rgb");
  CaptureCommand("ffmpeg -v error -y -i " + ShellQuote(disc + "/VIDEO_TS/VIDEO_TS.VOB") +
                 " -map 0:v:0 -frames:v 1 -f rawvideo -pix_fmt rgb24 " + ShellQuote(raw));
  std::vector<std::uint8_t> frame = ReadFileBytes(raw);
  ASSERT_EQ(frame.size(), 720u * 576 * 3);
  for (int i = 0; i < 3; ++i)
    EXPECT_NEAR(plain.at(200, 320)[i], frame[(320 * 720 + 200) * 3 + i], 12) << i;
}

}  // namespace
}  // namespace tarvex::test

#endif  // TARVEX_CLI_PATH
