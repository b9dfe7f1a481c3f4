// The Open command: chooser, remembered directory, dispatch by file type, first page.
#pragma once

#include <string>

#include "app/context.h"

namespace tarvex {

// File > Open: closes the previous file, asks the open chooser, opens and shows the file.
void OpenCommand(AppContext& ctx);
// Classifies ctx.open.file_path by extension, opens it and shows its first page.
void open_selected_file(AppContext& ctx);

// The remembered directory in the suite configuration file.
std::string read_last_path(AppContext& ctx, const std::string& current, const char* key);
void write_last_path(AppContext& ctx, const std::string& chosen_path, const char* key);

}  // namespace tarvex
