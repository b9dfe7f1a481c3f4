// info, verify: the whole-disc commands.
#include <cstdio>
#include <memory>

#include "cli/cli.h"
#include "disc/info.h"
#include "disc/verify.h"

namespace tarvex::cli {

namespace {

constexpr const char* kDiscHelp =
    "A folder named VIDEO_TS, the folder that holds one, or an ISO image (read directly, "
    "nothing is mounted)";

void Print(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fflush(stdout);
}

void PrintError(const std::string& command, const std::string& disc, const std::string& error) {
  std::fprintf(stderr, "tarvex-cli %s: %s: %s\n", command.c_str(), disc.c_str(), error.c_str());
}

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
      "frames per second, to the millisecond.\n"
      "\n"
      "A stream's id is the one it really plays through: the program chain's audio and\n"
      "sub-picture stream control maps each declared stream to a stream number (for a 16:9\n"
      "title the wide-screen number of the sub-picture control), not its position.\n"
      "\n"
      "With --json the same as one JSON object (RFC 8259): {\"disc\", \"access\", \"vmg\",\n"
      "\"titles\": [{\"number\", \"title_set\", \"title_in_set\", \"length\", \"angles\", "
      "\"video\",\n"
      "\"audio\", \"subpictures\", \"chapters\", \"cells\", \"palette\", ...}], \"menus\"}.\n"
      "\"disc\" is DISC as given; everything else is the same for a folder and an ISO image\n"
      "of it.\n"
      "\n"
      "Exit status: 0 when the disc was read, 1 when it cannot be read (the reason on\n"
      "standard error), 2 for a usage error.");
  cmd->add_option("DISC", o->disc, kDiscHelp)->required()->type_name("PATH");
  cmd->add_flag("--json", o->json, "Print JSON instead of text");
  cmd->callback([&session, o] {
    session.action = [&session, o] {
      std::string error;
      std::optional<Disc> disc = LoadDisc(o->disc, error);
      if (!disc) {
        PrintError("info", o->disc, error);
        session.exit_status = 1;
        return;
      }
      Print(o->json ? DiscInfoJson(*disc) : DiscInfoText(*disc));
      session.exit_status = 0;
    };
  });
}

}  // namespace

void AddDiscCommands(CLI::App& app, Session& session) {
  AddInfo(app, session);
}

}  // namespace tarvex::cli
