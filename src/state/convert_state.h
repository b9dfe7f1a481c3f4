// State of the report, disassembly and assembly drivers.
#pragma once

#include <string>

namespace tarvex {

struct ConvertState {
  std::string source_path;   // the IfoSource being written or read
  std::string output_path;   // the binary IFO being assembled
  std::string assemble_dir;  // the folder the Assemble choosers start in
  // Set by the batch assembly when the main window is to close with the cancel result (2).
  bool close_main_dialog = false;
};

}  // namespace tarvex
