#include "picture/picture_discs.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "disc/authored_disc.h"
#include "picture/ffmpeg_dvdsub.h"

namespace tarvex::test {

const char* const kPictureDiscPalette[16] = {
    "000000", "ff0000", "0000ff", "ffffff", "ffff00", "00ff00", "808080", "00ffff",
    "ff00ff", "804000", "408020", "202080", "c0c0c0", "ff8000", "80ff80", "101010"};

namespace {

std::string Run(const TempDir& dir, const std::string& command) {
  return CaptureCommand("cd " + ShellQuote(dir.path()) + " && { " + command + "; } 2>&1");
}

void Spumux(const TempDir& dir, int stream, const std::string& spus,
            const std::string& clip = "clip.mpg") {
  std::string xml = "<subpictures><stream>" + spus + "</stream></subpictures>\n";
  std::string name = "s" + std::to_string(stream) + ".xml";
  WriteFileBytes(dir.file(name), std::vector<std::uint8_t>(xml.begin(), xml.end()));
  std::string out =
      Run(dir, "spumux -s " + std::to_string(stream) + " " + name + " <" + clip + " >spumux.mpg");
  ASSERT_GT(std::filesystem::file_size(dir.file("spumux.mpg")), 0u) << out;
  std::filesystem::rename(dir.file("spumux.mpg"), dir.file(clip));
}

std::string Author(const TempDir& dir) {
  MakeClip(dir, {.file = "clip.mpg", .pal = false, .seconds = 4, .audio = {"ac3"}});
  WriteBoxesPng(dir.file("a.png"), 720, 480,
                {{100, 300, 120, 60, 255, 0, 0, 255},
                 {260, 300, 120, 60, 0, 0, 255, 128},
                 {100, 380, 400, 20, 255, 255, 255, 255}});
  WriteBoxesPng(dir.file("b.png"), 720, 480, {{300, 100, 80, 50, 255, 255, 0, 255}});
  WriteBoxesPng(dir.file("c.png"), 720, 480,
                {{200, 200, 200, 100, 0, 0, 0, 255}, {210, 210, 180, 80, 0, 255, 0, 255}});
  Spumux(dir, 0,
         "<spu start=\"00:00:00.50\" end=\"00:00:01.50\" image=\"a.png\"/>"
         "<spu start=\"00:00:02.00\" end=\"00:00:03.00\" image=\"b.png\" force=\"yes\"/>");
  Spumux(dir, 1, "<spu start=\"00:00:01.00\" end=\"00:00:02.50\" image=\"c.png\"/>");
  std::string palette;
  for (const char* c : kPictureDiscPalette) palette += std::string(c) + "\n";
  WriteFileBytes(dir.file("pictures.rgb"),
                 std::vector<std::uint8_t>(palette.begin(), palette.end()));
  return AuthorDisc(dir, R"(<dvdauthor dest="out">
  <vmgm><menus><video format="ntsc"/></menus></vmgm>
  <titleset><titles>
    <video format="ntsc" aspect="4:3"/><audio lang="en"/>
    <subpicture lang="en"/><subpicture lang="fr"/>
    <pgc palette="pictures.rgb"><vob file="clip.mpg"/></pgc>
  </titles></titleset>
</dvdauthor>
)");
}

std::string AuthorWide(const TempDir& dir) {
  MakeClip(dir, {.file = "clip.mpg", .wide = true, .seconds = 2, .audio = {"ac3"}});
  WriteBoxesPng(dir.file("wide.png"), 720, 576,
                {{100, 400, 520, 60, 255, 255, 255, 255}, {110, 410, 500, 40, 0, 0, 255, 255}});
  WriteBoxesPng(dir.file("letterbox.png"), 720, 576,
                {{100, 450, 520, 40, 255, 255, 0, 255}, {110, 460, 100, 20, 255, 0, 0, 160}});
  Spumux(dir, 0, "<spu start=\"00:00:00.50\" end=\"00:00:01.50\" image=\"wide.png\"/>");
  Spumux(dir, 1, "<spu start=\"00:00:00.50\" end=\"00:00:01.50\" image=\"letterbox.png\"/>");
  return AuthorDisc(dir, R"(<dvdauthor dest="out">
  <vmgm><menus><video format="pal" aspect="16:9"/></menus></vmgm>
  <titleset><titles>
    <video format="pal" aspect="16:9" widescreen="nopanscan"/><audio lang="en"/>
    <subpicture lang="de"><stream mode="widescreen" id="0"/><stream mode="letterbox" id="1"/></subpicture>
    <pgc><vob file="clip.mpg"/></pgc>
  </titles></titleset>
</dvdauthor>
)");
}

std::string AuthorMenu(const TempDir& dir) {
  MakeClip(dir, {.file = "clip.mpg", .seconds = 1});
  MakeClip(dir, {.file = "menu.mpg", .seconds = 1});
  WriteBoxesPng(dir.file("image.png"), 720, 576,
                {{100, 100, 200, 60, 200, 200, 200, 255}, {100, 200, 200, 60, 200, 200, 200, 255}});
  // The highlight and select pictures: a frame round each box, and its inside.
  std::vector<Box> highlight, select;
  for (int y : {100, 200}) {
    highlight.push_back({96, y - 4, 208, 68, 255, 255, 0, 255});
    highlight.push_back({100, y, 200, 60, 0, 0, 0, 0});
    select.push_back({96, y - 4, 208, 68, 255, 0, 0, 255});
    select.push_back({100, y, 200, 60, 255, 0, 0, 96});
  }
  WriteBoxesPng(dir.file("highlight.png"), 720, 576, highlight);
  WriteBoxesPng(dir.file("select.png"), 720, 576, select);
  std::string xml =
      "<subpictures><stream><spu start=\"00:00:00.00\" force=\"yes\" image=\"image.png\" "
      "highlight=\"highlight.png\" select=\"select.png\">"
      "<button name=\"b1\" x0=\"96\" y0=\"96\" x1=\"304\" y1=\"164\" down=\"b2\"/>"
      "<button name=\"b2\" x0=\"96\" y0=\"196\" x1=\"304\" y1=\"264\" up=\"b1\"/>"
      "</spu></stream></subpictures>\n";
  WriteFileBytes(dir.file("menu.xml"), std::vector<std::uint8_t>(xml.begin(), xml.end()));
  std::string out = Run(dir, "spumux -s 0 menu.xml <menu.mpg >menu2.mpg");
  EXPECT_GT(std::filesystem::file_size(dir.file("menu2.mpg")), 0u) << out;
  return AuthorDisc(dir, R"(<dvdauthor dest="out">
  <vmgm><fpc>jump vmgm menu 1;</fpc><menus><video format="pal"/>
    <pgc entry="title"><vob file="menu2.mpg" pause="inf"/>
      <button name="b1">jump title 1;</button><button name="b2">exit;</button></pgc>
  </menus></vmgm>
  <titleset><titles><video format="pal"/><pgc><vob file="clip.mpg"/><post>exit;</post></pgc></titles></titleset>
</dvdauthor>
)");
}

std::string AuthorWideMenu(const TempDir& dir) {
  MakeClip(dir, {.file = "menu.mpg", .wide = true, .seconds = 1});
  MakeClip(dir, {.file = "clip.mpg", .seconds = 1});
  WriteBoxesPng(dir.file("w.png"), 720, 576, {{100, 100, 200, 60, 200, 200, 200, 255}});
  WriteBoxesPng(dir.file("wh.png"), 720, 576, {{100, 100, 200, 60, 255, 255, 0, 255}});
  WriteBoxesPng(dir.file("l.png"), 720, 576, {{100, 300, 200, 40, 200, 200, 200, 255}});
  WriteBoxesPng(dir.file("lh.png"), 720, 576, {{100, 300, 200, 40, 255, 0, 0, 255}});
  auto stream = [](const char* image, const char* lit, const char* box) {
    return std::string("<spu start=\"00:00:00.00\" force=\"yes\" image=\"") + image +
           "\" highlight=\"" + lit + "\" select=\"" + lit + "\"><button name=\"b1\" " + box +
           "/></spu>";
  };
  Spumux(dir, 0, stream("w.png", "wh.png", "x0=\"100\" y0=\"100\" x1=\"300\" y1=\"160\""),
         "menu.mpg");
  Spumux(dir, 1, stream("l.png", "lh.png", "x0=\"100\" y0=\"300\" x1=\"300\" y1=\"340\""),
         "menu.mpg");
  return AuthorDisc(dir, R"(<dvdauthor dest="out"><vmgm><fpc>jump vmgm menu 1;</fpc><menus>
  <video format="pal" aspect="16:9" widescreen="nopanscan"/>
  <subpicture><stream mode="widescreen" id="0"/><stream mode="letterbox" id="1"/></subpicture>
  <pgc entry="title"><vob file="menu.mpg" pause="inf"/><button name="b1">jump title 1;</button></pgc>
</menus></vmgm>
<titleset><titles><video format="pal"/><pgc><vob file="clip.mpg"/></pgc></titles></titleset></dvdauthor>
)");
}

}  // namespace

const std::string& WideMenuDisc() {
  static TempDir dir;
  static const std::string disc = AuthorWideMenu(dir);
  return disc;
}

const std::string& MenuPictureDisc() {
  static TempDir dir;
  static const std::string disc = AuthorMenu(dir);
  return disc;
}

const std::string& WidePictureDisc() {
  static TempDir dir;
  static const std::string disc = AuthorWide(dir);
  return disc;
}

const std::string& PictureDisc() {
  static TempDir dir;
  static const std::string disc = Author(dir);
  return disc;
}

}  // namespace tarvex::test
