// open, list, hex, details.
#include "cli/cli.h"

namespace tarvex::cli {

bool OpenForCommand(Session&, const std::string&) {
  return false;
}

void AddStreamCommands(CLI::App&, Session&) {}

}  // namespace tarvex::cli
