#include "nav/nav_discs.h"

#include <cstddef>
#include <vector>

#include "disc/authored_disc.h"

namespace tarvex::test {

namespace {

// The clips every disc shares: one, two and three seconds of picture, menus of two and three
// buttons.
void MakeNavClips(const TempDir& dir) {
  for (int seconds = 1; seconds <= 3; ++seconds) {
    MakeClip(dir, {.file = "clip" + std::to_string(seconds) + ".mpg", .seconds = seconds});
  }
  for (int buttons = 2; buttons <= 3; ++buttons) {
    MakeClip(dir,
             {.file = "menu" + std::to_string(buttons) + ".mpg", .seconds = 1, .buttons = buttons});
  }
}

// A one-cell title of clipN.mpg with the given post commands.
std::string Title(int seconds, const std::string& post) {
  return "<pgc><vob file=\"clip" + std::to_string(seconds) + ".mpg\"/><post>" + post +
         "</post></pgc>\n";
}

// A menu of a still that never ends with one button per command.
std::string Menu(const std::string& entry, const std::vector<std::string>& buttons) {
  std::string pgc = "<pgc" + (entry.empty() ? std::string() : " entry=\"" + entry + "\"") +
                    "><vob file=\"menu" + std::to_string(buttons.size()) + ".mpg\" pause=\"inf\"/>";
  for (std::size_t b = 0; b < buttons.size(); ++b) {
    pgc += "<button name=\"b" + std::to_string(b + 1) + "\">" + buttons[b] + "</button>";
  }
  return pgc + "</pgc>\n";
}

std::string Protection(const TempDir& dir) {
  std::string titles;
  for (int t = 1; t <= 12; ++t) {
    titles += t == 7    ? Title(2, "exit;")
              : t == 12 ? Title(3, "call vmgm menu 1;")
                        : Title(1, "call vmgm menu 1;");
  }
  return AuthorDisc(dir,
                    "<dvdauthor dest=\"protection\"><vmgm><fpc>jump vmgm menu 1;</fpc>"
                    "<menus><video format=\"pal\"/>\n" +
                        Menu("title", {"jump title 7;", "jump title 12;"}) +
                        "</menus></vmgm>\n<titleset><titles><video format=\"pal\"/>\n" + titles +
                        "</titles></titleset></dvdauthor>\n",
                    "protection");
}

std::string Registers(const TempDir& dir) {
  return AuthorDisc(dir,
                    R"(<dvdauthor dest="registers"><vmgm>
<fpc>g1 = 0; g2 = 0; jump title 1;</fpc>
<menus><video format="pal"/>)" +
                        Menu("title", {"if (g2 eq 6) jump title 2; jump title 3;",
                                       "g2 = 10; jump vmgm menu 1;"}) +
                        R"(</menus></vmgm>
<titleset><titles><video format="pal"/>
<pgc><pre>g2 += 2;</pre><vob file="clip1.mpg"/>
  <post>g1 += 1; if (g1 lt 3) jump title 1; call vmgm menu 1;</post></pgc>
)" + Title(1, "exit;") + Title(2, "exit;") +
                        "</titles></titleset></dvdauthor>\n",
                    "registers");
}

std::string ChainLoop(const TempDir& dir) {
  return AuthorDisc(dir,
                    R"(<dvdauthor dest="chain_loop"><vmgm>
<fpc>jump vmgm menu 1;</fpc>
<menus><video format="pal"/>)" +
                        Menu("title", {"jump vmgm menu 2;", "jump title 1;"}) +
                        R"(<pgc><pre>jump vmgm menu 3;</pre></pgc>
<pgc><pre>jump vmgm menu 2;</pre></pgc>
</menus></vmgm>
<titleset><titles><video format="pal"/>)" +
                        Title(1, "exit;") + "</titles></titleset></dvdauthor>\n",
                    "chain_loop");
}

std::string Resume(const TempDir& dir) {
  return AuthorDisc(dir,
                    R"(<dvdauthor dest="resume"><vmgm>
<fpc>jump title 1;</fpc>
<menus><video format="pal"/>)" +
                        Menu("title", {"resume;", "exit;"}) +
                        R"(</menus></vmgm>
<titleset><menus><video format="pal"/>)" +
                        Menu("root", {"resume;", "jump title 2;"}) +
                        R"(</menus>
<titles><video format="pal"/>
<pgc><vob file="clip3.mpg">
  <cell start="0" end="1" chapter="1"/>
  <cell start="1" end="2" chapter="1">call menu resume 3;</cell>
  <cell start="2" chapter="1"/></vob>
  <post>jump title 2;</post></pgc>
<pgc><vob file="clip2.mpg">
  <cell start="0" end="1" chapter="1">call vmgm menu 1 resume 2;</cell>
  <cell start="1" chapter="1"/></vob>
  <post>exit;</post></pgc>
