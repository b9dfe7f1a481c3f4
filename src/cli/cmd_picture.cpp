// subpictures, menus, bitrate: what a disc shows, as pictures and charts.
#include <cstdio>
#include <memory>
#include <string>

#include "cli/cli.h"
#include "cli/disc_command.h"
#include "picture/bitrate.h"
#include "picture/menus.h"
#include "picture/subpictures.h"
#include "picture/vobsub.h"

namespace tarvex::cli {

namespace {

void Fail(const char* command, const std::string& message, Session& session) {
  std::fprintf(stderr, "tarvex-cli %s: %s\n", command, message.c_str());
  session.exit_status = 1;
}

struct SubpictureOptions {
  std::string disc, png, vobsub;
  picture::SubpictureRequest request;
  bool json = false;
};

void RunSubpictures(const SubpictureOptions& o, Session& session) {
  std::optional<Disc> disc = LoadDiscForCommand("subpictures", o.disc, session);
  if (!disc) return;
  std::string error;
  std::optional<picture::SubpictureTrack> track = picture::ReadSubpictures(*disc, o.request, error);
  if (!track) return Fail("subpictures", error, session);
  if (!o.png.empty() && !picture::WriteSubpicturePngs(*track, o.png, error))
    return Fail("subpictures", error, session);
  if (!o.vobsub.empty() && !picture::WriteVobsub(*track, o.vobsub, error))
    return Fail("subpictures", error, session);
  if (o.json) {
    PrintOut(picture::SubpictureJson(*track));
  } else {
    PrintOut(picture::SubpictureText(*track));
  }
  session.exit_status = 0;
}

void AddSubpictures(CLI::App& app, Session& session) {
  auto o = std::make_shared<SubpictureOptions>();
  CLI::App* cmd = app.add_subcommand(
      "subpictures",
      "The sub-picture units of a title's stream, in the colours its chain gives them");
  cmd->footer(
      "Follows the title's cells in play order and takes the units of the sub-picture stream\n"
      "--stream (the declared number, as info lists it) through the id the title's chain\n"
      "gives it; for a 16:9 title --display picks the form (wide, letterbox or pan-scan).\n"
      "Each unit is decoded and drawn in the chain's palette: a pixel of colour i gets the\n"
      "palette entry colors[i], converted from Y Cr Cb (BT.601) to RGB, and alpha 17 x\n"
      "contrast[i]. Times are title times: the cell times of the cells before the unit's cell,\n"
      "plus (the unit's PTS - its cell's first VOBU_S_PTM) / 90 kHz, plus the start or stop\n"
      "delay x 1024 / 90 kHz.\n"
      "\n"
      "--png DIR writes DIR/0001.png, DIR/0002.png, ... (RGBA, the size of each unit's display\n"
      "area) and DIR/index.json; --json prints that index: {\"disc\", \"title\", \"stream\",\n"
      "\"stream_id\", \"palette\", \"units\": [{\"index\", \"start\", \"end\", \"forced\", \"x\",\n"
      "\"y\", \"width\", \"height\", \"colors\", \"contrast\", \"file\"}]}. --vobsub BASE writes\n"
      "BASE.idx and BASE.sub with the chain's palette.\n"
      "\n"
      "Exit status: 0 when the units were read, 1 when the disc cannot be read, the title does\n"
      "not exist, its chain does not make the stream available, or a file cannot be written,\n"
      "2 for a usage error.");
  cmd->add_option("DISC", o->disc, kDiscHelp)->required()->type_name("PATH");
  cmd->add_option("--title", o->request.title, "The title (as info numbers them)")
      ->required()
      ->type_name("N")
      ->check(CLI::Range(1u, 99u));
  cmd->add_option("--stream", o->request.stream,
                  "The declared sub-picture stream, 1-32 (default 1)")
      ->type_name("K")
      ->check(CLI::Range(1u, 32u));
  cmd->add_option("--display", o->request.display, "16:9 titles: the form to show (default wide)")
      ->type_name("FORM")
      ->check(CLI::IsMember({"wide", "letterbox", "pan-scan"}));
  cmd->add_option("--png", o->png, "Write one RGBA PNG per unit and index.json into DIR")
      ->type_name("DIR");
  cmd->add_option("--vobsub", o->vobsub, "Write BASE.idx and BASE.sub")->type_name("BASE");
  cmd->add_flag("--json", o->json, "Print the index as JSON");
  cmd->callback([&session, o] { session.action = [&session, o] { RunSubpictures(*o, session); }; });
}

struct BitrateOptions {
  std::string disc, svg;
  std::uint32_t title = 0;
  double interval = 1;
  bool json = false;
};

void RunBitrate(const BitrateOptions& o, Session& session) {
  std::optional<Disc> disc = LoadDiscForCommand("bitrate", o.disc, session);
  if (!disc) return;
  std::string error;
  std::optional<picture::BitrateReport> report =
      picture::MeasureBitrate(*disc, o.title, o.interval, error);
  if (!report) return Fail("bitrate", error, session);
  if (!o.svg.empty()) {
    if (!WriteTextFile(o.svg, picture::BitrateSvg(*report))) {
      return Fail("bitrate", o.svg + ": cannot be written", session);
    }
  }
  PrintOut(o.json ? picture::BitrateJson(*report) : picture::BitrateText(*report));
  session.exit_status = 0;
}

void AddBitrate(CLI::App& app, Session& session) {
  auto o = std::make_shared<BitrateOptions>();
  CLI::App* cmd = app.add_subcommand(
      "bitrate", "Pack bytes per stream per interval of title time, against the DVD-Video limits");
  cmd->footer(
      "Reads the title's cells in play order across its VOB files. A pack's title time is\n"
      "(its SCR - the SCR of its cell's first pack) / 27 MHz plus the cell times of the\n"
      "title's cells before it; the pack counts 2048 bytes in the interval [k x S, (k+1) x S)\n"
      "that holds it, under its first PES packet's stream: video, the stream id (0x80, 0xc0,\n"
      "0x20, ...), nav or padding. Rates are bytes x 8 / S / 10^6 Mbit/s; an interval is over\n"
      "a limit when strictly above 10.08 Mbit/s (mux) or 9.8 Mbit/s (video).\n"
      "\n"
      "--json: {\"disc\", \"title\", \"interval\", \"intervals\": [{\"start\", \"bytes\",\n"
      "\"mux_mbps\", \"video_mbps\"}], \"over_limit\": [{\"start\", \"kind\", \"mbps\"}]}.\n"
      "--svg FILE draws the mux and video rates over title time with both limits and the\n"
      "chapter starts.\n"
      "\n"
      "Exit status: 0 when the title was measured, 1 when the disc or a VOB cannot be read, the\n"
      "title does not exist or the SVG cannot be written, 2 for a usage error.");
  cmd->add_option("DISC", o->disc, kDiscHelp)->required()->type_name("PATH");
  cmd->add_option("--title", o->title, "The title (as info numbers them)")
      ->required()
      ->type_name("N")
      ->check(CLI::Range(1u, 99u));
  cmd->add_option("--interval", o->interval, "Seconds per interval (default 1)")
      ->type_name("S")
      ->check(CLI::Range(0.001, 86400.0));
  cmd->add_flag("--json", o->json, "Print JSON instead of a table");
  cmd->add_option("--svg", o->svg, "Also draw the rates as an SVG chart into FILE")
      ->type_name("FILE");
  cmd->callback([&session, o] { session.action = [&session, o] { RunBitrate(*o, session); }; });
}

struct MenuOptions {
  std::string disc, png;
  bool json = false;
};

void RunMenus(const MenuOptions& o, Session& session) {
  std::optional<Disc> disc = LoadDiscForCommand("menus", o.disc, session);
  if (!disc) return;
  std::string error;
  std::optional<std::vector<picture::MenuPicture>> menus = picture::ReadMenus(*disc, error);
  if (!menus) return Fail("menus", error, session);
  if (!o.png.empty() && !picture::WriteMenuPngs(*menus, o.png, error))
    return Fail("menus", error, session);
  PrintOut(o.json ? picture::MenusJson(*disc, *menus) : picture::MenusText(*disc, *menus));
  session.exit_status = 0;
}

void AddMenus(CLI::App& app, Session& session) {
  auto o = std::make_shared<MenuOptions>();
  CLI::App* cmd = app.add_subcommand(
      "menus", "Every menu as a picture, with each button selected and activated");
  cmd->footer(
      "For each menu chain (video manager and title sets, every language unit) whose cells\n"
      "hold buttons or a still: the cell's first picture, decoded with libavcodec, under its\n"
      "sub-picture in the chain's colours (the stream the menu plays for its aspect; a 16:9\n"
      "menu uses the buttons of its wide display). --png DIR writes\n"
      "DIR/{domain}-{title_set}-{language}-{pgc}.png (RGB) and, per button n,\n"
      "...-b{n}-selected.png and ...-b{n}-activated.png with the button's rectangle in its\n"
      "colour group's selected or activated colours. A unit without a language code is\n"
      "named xx.\n"
      "\n"
      "--json: [{\"domain\", \"title_set\", \"language\", \"pgc\", \"cell\", \"file\", \"width\",\n"
      "\"height\", \"buttons\": [{\"number\", \"x0\", \"y0\", \"x1\", \"y1\", \"color_group\",\n"
      "\"auto_action\", \"up\", \"down\", \"left\", \"right\", \"command\", \"target\"}]}];\n"
      "rectangles are inclusive; \"target\" is where the command always goes, else null.\n"
      "\n"
      "Exit status: 0 when the menus were read, 1 when the disc or a menu VOB cannot be read or\n"
      "a picture cannot be written, 2 for a usage error.");
  cmd->add_option("DISC", o->disc, kDiscHelp)->required()->type_name("PATH");
  cmd->add_option("--png", o->png, "Write each menu and each button state as PNG into DIR")
      ->type_name("DIR");
  cmd->add_flag("--json", o->json, "Print JSON instead of a list");
  cmd->callback([&session, o] { session.action = [&session, o] { RunMenus(*o, session); }; });
}

}  // namespace

void AddPictureCommands(CLI::App& app, Session& session) {
  AddSubpictures(app, session);
  AddBitrate(app, session);
  AddMenus(app, session);
}

}  // namespace tarvex::cli
