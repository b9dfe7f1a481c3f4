#include "nav/nav_discs.h"

#include "disc/authored_disc.h"

namespace tarvex::test {

namespace {

// The clips every disc shares: one, two and three seconds of picture, menus of one to three
// buttons.
void MakeNavClips(const TempDir& dir) {
  for (int seconds = 1; seconds <= 3; ++seconds) {
    MakeClip(dir, {.file = "clip" + std::to_string(seconds) + ".mpg", .seconds = seconds});
  }
  for (int buttons = 1; buttons <= 3; ++buttons) {
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
                    .exit = Exit(dir)};
  }();
  return discs;
}

}  // namespace tarvex::test
