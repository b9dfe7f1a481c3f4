// Usage errors that name what went wrong: an unknown or missing command gets the list of the
// commands there are, with their arguments.
#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/cli.h"

namespace tarvex::cli {

namespace {

// "open FILE", "ifo FILE [PREFIX]", "extract FILE [options]": a command and its arguments.
std::string Synopsis(const CLI::App& command) {
  std::string text = command.get_name();
  bool has_options = false;
  for (const CLI::Option* option : command.get_options()) {
    if (option == command.get_help_ptr()) continue;
    if (!option->get_positional()) {
      has_options = true;
      continue;
    }
    const std::string name = option->get_name(true);
    text += option->get_required() ? " " + name : " [" + name + "]";
  }
  if (has_options) text += " [options]";
  return text;
}

// Edits between a and b, counting an insertion, a deletion, a replacement or the swap of two
// neighbouring characters as one ("opne" is one edit from "open").
std::size_t EditDistance(std::string_view a, std::string_view b) {
  std::vector<std::vector<std::size_t>> d(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i) d[i][0] = i;
  for (std::size_t j = 0; j <= b.size(); ++j) d[0][j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    for (std::size_t j = 1; j <= b.size(); ++j) {
      d[i][j] = std::min(
          {d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + (a[i - 1] != b[j - 1] ? 1 : 0)});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
      }
    }
  }
  return d[a.size()][b.size()];
}

// The command a mistyped word most likely meant: one edit away (two for words of six letters
// or more), or empty.
std::string Suggestion(const CLI::App& app, const std::string& word) {
  std::size_t best = word.size() >= 6 ? 3 : 2;
  std::string closest;
  for (const CLI::App* command : app.get_subcommands({})) {
    std::size_t distance = EditDistance(word, command->get_name());
    if (distance < best) {
      best = distance;
      closest = command->get_name();
    }
  }
  return closest;
}

// The first argument that is not an option (the one after "--" when there is one): the
// command the user asked for, or nothing when there is none.
std::optional<std::string> CommandWord(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    std::string_view arg = argv[i];
    if (arg == "--") return i + 1 < argc ? std::optional<std::string>(argv[i + 1]) : std::nullopt;
    if (arg.empty() || arg[0] != '-') return std::string(arg);
  }
  return std::nullopt;
}

bool IsCommand(const CLI::App& app, const std::string& word) {
  return !app.get_subcommands([&word](const CLI::App* c) { return c->check_name(word); }).empty();
}

}  // namespace

std::optional<std::string> CommandUsageError(const CLI::App& app, int argc, char** argv) {
  const std::optional<std::string> word = CommandWord(argc, argv);
  if (word && IsCommand(app, *word)) return std::nullopt;
  std::string text = word ? "tarvex-cli: unknown command \"" + *word + "\"\n"
                          : std::string("tarvex-cli: a command is required\n");
  text += "Commands:\n";
  for (const CLI::App* command : app.get_subcommands({})) text += "  " + Synopsis(*command) + "\n";
  if (word) {
    if (std::string closest = Suggestion(app, *word); !closest.empty()) {
      text += "Did you mean \"" + closest + "\"?\n";
    }
  }
  text += "Run \"tarvex-cli --help\" for what each command does.\n";
  return text;
}

}  // namespace tarvex::cli
