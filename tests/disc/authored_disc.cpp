#include "disc/authored_disc.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>

namespace tarvex::test {

namespace {

// Runs command in the test's folder; returns what it writes to standard output and standard
// error (a command may send its standard output to a file of its own).
std::string Run(const TempDir& dir, const std::string& command) {
  return CaptureCommand("cd " + ShellQuote(dir.path()) + " && { " + command + "; } 2>&1");
}

// A transparent picture with one opaque box, the image of a sub-picture.
std::string SubpictureImage(const TempDir& dir, bool pal) {
  std::string name = pal ? "box-pal.png" : "box-ntsc.png";
  if (!std::filesystem::exists(dir.file(name))) {
    Run(dir, std::string("ffmpeg -v error -y -f lavfi -i color=c=black@0.0:s=720x") +
                 (pal ? "576" : "480") +
                 ",format=rgba -vf drawbox=x=200:y=300:w=320:h=40:color=white@1.0:t=fill "
                 "-frames:v 1 " +
                 name);
  }
  return name;
}

void AddSubpicture(const TempDir& dir, const ClipSpec& clip, int stream) {
  std::string xml = dir.file(clip.file + ".spu.xml");
  std::string text =
      "<subpictures><stream><spu start=\"00:00:00.50\" end=\"00:00:01.50\" image=\"" +
      SubpictureImage(dir, clip.pal) + "\"/></stream></subpictures>\n";
  WriteFileBytes(xml, std::vector<std::uint8_t>(text.begin(), text.end()));
  std::string tmp = clip.file + ".spu.mpg";
  Run(dir, "spumux -s " + std::to_string(stream) + " " + ShellQuote(clip.file + ".spu.xml") + " <" +
               ShellQuote(clip.file) + " >" + ShellQuote(tmp));
  std::filesystem::rename(dir.file(tmp), dir.file(clip.file));
}

// A transparent picture with one opaque box per button, one above the other; boxes holds the
// spumux button elements that match them.
std::string ButtonImage(const TempDir& dir, const ClipSpec& clip, std::string& boxes) {
  std::string name =
      "buttons-" + std::to_string(clip.buttons) + (clip.pal ? "-pal.png" : "-ntsc.png");
  std::string filters;
  for (int b = 1; b <= clip.buttons; ++b) {
    std::string y = std::to_string(60 * b), y1 = std::to_string(60 * b + 40);
    filters += (b > 1 ? "," : "") + std::string("drawbox=x=100:y=") + y +
               ":w=200:h=40:color=white@1.0:t=fill";
    boxes += "<button name=\"b" + std::to_string(b) + "\" x0=\"100\" y0=\"" + y +
             "\" x1=\"300\" y1=\"" + y1 + "\"/>";
  }
  if (!std::filesystem::exists(dir.file(name))) {
    Run(dir, std::string("ffmpeg -v error -y -f lavfi -i color=c=black@0.0:s=720x") +
                 (clip.pal ? "576" : "480") + ",format=rgba -vf " + filters + " -frames:v 1 " +
                 name);
  }
  return name;
}

void AddButtons(const TempDir& dir, const ClipSpec& clip) {
  std::string boxes;
  std::string image = ButtonImage(dir, clip, boxes);
  std::string text = "<subpictures><stream><spu start=\"00:00:00.00\" force=\"yes\" image=\"" +
                     image + "\" highlight=\"" + image + "\" select=\"" + image + "\">" + boxes +
                     "</spu></stream></subpictures>\n";
  std::string xml = clip.file + ".buttons.xml";
  WriteFileBytes(dir.file(xml), std::vector<std::uint8_t>(text.begin(), text.end()));
  std::string tmp = clip.file + ".buttons.mpg";
  std::string output = Run(dir, "spumux -s 0 " + ShellQuote(xml) + " <" + ShellQuote(clip.file) +
                                    " >" + ShellQuote(tmp));
  ASSERT_GT(std::filesystem::file_size(dir.file(tmp)), 0u) << output;
  std::filesystem::rename(dir.file(tmp), dir.file(clip.file));
}

}  // namespace

void MakeClip(const TempDir& dir, const ClipSpec& clip) {
  std::string seconds = std::to_string(clip.seconds);
  std::string command = std::string("ffmpeg -v error -y -f lavfi -i testsrc=size=720x") +
                        (clip.pal ? "576:rate=25" : "480:rate=30000/1001") + ":duration=" + seconds;
  std::string maps = " -map 0:v", codecs;
  for (std::size_t i = 0; i < clip.audio.size(); ++i) {
    std::string n = std::to_string(i);
    command += " -f lavfi -i sine=frequency=" + std::to_string(300 + 100 * i) +
               ":sample_rate=48000:duration=" + seconds;
    maps += " -map " + std::to_string(i + 1) + ":a";
    int channels = i < clip.channels.size() ? clip.channels[i] : 2;
    codecs += " -c:a:" + n + " " + clip.audio[i] + " -ac:a:" + n + " " + std::to_string(channels);
    if (clip.audio[i] == "pcm_dvd") codecs += " -sample_fmt:a:" + n + " s16";
    if (clip.audio[i] == "dca") codecs += " -strict -2";
  }
  command += maps + " -c:v mpeg2video -b:v 3M -maxrate 8M -bufsize 1835k -pix_fmt yuv420p -g " +
             (clip.pal ? "12" : "15") + " -aspect " + (clip.wide ? "16:9" : "4:3") + codecs +
             " -ar 48000 -muxrate 10080000 -packetsize 2048 -f dvd " + ShellQuote(clip.file);
  std::string output = Run(dir, command);
  ASSERT_TRUE(std::filesystem::exists(dir.file(clip.file))) << command << "\n" << output;
  if (!clip.renumber.empty()) RenumberStreams(dir.file(clip.file), clip.renumber);
  for (int stream : clip.subpictures) AddSubpicture(dir, clip, stream);
  if (clip.buttons > 0) AddButtons(dir, clip);
}

std::size_t RenumberStreams(const std::string& path,
                            const std::vector<std::pair<std::uint8_t, std::uint8_t>>& renumber) {
  std::map<std::uint8_t, std::uint8_t> ids(renumber.begin(), renumber.end());
  std::vector<std::uint8_t> bytes = ReadFileBytes(path);
  std::size_t changed = 0;
  for (std::size_t r = 0; r + 2048 <= bytes.size(); r += 2048) {
    // The packets of the pack after its 14-byte header (a system header is one of them).
    for (std::size_t at = r + 14; at + 9 < r + 2048;) {
      if (bytes[at] != 0 || bytes[at + 1] != 0 || bytes[at + 2] != 1) break;
      std::uint8_t& id = bytes[at + 3];
      std::size_t length = (std::size_t{bytes[at + 4]} << 8) | bytes[at + 5];
      std::uint8_t* target = &id;
      if (id == 0xBD) target = &bytes[at + 9 + bytes[at + 8]];  // the sub-stream id
      auto it = ids.find(*target);
      if (it != ids.end() && (id == 0xBD) == (*target < 0xC0)) {
        *target = it->second;
        ++changed;
      }
      at += 6 + length;
    }
  }
  WriteFileBytes(path, bytes);
  return changed;
}

std::string AuthorDisc(const TempDir& dir, const std::string& xml, const std::string& dest) {
  std::string control = dest + ".xml";
  WriteFileBytes(dir.file(control), std::vector<std::uint8_t>(xml.begin(), xml.end()));
  std::string output = Run(dir, "dvdauthor -x " + ShellQuote(control));
  bool made = std::filesystem::exists(dir.file(dest + "/VIDEO_TS/VIDEO_TS.IFO"));
  EXPECT_TRUE(made) << output;
  return made ? dir.file(dest) : std::string();
}

const std::string& WidePalDisc() {
  static TempDir dir;
  static const std::string disc = [] {
    MakeClip(dir, {.file = "wide.mpg",
                   .wide = true,
                   .audio = {"ac3", "dca"},
                   .channels = {2, 6},
                   .renumber = {{0x88, 0x89}},
                   .subpictures = {4, 17}});
    return AuthorDisc(dir, R"(<dvdauthor dest="out">
  <vmgm><menus><video format="pal" aspect="16:9"/></menus></vmgm>
  <titleset><titles>
    <video format="pal" aspect="16:9" widescreen="nopanscan"/>
    <audio lang="en"/><audio lang="nl"/>
    <subpicture lang="en"><stream mode="widescreen" id="4"/><stream mode="letterbox" id="17"/></subpicture>
    <pgc><vob file="wide.mpg"/></pgc>
  </titles></titleset>
</dvdauthor>
)");
  }();
  return disc;
}

const std::string& NtscTwoTitleDisc() {
  static TempDir dir;
  static const std::string disc = [] {
    MakeClip(dir,
             {.file = "a.mpg", .pal = false, .seconds = 3, .audio = {"ac3"}, .subpictures = {0}});
    MakeClip(dir, {.file = "b.mpg", .pal = false, .audio = {"ac3"}});
    MakeClip(dir, {.file = "menu.mpg", .pal = false, .seconds = 1, .audio = {"mp2"}});
    return AuthorDisc(dir, R"(<dvdauthor dest="out">
  <vmgm>
    <menus lang="en"><video format="ntsc" aspect="4:3"/>
      <pgc entry="title"><vob file="menu.mpg"/><post>jump title 1;</post></pgc></menus>
    <menus lang="fr">
      <pgc entry="title"><vob file="menu.mpg"/><post>jump title 2;</post></pgc></menus>
  </vmgm>
  <titleset><titles>
    <video format="ntsc" aspect="4:3"/><audio lang="en"/><subpicture lang="de"/>
    <pgc><vob file="a.mpg">
      <cell start="0" end="1" chapter="1"/><cell start="1" end="2" program="1"/><cell start="2" chapter="1"/>
    </vob></pgc>
    <pgc><vob file="b.mpg"/></pgc>
  </titles></titleset>
</dvdauthor>
)");
  }();
  return disc;
}

bool HaveAuthoringTools() {
  return HaveTool("ffmpeg") && HaveTool("spumux") && HaveTool("dvdauthor");
}

}  // namespace tarvex::test