</titles></titleset></dvdauthor>
)",
                    "resume");
}

// A title of two one-second chapters of clip2.mpg.
std::string TwoChapterTitle() {
  return R"(<pgc><vob file="clip2.mpg"><cell start="0" end="1" chapter="1"/>
  <cell start="1" chapter="1"/></vob><post>exit;</post></pgc>
)";
}

std::string TwoTitleSets(const TempDir& dir) {
  return AuthorDisc(
      dir,
      R"(<dvdauthor dest="two_title_sets"><vmgm>
<fpc>jump titleset 1 menu;</fpc>
<menus><video format="pal"/>
<pgc entry="title"><pre>if (g3 eq 2) jump titleset 2 menu; jump titleset 1 menu;</pre></pgc>
</menus></vmgm>
<titleset><menus><video format="pal"/>)" +
          Menu("root", {"jump title 1 chapter 2;", "jump menu 2;", "g3 = 2; jump vmgm menu 1;"}) +
          Menu("ptt", {"jump title 1 chapter 1;", "jump title 1 chapter 2;"}) +
          "</menus><titles><video format=\"pal\"/>" + TwoChapterTitle() +
          R"(</titles></titleset>
<titleset><menus><video format="pal"/>)" +
          Menu("root", {"jump title 1;", "jump menu 2;"}) +
          Menu("ptt", {"jump title 2 chapter 2;", "jump title 1;"}) +
          "</menus><titles><video format=\"pal\"/>" + Title(1, "exit;") + TwoChapterTitle() +
          "</titles></titleset></dvdauthor>\n",
      "two_title_sets");
}

std::string Exit(const TempDir& dir) {
  return AuthorDisc(dir,
                    R"(<dvdauthor dest="exit"><vmgm>
<fpc>jump vmgm menu 1;</fpc>
<menus><video format="pal"/>)" +
                        Menu("title", {"jump title 1;", "exit;"}) +
                        R"(</menus></vmgm>
<titleset><titles><video format="pal"/>
<pgc><vob file="clip1.mpg" pause="inf"/><post>exit;</post></pgc>
</titles></titleset></dvdauthor>
)",
                    "exit");
}

// Makes button `button` of every navigation pack with highlight information in vob an
// auto-action button: its BTNI's auto_action_mode (the top two bits of its fourth byte) becomes 1.
void SetAutoAction(const std::string& vob, int button) {
  constexpr std::size_t kPack = 2048;
  constexpr std::size_t kPci = 0x2D;                 // PCI data: after the private stream 2 header
  constexpr std::size_t kHliStatus = kPci + 0x60;    // HL_GI's HLI_SS (2 bytes)
  constexpr std::size_t kButtons = kHliStatus + 46;  // BTNIT: after HL_GI (22) and BTN_COLIT (24)
  constexpr std::size_t kButtonSize = 18;
  std::vector<std::uint8_t> bytes = ReadFileBytes(vob);
  for (std::size_t at = 0; at + kPack <= bytes.size(); at += kPack) {
    bool nav_pack = bytes[at + 0x26] == 0 && bytes[at + 0x27] == 0 && bytes[at + 0x28] == 1 &&
                    bytes[at + 0x29] == 0xBF && bytes[at + 0x2C] == 0;  // PCI sub-stream
    if (!nav_pack || (bytes[at + kHliStatus] | bytes[at + kHliStatus + 1]) == 0) continue;
    std::uint8_t& mode = bytes[at + kButtons + kButtonSize * (button - 1) + 3];
    mode = static_cast<std::uint8_t>((mode & 0x3F) | 0x40);
  }
  WriteFileBytes(vob, bytes);
}

std::string AutoAction(const TempDir& dir) {
  std::string disc = AuthorDisc(dir,
                                R"(<dvdauthor dest="auto_action"><vmgm>
<fpc>jump vmgm menu 1;</fpc>
<menus><video format="pal"/>)" + Menu("title", {"jump title 1;", "jump title 2;", "exit;"}) +
                                    R"(</menus></vmgm>
<titleset><titles><video format="pal"/>)" +
                                    Title(1, "exit;") + Title(2, "exit;") +
                                    "</titles></titleset></dvdauthor>\n",
                                "auto_action");
  if (!disc.empty()) SetAutoAction(disc + "/VIDEO_TS/VIDEO_TS.VOB", 2);
  return disc;
}

}  // namespace

const NavDiscs& AuthoredNavDiscs() {
  static TempDir dir;
  static const NavDiscs discs = [] {
    MakeNavClips(dir);
    return NavDiscs{.protection = Protection(dir),
                    .registers = Registers(dir),
                    .chain_loop = ChainLoop(dir),
                    .resume = Resume(dir),
                    .two_title_sets = TwoTitleSets(dir),
                    .exit = Exit(dir),
                    .auto_action = AutoAction(dir)};
  }();
  return discs;
}

}  // namespace tarvex::test
