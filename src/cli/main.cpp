// tarvex-cli: entry point, global options and exit status.
#include <cstdio>

#include "cli/cli.h"

namespace tarvex::cli {

void PrintReport(const AppContext& ctx) {
  for (const std::string& line : ctx.report.lines()) {
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
  }
  std::fflush(stdout);
}

namespace {

int ExitStatus(const Session& session) {
  if (session.usage_error) return 2;
  if (session.exit_status) return *session.exit_status;
  return session.ui.messages_shown() > 0 ? 1 : 0;
}

int Run(int argc, char** argv) {
  Session session;
  session.ui.set_chooser_answerer([&session](const ChooserRequest& request) {
    auto it = session.choosers.find(request.purpose);
    return it == session.choosers.end() ? std::nullopt : it->second(request);
  });
  if (auto status = RunBatchArguments(argc, argv, session)) return *status;

  CLI::App app{
      "tarvex-cli: inspect DVD-Video files without a window.\n"
      "\n"
      "Works on program streams (*.VOB, *.M2P), IFO files (*.IFO) and sub-picture files\n"
      "(*.SUP), with the same analysis as the desktop tool. Each of these commands does\n"
      "what the desktop command of the same name does, then prints the report list as it\n"
      "stands afterwards to standard output, one line per report line. Message boxes go\n"
      "to standard error, one line each, as \"caption: text\".\n"
      "\n"
      "info and verify work on a whole disc (a VIDEO_TS folder, the folder that holds one,\n"
      "or an ISO image): what is on it, and whether its IFOs agree with each other and\n"
      "with the packs in its VOBs. They, and list --json, can print JSON for scripts.\n"
      "\n"
      "A FILE argument stands for the file the open chooser would return (a relative path\n"
      "is made absolute). Opening remembers the file's folder in the suite configuration\n"
      "file $XDG_CONFIG_HOME/ambrix/ambrix.ini (default ~/.config/ambrix/ambrix.ini),\n"
      "section kelvane, key kvln_path, as the desktop tool does. When a file cannot be\n"
      "opened (\"Can not open ...\") the command stops there; after a warning about an\n"
      "unknown file type or an illegal VOB length it goes on.\n",
      "tarvex-cli"};
  app.set_version_flag("--version", std::string("tarvex-cli ") + TARVEX_VERSION,
                       "Print the version and exit");
  app.set_help_flag("-h,--help", "Print this help and exit");
  app.require_subcommand(1);
  app.fallthrough();
  bool yes = false, no = false;
  auto* yes_opt =
      app.add_flag("--yes", yes, "Answer Yes to every Yes/No question (overwrite, continue)");
  app.add_flag("--no", no, "Answer No to every Yes/No question")->excludes(yes_opt);
  app.footer(
      "Run \"tarvex-cli COMMAND --help\" for the arguments and details of a command.\n"
      "Global options may stand before or after the command.\n"
      "\n"
      "Without --yes or --no a question is asked on the terminal when standard input is\n"
      "one, and answered No otherwise. A chooser the arguments do not answer counts as\n"
      "cancelled.\n"
      "\n"
      "Batch assembly, as the desktop tool's own arguments:\n"
      "  tarvex-cli -asm=SOURCE -obj=OUTPUT   assemble the IFO source SOURCE (*.INI) into\n"
      "                                       the IFO file OUTPUT (both arguments exactly\n"
      "                                       once; any other count is a usage error)\n"
      "\n"
      "Exit status:\n"
      "  0  the command ran and showed no message box\n"
      "  1  the command ran and showed at least one message box (error, warning or\n"
      "     question); a file that cannot be opened counts here\n"
      "  2  usage error: unknown command or option, missing argument, bad number\n"
      "info and verify, which read a whole disc, have their own: see their --help.\n"
      "\n"
      "Examples:\n"
      "  tarvex-cli open VIDEO_TS/VTS_01_1.VOB\n"
      "  tarvex-cli list VIDEO_TS/VTS_01_1.VOB 32 48\n"
      "  tarvex-cli details VIDEO_TS/VTS_01_1.VOB 0\n"
      "  tarvex-cli info disc/ --json\n"
      "  tarvex-cli verify disc.iso");

  AddStreamCommands(app, session);
  AddExtractCommands(app, session);
  AddIfoCommands(app, session);
  AddDiscCommands(app, session);
  AddNavCommands(app, session);
  AddPictureCommands(app, session);
  AddArchiveCommands(app, session);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    if (e.get_exit_code() != 0) {
      // No command was recognised: name the word given (if any) and list the known ones.
      if (std::optional<std::string> message = CommandUsageError(app, argc, argv)) {
        std::fputs(message->c_str(), stderr);
        return 2;
      }
    }
    int code = app.exit(e);
    return code == 0 ? 0 : 2;
  }
  if (yes) session.ui.set_answer(ConsoleUi::Answer::kYes);
  if (no) session.ui.set_answer(ConsoleUi::Answer::kNo);
  if (session.action && !session.usage_error) session.action();
  session.ctx.profiles.Flush();
  return ExitStatus(session);
}

}  // namespace
}  // namespace tarvex::cli

int main(int argc, char** argv) {
  return tarvex::cli::Run(argc, argv);
}
