// tarvex-cli: the commands of the desktop tool without a window. Each command area adds its
// subcommands; every command prints the report list as it stands afterwards.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "platform/console_ui.h"
#include "state/context.h"

namespace tarvex::cli {

// One run of tarvex-cli: the console user interface and the application context.
struct Session {
  Session() : ctx(ui) {}
  ConsoleUi ui;
  AppContext ctx;
  // Answers to choosers by purpose; a purpose without an answer counts as cancelled.
  std::map<ChooserPurpose, std::function<std::optional<std::string>(const ChooserRequest&)>>
      choosers;
  // Set by a command that found its arguments unusable (exit status 2).
  bool usage_error = false;
  // The chosen command, run once the whole command line is parsed (global options applied).
  std::function<void()> action;
  // Set by a command with exit statuses of its own (the whole-disc commands).
  std::optional<int> exit_status;
};

// Prints every line of the report list, each followed by "\n", to standard output.
void PrintReport(const AppContext& ctx);

// Opens FILE as File > Open does (the open chooser answers FILE). Returns false when the open
// step showed "Can not open %s": the command then stops there.
// forced_type, when given, is the file type whatever FILE's name.
bool OpenForCommand(Session& session, const std::string& file,
                    std::optional<std::int32_t> forced_type = std::nullopt);

void AddStreamCommands(CLI::App& app, Session& session);   // open, list, hex, details
void AddExtractCommands(CLI::App& app, Session& session);  // extract
void AddIfoCommands(CLI::App& app, Session& session);      // ifo, disasm, asm
void AddDiscCommands(CLI::App& app, Session& session);     // info, verify
void AddNavCommands(CLI::App& app, Session& session);      // play, graph
void AddPictureCommands(CLI::App& app, Session& session);  // subpictures, menus, bitrate
void AddArchiveCommands(CLI::App& app, Session& session);  // rip

// The usage error when argv names no command of app (none at all, or an unknown word): names
// the word and lists the commands with their arguments, one a line. Nothing when the first
// argument that is not an option is a command.
std::optional<std::string> CommandUsageError(const CLI::App& app, int argc, char** argv);

// The desktop tool's "-asm=" / "-obj=" arguments. Returns the exit status, or nothing when
// the arguments hold no such form.
std::optional<int> RunBatchArguments(int argc, char** argv, Session& session);

}  // namespace tarvex::cli
