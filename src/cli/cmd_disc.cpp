// info, verify: the whole-disc commands.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "archive/damage.h"
#include "archive/mapfile.h"
#include "archive/rip.h"
#include "cli/cli.h"
#include "cli/disc_command.h"
#include "disc/info.h"
#include "disc/verify.h"
#include "nav/analysis.h"
#include "platform/format.h"

namespace tarvex::cli {

namespace {

void AddInfo(CLI::App& app, Session& session) {
  struct Options {
    std::string disc;
    bool json = false;
  };
  auto o = std::make_shared<Options>();
  CLI::App* cmd = app.add_subcommand("info", "Summarise a whole disc: titles, chapters, streams");
  cmd->footer(
      "Reads the disc's IFO files and prints what is on it: every title with its title set,\n"
      "length, angles, chapters (with their first cells), cells (with their sectors and\n"
      "VOB and cell ids), video, audio and sub-picture streams and sub-picture palette, then\n"
      "the menus. Lengths come from the playback times, frames counted at 29.97 or 25\n"
      "frames per second, to the millisecond. Each title also shows the bytes a rip of\n"
      "its angle 1 writes.\n"
      "\n"
      "A stream's id is the one it really plays through: the program chain's audio and\n"
      "sub-picture stream control maps each declared stream to a stream number (for a 16:9\n"
      "title the wide-screen number of the sub-picture control), not its position.\n"
      "\n"
      "A language code that is not two ASCII letters names no language: -- (null in JSON).\n"
      "A folder of title sets without VIDEO_TS.IFO is read too: no video manager (\"vmg\":\n"
      "null) and each title set's titles, numbered within their set.\n"
      "\n"
      "With --json the same as one JSON object (RFC 8259): {\"disc\", \"vmg\",\n"
      "\"titles\": [{\"number\", \"title_set\", \"title_in_set\", \"length\", \"angles\", "
      "\"video\",\n"
      "\"audio\", \"subpictures\", \"chapters\", \"cells\", \"palette\", \"reachable\", ...}],\n"
      "\"longest_title\", \"first_title\", \"menus\"}. \"first_title\" is the first title\n"
      "played from first play with the default keys (see play), \"reachable\" whether any\n"
      "path through the commands and buttons reaches the title (see graph).\n"
      "Beside each \"length\" of titles, chapters, programs and cells, \"duration\" is the\n"
      "time the pictures take: the cells' playback times read as frames of 1001/30000 s\n"
      "(30 fps) or 1/25 s, summed exactly and rounded to the millisecond (an angle block\n"
      "counts angle 1).\n"
      "\"disc\" is DISC as given; everything else is the same for a folder and an ISO image\n"
      "of it.\n"
      "\n"
      "Exit status: 0 when the disc was read, 1 when it cannot be read (the reason on\n"
      "standard error), 2 for a usage error.");
  cmd->add_option("DISC", o->disc, kDiscHelp)->required()->type_name("PATH");
  cmd->add_flag("--json", o->json, "Print JSON instead of text");
  cmd->callback([&session, o] {
    session.action = [&session, o] {
      std::optional<Disc> disc = LoadDiscForCommand("info", o->disc, session);
      if (!disc) return;
      // Without a video manager there is no first play to start from.
      std::optional<TitleNavigation> navigation;
      if (disc->vmg.ifo_found) navigation = nav::NavigateTitles(*disc);
      const TitleNavigation* known = navigation ? &*navigation : nullptr;
      if (o->json) {
        PrintOut(DiscInfoJson(*disc, known));
      } else {
        TitleRipSizes sizes{RipSizesOfTitles(*disc)};
        PrintOut(DiscInfoText(*disc, known, &sizes));
      }
      session.exit_status = 0;
    };
  });
}

// The damaged blocks of MAP; nothing (with a message) when MAP is a folder, cannot be read or
// is malformed.
std::optional<std::vector<MapBlock>> ReadMapfile(const std::string& path) {
  std::error_code ec;
  if (std::filesystem::is_directory(path, ec)) {
    std::fprintf(stderr, "tarvex-cli verify: --mapfile %s: a folder, not a mapfile\n",
                 path.c_str());
    return std::nullopt;
  }
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  std::string error;
  std::optional<Mapfile> map = in ? ParseMapfile(text.str(), error) : std::nullopt;
  if (!in) error = "cannot be read";
  if (!map) {
    std::fprintf(stderr, "tarvex-cli verify: --mapfile %s: %s\n", path.c_str(), error.c_str());
    return std::nullopt;
  }
  return DamagedBlocks(*map);
}

void AddVerify(CLI::App& app, Session& session) {
  struct Options {
    std::string disc, mapfile;
    bool json = false, ifo_only = false, list_checks = false;
  };
  auto o = std::make_shared<Options>();
  CLI::App* cmd = app.add_subcommand(
      "verify", "Check a whole disc: the IFOs against each other and against the VOBs");
  cmd->footer(
      "Reads every IFO and checks its tables against each other, then reads every VOB once,\n"
      "from start to end, and checks the packs against the IFOs: the VOBU address maps\n"
      "against the navigation packs actually found, each navigation pack's own addresses,\n"
      "VOBU pointers and VOB and cell ids, VOBU lengths, mux rates, clock references, the\n"
      "declared audio and sub-picture streams against the streams in the cells of each\n"
      "program chain, through the chain's stream control, and the declared video and audio\n"
      "attributes against each stream's first complete header, in the packs that a cell of\n"
      "some chain plays (records no cell plays are one vob.unplayed note per VOB set). Every\n"
      "navigation command is followed to the title, part, chain, program, cell, menu or\n"
      "button it can send playback to, and every path from first play and the entry menus\n"
      "through the commands (each comparison either way) and the buttons of menu cells is\n"
      "followed: titles and menus no path reaches are nav.unreachable, loops of chains that\n"
      "play no cell and wait for no key nav.loop. A folder without VIDEO_TS.IFO gives\n"
      "file.missing for it, and each title set is checked on its own. An error is where a\n"
      "player goes wrong, a warning where it may go wrong, a note (info) what is worth\n"
      "knowing. \"tarvex-cli verify --list-checks\" lists every check with its id, severity\n"
      "and a one-line explanation.\n"
      "\n"
      "Text output: one line per finding,\n"
      "  SEVERITY FILE[:TABLE[#ENTRY]|@RECORD] CHECK: message\n"
      "where SEVERITY is error, warning or info, TABLE a DVD-Video table name (VTS_PGCIT,\n"
      "VTS_C_ADT...), ENTRY its entry (program chain, title, cell entry... from 1) and RECORD a\n"
      "record number of a VOB file as \"list\" numbers them. A summary goes to standard\n"
      "error. With --json: {\"disc\", \"findings\": [{\"severity\", \"check\", \"file\",\n"
      "\"table\", \"entry\", \"sector\" (the VOB record), \"message\"}], \"errors\",\n"
      "\"warnings\", \"infos\"}. Each check lists at most 200 findings; the last one says how\n"
      "many more there were.\n"
      "\n"
      "An ISO image shorter than its volume size is image.truncated (\"file\": null,\n"
      "\"sector\" the first missing image sector; (image) in the text). --mapfile MAP\n"
      "reads a GNU ddrescue mapfile of the image DISC (byte positions of the image) and\n"
      "maps every range not finished (-, /, *, ?) onto the files it falls in, through\n"
      "their UDF extents: one image.damaged per file and range, at the record holding the\n"
      "range's first damaged byte, naming the title sets, titles, cells and title times a\n"
      "VOB range hits; a range in no file is one finding with \"file\": null.\n"
      "\n"
      "Exit status: 0 no error (warnings allowed), 1 at least one error or the disc cannot\n"
      "be read (the reason on standard error), 2 usage error (also a malformed MAP, named\n"
      "by its line, a MAP that is a folder, or --mapfile with a folder DISC).");
  cmd->add_option("DISC", o->disc, kDiscHelp)->type_name("PATH");
  cmd->add_flag("--json", o->json, "Print the findings as JSON");
  cmd->add_flag("--ifo-only", o->ifo_only, "Check the IFO files only; do not read the VOBs");
  cmd->add_option("--mapfile", o->mapfile,
                  "Map the damaged ranges of MAP, a GNU ddrescue mapfile of the image DISC, onto "
                  "its files, titles, cells and times")
      ->type_name("MAP");
  cmd->add_flag("--list-checks", o->list_checks,
                "List every check (id, severity, explanation) and exit; DISC is not needed");
  cmd->callback([&session, o] {
    session.action = [&session, o] {
      if (o->list_checks) {
        PrintOut(o->json ? ListChecksJson() : ListChecksText());
        session.exit_status = 0;
        return;
      }
      if (o->disc.empty()) {
        std::fprintf(stderr, "tarvex-cli verify: DISC is required (see --help)\n");
        session.usage_error = true;
        return;
      }
      std::optional<std::vector<MapBlock>> damaged;
      if (!o->mapfile.empty() && !(damaged = ReadMapfile(o->mapfile))) {
        session.usage_error = true;
        return;
      }
      std::optional<Disc> disc = LoadDiscForCommand("verify", o->disc, session);
      if (!disc) return;
      if (damaged && disc->kind != "iso") {
        PrintDiscError("verify", o->disc, "--mapfile needs an image, not a folder");
        session.usage_error = true;
        return;
      }
      VerifyOptions options{.ifo_only = o->ifo_only,
                            .more_checks = [&damaged](const Disc& d, Findings& out) {
                              nav::AddNavigationFindings(d, nav::Analyze(d), out);
                              if (damaged) AddDamageFindings(d, *damaged, out);
                            }};
      VerifyResult result = VerifyDisc(*disc, options);
      PrintOut(o->json ? VerifyJson(o->disc, result) : VerifyText(result));
      std::fprintf(stderr, "%s: %s, %s, %s%s\n", o->disc.c_str(),
                   Counted(result.errors, "error").c_str(),
                   Counted(result.warnings, "warning").c_str(),
                   Counted(result.infos, "note").c_str(), o->ifo_only ? " (IFO files only)" : "");
      session.exit_status = result.errors > 0 ? 1 : 0;
    };
  });
}

}  // namespace

void AddDiscCommands(CLI::App& app, Session& session) {
  AddInfo(app, session);
  AddVerify(app, session);
}

}  // namespace tarvex::cli
