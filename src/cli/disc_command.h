// What the whole-disc commands share: the help text of their DISC argument, writing their
// output, and loading the disc with a one-line reason on standard error when it cannot be read.
#pragma once

#include <optional>
#include <string>

#include "cli/cli.h"
#include "disc/model.h"

namespace tarvex::cli {

inline constexpr const char* kDiscHelp =
    "A folder named VIDEO_TS, the folder that holds one, or an ISO image (read directly, "
    "nothing is mounted)";

// Writes text to standard output and flushes it.
void PrintOut(const std::string& text);

// Writes text into the file at path, replacing it; false when it cannot be written whole.
bool WriteTextFile(const std::string& path, const std::string& text);

// "tarvex-cli COMMAND: DISC: error" on standard error.
void PrintDiscError(const std::string& command, const std::string& disc, const std::string& error);

// The disc at path; when it cannot be read, the reason is printed and the session's exit
// status is 1.
std::optional<Disc> LoadDiscForCommand(const char* command, const std::string& path,
                                       Session& session);

}  // namespace tarvex::cli
