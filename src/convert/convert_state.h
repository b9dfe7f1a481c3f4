// State of the report, disassembly and assembly drivers.
#pragma once

#include <string>

namespace tarvex {

struct ConvertState {
  std::string source_path;  // the IfoSource being written or read
  std::string output_path;  // the binary IFO being assembled
};

}  // namespace tarvex
