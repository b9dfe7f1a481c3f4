// extract.
#include "cli/cli.h"

namespace tarvex::cli {

void AddExtractCommands(CLI::App&, Session&) {}

}  // namespace tarvex::cli
