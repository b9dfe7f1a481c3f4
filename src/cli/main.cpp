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
      "tarvex-cli: inspect DVD-Video program streams (VOB, M2P), IFO files and sub-picture "
      "files (SUP).\nEach command does what the desktop tool does and then prints the report "
      "list to standard output; message boxes go to standard error as \"caption: text\".\n"
      "Exit status: 0 no message box shown, 1 at least one message box shown, 2 usage error."};
  app.set_version_flag("--version", std::string("tarvex-cli ") + TARVEX_VERSION);
  app.require_subcommand(1);
  app.fallthrough();
  bool yes = false, no = false;
  auto* yes_opt = app.add_flag("--yes", yes, "Answer Yes to every Yes/No question");
  app.add_flag("--no", no, "Answer No to every Yes/No question")->excludes(yes_opt);
  app.footer(
      "Also: tarvex-cli -asm=SOURCE -obj=OUTPUT assembles SOURCE (*.INI) into OUTPUT (*.IFO) "
      "as the desktop tool's batch arguments do.");

  AddStreamCommands(app, session);
  AddExtractCommands(app, session);
  AddIfoCommands(app, session);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
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
