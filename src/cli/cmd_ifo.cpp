// ifo, disasm, asm and the -asm=/-obj= form.
#include "cli/cli.h"

namespace tarvex::cli {

void AddIfoCommands(CLI::App&, Session&) {}

std::optional<int> RunBatchArguments(int, char**, Session&) {
  return std::nullopt;
}

}  // namespace tarvex::cli
