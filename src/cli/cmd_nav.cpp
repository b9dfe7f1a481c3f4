// play, graph: what a player does with a disc.
#include <cstdio>
#include <memory>
#include <string>

#include "cli/cli.h"
#include "cli/disc_command.h"
#include "nav/analysis.h"
#include "nav/graph_dot.h"
#include "nav/graph_svg.h"
#include "nav/machine.h"
#include "nav/play_output.h"

namespace tarvex::cli {

namespace {

// KEYS as a comma list; false (with a message) when a key is not one play knows.
bool SplitKeys(const std::string& text, std::vector<std::string>& keys) {
  std::size_t start = 0;
  while (start <= text.size() && !text.empty()) {
    std::size_t comma = text.find(',', start);
    std::string key =
        text.substr(start, comma == std::string::npos ? std::string::npos : comma - start);
    if (!nav::IsKey(key)) {
      std::fprintf(stderr,
                   "tarvex-cli play: unknown key '%s' (keys: up, down, left, right, enter, skip, "
                   "menu, title, or a button number 1-36)\n",
                   key.c_str());
      return false;
    }
    keys.push_back(key);
    if (comma == std::string::npos) break;
    start = comma + 1;
  }
  return true;
}

void AddPlay(CLI::App& app, Session& session) {
  struct Options {
    std::string disc, keys, language = "en";
    bool json = false, registers = false;
    std::uint32_t max_cells = 1000;
    unsigned region = 1;
  };
  auto o = std::make_shared<Options>();
  CLI::App* cmd = app.add_subcommand(
      "play", "Run the navigation machine from first play and show what a player plays");
  cmd->footer(
      "Plays the disc as a player does, from its first-play chain: pre commands, cells with\n"
      "their cell commands and still times, post commands, the chains' next links, buttons.\n"
      "Registers start as a player's: GPRMs 0, menu/audio/sub-picture language from\n"
      "--language, parental level 15, the region mask of --region.\n"
      "\n"
      "KEYS is a comma list, consumed one key at a time whenever playback waits for the user:\n"
      "at a cell whose navigation packs hold buttons, and at an infinite still.\n"
      "  up, down, left, right  move the highlight (an auto-action button activates)\n"
      "  enter                  activate the highlighted button\n"
      "  N                      select and activate button N (1-36)\n"
      "  skip                   end a still\n"
      "  menu, title            the title set's root menu, the title menu (a title saves\n"
      "                         its resume point as a call does)\n"
      "When KEYS runs out, a menu gets enter and a still gets skip.\n"
      "\n"
      "Playback ends at an Exit command (exit), when a chain ends with nowhere to go (stop),\n"
      "when the machine comes back to a state it was in, or after 100,000 commands without\n"
      "a cell (loop), after --max-cells cells (limit), or at a link to something that does\n"
      "not exist (error). Counters and the navigation timer advance with the playback time\n"
      "of the cells played.\n"
      "\n"
      "Text output: the trace, top to bottom: each chain entered, each command with what it\n"
      "did, each cell played, each key, the end. --json: {\"disc\", \"keys\", \"cells\":\n"
      "[{\"domain\", \"title_set\", \"language\", \"pgc\", \"title\", \"chapter\", \"cell\",\n"
      "\"first_sector\", \"key\"}], \"commands\": [{\"domain\", \"title_set\", \"language\",\n"
      "\"pgc\", \"where\", \"number\", \"text\", \"result\"}], \"end\", \"end_reason\",\n"
      "\"first_title\"}.\n"
      "\n"
      "Exit status: 0 when the disc was played (whatever the end), 1 when it cannot be read,\n"
      "2 for a usage error (an unknown key).");
  cmd->add_option("DISC", o->disc, kDiscHelp)->required()->type_name("PATH");
  cmd->add_option("--keys", o->keys, "Keys pressed when playback waits, comma separated")
      ->type_name("KEYS");
  cmd->add_flag("--json", o->json, "Print JSON instead of the trace");
  cmd->add_flag("--registers", o->registers, "Show the registers each command changed");
  cmd->add_option("--max-cells", o->max_cells, "End after this many cells (default 1000)")
      ->type_name("N")
      ->check(CLI::Range(1u, 100000000u));
  cmd->add_option("--language", o->language, "Menu, audio and sub-picture language (default en)")
      ->type_name("LL")
      ->check([](const std::string& v) {
        return v.size() == 2 ? std::string() : std::string("a two-letter language code");
      });
  cmd->add_option("--region", o->region, "The player's region, 1-8 (default 1)")
      ->type_name("N")
      ->check(CLI::Range(1u, 8u));
  cmd->callback([&session, o] {
    session.action = [&session, o] {
      nav::PlayOptions options{
          .keys = {}, .max_cells = o->max_cells, .language = o->language, .region = o->region};
      if (!SplitKeys(o->keys, options.keys)) {
        session.usage_error = true;
        return;
      }
      std::optional<Disc> disc = LoadDiscForCommand("play", o->disc, session);
      if (!disc) return;
      nav::PlayResult result = nav::Play(*disc, options);
      PrintOut(o->json ? nav::PlayJson(*disc, result) : nav::PlayText(result, o->registers));
      session.exit_status = 0;
    };
  });
}

void AddGraph(CLI::App& app, Session& session) {
  struct Options {
    std::string disc, svg;
  };
  auto o = std::make_shared<Options>();
  CLI::App* cmd =
      app.add_subcommand("graph", "Print the navigation graph of a disc as Graphviz DOT");
  cmd->footer(
      "One node per program chain (first play, menus, titles), one edge per place a command\n"
      "or a button can send playback: pre, post and cell commands, buttons of menu cells,\n"
      "the chains' next links. Conditional edges are dashed, button edges carry the button\n"
      "number, chains no path reaches are grey, chains on a loop that plays nothing are red.\n"
      "--svg FILE also draws the graph as SVG with Graphviz's library.\n"
      "\n"
      "Exit status: 0 when the graph was written, 1 when the disc cannot be read or the SVG\n"
      "cannot be written, 2 for a usage error.");
  cmd->add_option("DISC", o->disc, kDiscHelp)->required()->type_name("PATH");
  cmd->add_option("--svg", o->svg, "Also draw the graph as SVG into FILE")->type_name("FILE");
  cmd->callback([&session, o] {
    session.action = [&session, o] {
      std::optional<Disc> disc = LoadDiscForCommand("graph", o->disc, session);
      if (!disc) return;
      nav::NavAnalysis analysis = nav::Analyze(*disc);
      std::string dot = nav::GraphToDot(nav::BuildGraph(*disc, analysis), o->disc);
      PrintOut(dot);
      session.exit_status = 0;
      if (o->svg.empty()) return;
      std::string error;
      if (!nav::WriteGraphSvg(dot, o->svg, error)) {
        std::fprintf(stderr, "tarvex-cli graph: %s: %s\n", o->svg.c_str(), error.c_str());
        session.exit_status = 1;
      }
    };
  });
}

}  // namespace

void AddNavCommands(CLI::App& app, Session& session) {
  AddPlay(app, session);
  AddGraph(app, session);
}

}  // namespace tarvex::cli
