// The Open command: chooser, remembered directory, dispatch by file type, first page.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "state/context.h"

namespace tarvex {

// File > Open: closes the previous file, asks the open chooser, opens and shows the file.
// forced_type, when given, is the file type whatever the name (tarvex-cli's ifo command).
void OpenCommand(AppContext& ctx, std::optional<std::int32_t> forced_type = std::nullopt);
// Classifies ctx.open.file_path by extension (or takes forced_type), opens it and shows its
// first page.
void OpenSelectedFile(AppContext& ctx, std::optional<std::int32_t> forced_type = std::nullopt);

}  // namespace tarvex
