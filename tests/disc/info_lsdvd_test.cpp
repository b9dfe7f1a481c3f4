// info --json against lsdvd -x on every field both show, and the stream ids that follow the
// program chain's stream control where lsdvd guesses them from the stream's position.
#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <sstream>

#include "disc/authored_disc.h"
#include "disc/disc_test_support.h"
#include "disc/info.h"
#include "disc/model.h"
#include "disc/verify.h"

namespace tarvex {
namespace {

using nlohmann::json;

// What lsdvd -x prints, line by line, as key/value maps per item.
struct LsdvdTitle {
  std::map<std::string, std::string> title;  // the Title line and the one after it
  std::string palette;
  std::string angles;
  std::vector<std::map<std::string, std::string>> audio, chapters, cells, subtitles;
};

std::map<std::string, std::string> Fields(const std::string& line) {
  std::map<std::string, std::string> fields;
  // "Key: value" items, separated by ", " or (after a title's length) by a blank only.
  static const std::regex kField(
      R"(([A-Z][A-Za-z]*(?: [A-Za-z]+)?): (.*?)(?=, | [A-Z][A-Za-z]*(?: [A-Za-z]+)?: |,?$))");
  for (auto it = std::sregex_iterator(line.begin(), line.end(), kField);
       it != std::sregex_iterator(); ++it) {
    std::string key = (*it)[1], value = (*it)[2];
    while (!key.empty() && key.front() == ' ') key.erase(0, 1);
    while (!value.empty() && value.back() == ' ') value.pop_back();
    fields[key] = value;
  }
  return fields;
}

std::vector<LsdvdTitle> RunLsdvd(const std::string& disc) {
  std::string out = test::CaptureCommand("lsdvd -x " + test::ShellQuote(disc) + " 2>/dev/null");
  std::vector<LsdvdTitle> titles;
  std::istringstream in(out);
  std::string line;
  while (std::getline(in, line)) {
    std::size_t start = line.find_first_not_of('\t');
    if (start == std::string::npos) continue;
    std::string body = line.substr(start);
    if (body.rfind("Title: ", 0) == 0) {
      titles.emplace_back().title = Fields(body);
    } else if (titles.empty()) {
      continue;
    } else if (body.rfind("VTS: ", 0) == 0) {
      for (auto& [k, v] : Fields(body)) titles.back().title[k] = v;
    } else if (body.rfind("Palette: ", 0) == 0) {
      titles.back().palette = body.substr(9);
    } else if (body.rfind("Number of Angles: ", 0) == 0) {
      titles.back().angles = body.substr(18);
    } else if (body.rfind("Audio: ", 0) == 0) {
      titles.back().audio.push_back(Fields(body));
    } else if (body.rfind("Chapter: ", 0) == 0) {
      titles.back().chapters.push_back(Fields(body));
    } else if (body.rfind("Cell: ", 0) == 0) {
      titles.back().cells.push_back(Fields(body));
    } else if (body.rfind("Subtitle: ", 0) == 0) {
      titles.back().subtitles.push_back(Fields(body));
    }
  }
  return titles;
}

// "hh:mm:ss.mmm" as milliseconds.
long Ms(const std::string& text) {
  int h = 0, m = 0, s = 0, ms = 0;
  EXPECT_EQ(std::sscanf(text.c_str(), "%d:%d:%d.%d", &h, &m, &s, &ms), 4) << text;
  return ((h * 60L + m) * 60 + s) * 1000 + ms;
}

long Ms(const json& seconds) {
  return std::lround(seconds.get<double>() * 1000);
}

std::string Trim(std::string text) {
  while (!text.empty() && text.back() == ' ') text.pop_back();
  return text;
}

// The language code of lsdvd's "en - English"; lsdvd writes "xx - Unknown" for a stream
// without one, which info gives as null.
json LsdvdLanguage(const std::string& text) {
  std::string code = text.substr(0, 2);
  return code == "xx" ? json(nullptr) : json(code);
}

json Info(const std::string& disc) {
  std::string error;
  std::optional<Disc> d = LoadDisc(disc, error);
  EXPECT_TRUE(d) << error;
  return d ? test::ParseJson(DiscInfoJson(*d)) : json{};
}

// lsdvd's "Longest track: NN".
int LsdvdLongest(const std::string& disc) {
  std::string out = test::CaptureCommand("lsdvd " + test::ShellQuote(disc) + " 2>/dev/null");
  std::size_t at = out.find("Longest track: ");
  return at == std::string::npos ? -1 : std::stoi(out.substr(at + 15));
}

// Every field both show; stream ids only when compare_ids.
void CompareWithLsdvd(const std::string& disc, bool compare_ids) {
  std::vector<LsdvdTitle> lsdvd = RunLsdvd(disc);
  json info = Info(disc);
  EXPECT_EQ(LsdvdLongest(disc), info["longest_title"]);
  ASSERT_EQ(lsdvd.size(), info["titles"].size());
  ASSERT_FALSE(lsdvd.empty());
  for (std::size_t t = 0; t < lsdvd.size(); ++t) {
    const LsdvdTitle& l = lsdvd[t];
    const json& j = info["titles"][t];
    SCOPED_TRACE("title " + std::to_string(t + 1));
    EXPECT_EQ(std::stoi(l.title.at("Title")), j["number"]);
    EXPECT_EQ(Ms(l.title.at("Length")), Ms(j["length"]));
    EXPECT_EQ(std::stoul(l.title.at("Chapters")), j["programs"].size());
    EXPECT_EQ(std::stoul(l.title.at("Cells")), j["cells"].size());
    EXPECT_EQ(std::stoul(l.title.at("Audio streams")), j["audio"].size());
    EXPECT_EQ(std::stoul(l.title.at("Subpictures")), j["subpictures"].size());
    EXPECT_EQ(std::stoi(l.title.at("VTS")), j["title_set"]);
    EXPECT_EQ(std::stoi(l.title.at("TTN")), j["title_in_set"]);
    EXPECT_DOUBLE_EQ(std::stod(l.title.at("FPS")), j["video"]["frame_rate"].get<double>());
    EXPECT_EQ(l.title.at("Format"), j["video"]["standard"]);
    std::string aspect = l.title.at("Aspect ratio");
    std::replace(aspect.begin(), aspect.end(), '/', ':');
    EXPECT_EQ(aspect, j["video"]["aspect"]);
    EXPECT_EQ(std::stoi(l.title.at("Width")), j["video"]["width"]);
    EXPECT_EQ(std::stoi(l.title.at("Height")), j["video"]["height"]);
    EXPECT_EQ(std::stoi(l.angles), j["angles"]);
    const std::string& df = l.title.at("DF");
    if (df == "?") {
      EXPECT_TRUE(j["video"]["display_format"].is_null());
    } else if (df == "Letterbox") {
      EXPECT_EQ(j["video"]["display_format"], "letterbox");
    }
    std::string palette;
    for (const json& c : j["palette"]) palette += c.get<std::string>() + " ";
    EXPECT_EQ(l.palette, palette);
    for (std::size_t a = 0; a < l.audio.size(); ++a) {
      const auto& la = l.audio[a];
      const json& ja = j["audio"][a];
      EXPECT_EQ(std::stoi(la.at("Audio")), ja["number"]);
      EXPECT_EQ(LsdvdLanguage(la.at("Language")), ja["language"]);
      EXPECT_EQ(Trim(la.at("Format")), ja["format"]);
      EXPECT_EQ(std::stoi(la.at("Frequency")), ja["frequency"]);
      EXPECT_EQ(std::stoi(la.at("Channels")), ja["channels"]);
      EXPECT_EQ(std::stoi(la.at("AP")), ja["application_mode"]);
      if (compare_ids) {
        EXPECT_EQ(la.at("Stream id"), ja["stream_id"]);
      }
    }
    // lsdvd's chapters are the programs of the title's chain.
    ASSERT_EQ(l.chapters.size(), j["programs"].size());
    for (std::size_t c = 0; c < l.chapters.size(); ++c) {
      EXPECT_EQ(std::stoi(l.chapters[c].at("Chapter")), j["programs"][c]["number"]);
      EXPECT_EQ(Ms(l.chapters[c].at("Length")), Ms(j["programs"][c]["length"]));
      EXPECT_EQ(std::stoi(l.chapters[c].at("Start Cell")), j["programs"][c]["first_cell"]);
    }
    for (std::size_t c = 0; c < l.cells.size(); ++c) {
      EXPECT_EQ(std::stoi(l.cells[c].at("Cell")), j["cells"][c]["number"]);
      EXPECT_EQ(Ms(l.cells[c].at("Length")), Ms(j["cells"][c]["length"]));
    }
    for (std::size_t s = 0; s < l.subtitles.size(); ++s) {
      EXPECT_EQ(LsdvdLanguage(l.subtitles[s].at("Language")), j["subpictures"][s]["language"]);
      if (compare_ids) {
        EXPECT_EQ(l.subtitles[s].at("Stream id"), j["subpictures"][s]["stream_id"]);
      }
    }
  }
}

bool HaveLsdvd() {
  return test::HaveTool("lsdvd");
}

TEST(InfoLsdvd, SampleAgreesWithLsdvdOnEveryFieldBothShow) {
  ASSERT_TRUE(HaveLsdvd()) << "lsdvd missing (tools/install-deps.sh test)";
  CompareWithLsdvd(test::SampleDisc(), true);
}

TEST(InfoLsdvd, SampleFieldsWorkedOutByHand) {
  // From the sample's IFO report: chapters at cells 1, 2, 3 of 2 s 28 frames, 3 s and 2 s
  // 2 frames at 29.97 frames per second.
  json j = Info(test::SampleDisc());
  const json& t = j["titles"][0];
  EXPECT_EQ(j["vmg"]["id"], "DVDVIDEO-VMG");
  EXPECT_EQ(j["vmg"]["title_sets"], 1);
  EXPECT_EQ(t["length"], 8);
  EXPECT_EQ(t["chapters"][0]["length"], 2.934);
  EXPECT_EQ(t["chapters"][2]["length"], 2.066);
  EXPECT_EQ(t["cells"][1]["first_sector"], 391);
  EXPECT_EQ(t["cells"][1]["last_sector"], 859);
  EXPECT_EQ(t["audio"][0]["stream_id"], "0x80");
  EXPECT_EQ(t["audio"][1]["stream_id"], "0xa1");
  EXPECT_EQ(t["audio"][2]["stream_id"], "0xc2");
  EXPECT_EQ(t["subpictures"][0]["stream_id"], "0x20");
  EXPECT_EQ(t["palette"].size(), 16u);
  EXPECT_EQ(t["palette"][2], "52f05a");  // Y 82, Cr 240, Cb 90
  ASSERT_EQ(j["menus"].size(), 3u);
  EXPECT_EQ(j["menus"][0]["domain"], "vmgm");
  EXPECT_EQ(j["menus"][0]["entry"], "title");
  EXPECT_EQ(j["menus"][1]["entry"], "root");
}

TEST(InfoLsdvd, StreamIdsFollowTheChainsControlNotThePosition) {
  test::TempDir dir;
  std::string disc = test::RemappedSample(dir);
  json j = Info(disc);
  EXPECT_EQ(j["titles"][0]["audio"][1]["stream_id"], "0xa3");
  EXPECT_EQ(j["titles"][0]["audio"][1]["format"], "lpcm");
  ASSERT_TRUE(HaveLsdvd()) << "lsdvd missing (tools/install-deps.sh test)";
  std::vector<LsdvdTitle> lsdvd = RunLsdvd(disc);
  ASSERT_EQ(lsdvd.size(), 1u);
  EXPECT_EQ(lsdvd[0].audio[1].at("Stream id"), "0xa1");  // its guess from the position
  CompareWithLsdvd(disc, false);                         // every other field still agrees
}

// A disc authored at test time by ffmpeg and dvdauthor, other than the sample: PAL 16:9, two
// titles in one title set (3 and 2 chapters), two AC-3 streams, a first-play command, a title
// menu that title 2 calls.
std::string AuthoredDisc(const test::TempDir& dir) {
  for (const char* clip : {"t1.mpg", "t2.mpg"}) {
    test::MakeClip(dir, {.file = clip, .wide = true, .seconds = 4, .audio = {"ac3", "ac3"}});
  }
  test::MakeClip(dir, {.file = "menu.mpg", .wide = true, .seconds = 1, .audio = {"ac3"}});
  return test::AuthorDisc(dir, R"(<dvdauthor dest="out">
  <vmgm>
    <menus><video format="pal" aspect="16:9"/>
      <pgc entry="title"><vob file="menu.mpg"/><post>jump title 1;</post></pgc></menus>
    <fpc>jump title 2;</fpc>
  </vmgm>
  <titleset>
    <titles>
      <video format="pal" aspect="16:9" widescreen="nopanscan"/>
      <audio lang="en"/><audio lang="de"/>
      <pgc><vob file="t1.mpg" chapters="0,1,2"/><post>jump title 2;</post></pgc>
      <pgc><vob file="t2.mpg" chapters="0,2"/><post>call vmgm menu;</post></pgc>
    </titles>
  </titleset>
</dvdauthor>
)");
}

TEST(InfoLsdvd, DiscAuthoredByDvdauthorAgreesVerifiesCleanAndReadsTheSameFromItsImage) {
  for (const char* tool : {"ffmpeg", "dvdauthor", "lsdvd", "genisoimage"}) {
    ASSERT_TRUE(test::HaveTool(tool)) << tool << " missing (tools/install-deps.sh test)";
  }
  test::TempDir dir;
  std::string disc = AuthoredDisc(dir);
  CompareWithLsdvd(disc, true);
  json j = Info(disc);
  ASSERT_EQ(j["titles"].size(), 2u);
  EXPECT_EQ(j["titles"][1]["chapters"].size(), 2u);
  EXPECT_EQ(j["titles"][0]["video"]["aspect"], "16:9");
  std::string error;
  std::optional<Disc> d = LoadDisc(disc, error);
  ASSERT_TRUE(d) << error;
  VerifyResult r = VerifyDisc(*d);
  EXPECT_TRUE(r.findings.empty()) << VerifyText(r);
  std::string iso = dir.file("disc.iso");
  test::CaptureCommand("genisoimage -quiet -dvd-video -o " + test::ShellQuote(iso) + " " +
                       test::ShellQuote(disc) + " 2>&1");
  json from_iso = Info(iso);
  from_iso.erase("disc");
  j.erase("disc");
  EXPECT_EQ(from_iso, j);
}

// A title whose cells start a chapter, a program only and a chapter: two chapters (parts of
// title), the first over cells 1 and 2; three programs, which lsdvd lists as its chapters.
TEST(InfoLsdvd, ChaptersArePartsOfTitlesProgramsAreWhatLsdvdCallsChapters) {
  ASSERT_TRUE(test::HaveAuthoringTools() && HaveLsdvd()) << "tools/install-deps.sh test";
  std::string disc = test::NtscTwoTitleDisc();
  json t = Info(disc)["titles"][0];
  ASSERT_EQ(t["cells"].size(), 3u);
  ASSERT_EQ(t["chapters"].size(), 2u);
  EXPECT_EQ(t["chapters"][0]["first_cell"], 1);
  EXPECT_EQ(t["chapters"][1]["first_cell"], 3);
  EXPECT_EQ(Ms(t["chapters"][0]["length"]),
            Ms(t["cells"][0]["length"]) + Ms(t["cells"][1]["length"]));
  EXPECT_EQ(Ms(t["chapters"][1]["length"]), Ms(t["cells"][2]["length"]));
  ASSERT_EQ(t["programs"].size(), 3u);
  for (std::size_t p = 0; p < 3; ++p) {
    EXPECT_EQ(t["programs"][p]["first_cell"], p + 1);
    EXPECT_EQ(Ms(t["programs"][p]["length"]), Ms(t["cells"][p]["length"]));
  }
  CompareWithLsdvd(disc, true);
}

// Title 2's chain makes no sub-picture stream available (its VOB has none): like lsdvd, info
// lists none for it.
TEST(InfoLsdvd, StreamsTheChainDoesNotMakeAvailableAreNotListed) {
  ASSERT_TRUE(test::HaveAuthoringTools() && HaveLsdvd()) << "tools/install-deps.sh test";
  json j = Info(test::NtscTwoTitleDisc());
  ASSERT_EQ(j["titles"].size(), 2u);
  ASSERT_EQ(j["titles"][0]["subpictures"].size(), 1u);
  EXPECT_EQ(j["titles"][0]["subpictures"][0]["stream_id"], "0x20");
  EXPECT_EQ(j["titles"][1]["subpictures"].size(), 0u);
  EXPECT_EQ(j["titles"][1]["audio"].size(), 1u);
}

// The sample's chain with audio stream 2 made unavailable: streams 1 and 3 keep their
// declared numbers and ids (lsdvd numbers the two it lists 1 and 2).
TEST(InfoLsdvd, ListedStreamsKeepTheirDeclaredNumbers) {
  test::TempDir dir;
  std::string disc = test::CopySample(dir, "audio-2-off");
  // VTS_PGCIT at sector 2, its chain 16 bytes in, audio control 2 at 0x0E of the chain.
  for (const char* ifo : {"VTS_01_0.IFO", "VTS_01_0.BUP"}) {
    test::Patch(disc + "/VIDEO_TS/" + ifo, 2 * 2048 + 16 + 0x0E, {0x00, 0x00});
  }
  json audio = Info(disc)["titles"][0]["audio"];
  ASSERT_EQ(audio.size(), 2u);
  EXPECT_EQ(audio[0]["number"], 1);
  EXPECT_EQ(audio[0]["stream_id"], "0x80");
  EXPECT_EQ(audio[1]["number"], 3);
  EXPECT_EQ(audio[1]["stream_id"], "0xc2");
  ASSERT_TRUE(HaveLsdvd()) << "lsdvd missing (tools/install-deps.sh test)";
  EXPECT_EQ(RunLsdvd(disc).at(0).audio.size(), 2u);
}

// DTS stream 1 and a 16:9 sub-picture stream with a letterbox form; the title permits no
// pan-scan, so no pan-scan id is given.
TEST(InfoLsdvd, WideDiscWithDtsAndLetterboxSubpictures) {
  ASSERT_TRUE(test::HaveAuthoringTools() && HaveLsdvd()) << "tools/install-deps.sh test";
  std::string disc = test::WidePalDisc();
  json t = Info(disc)["titles"][0];
  ASSERT_EQ(t["audio"].size(), 2u);
  EXPECT_EQ(t["audio"][1]["format"], "dts");
  EXPECT_EQ(t["audio"][1]["stream_id"], "0x89");
  ASSERT_EQ(t["subpictures"].size(), 1u);
  EXPECT_EQ(t["subpictures"][0]["stream_id"], "0x24");
  EXPECT_EQ(t["subpictures"][0]["wide_id"], "0x24");
  EXPECT_EQ(t["subpictures"][0]["letterbox_id"], "0x31");
  EXPECT_FALSE(t["subpictures"][0].contains("pan_scan_id"));
  EXPECT_EQ(t["video"]["display_format"], "letterbox");
  CompareWithLsdvd(disc, false);  // lsdvd guesses the sub-picture's id from its position: 0x20
}

}  // namespace
}  // namespace tarvex
