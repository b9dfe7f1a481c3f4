#include "app/open_file.h"

namespace tarvex {

void OpenCommand(AppContext&) {}
void open_selected_file(AppContext&) {}
std::string read_last_path(AppContext&, const std::string& current, const char*) {
  return current;
}
void write_last_path(AppContext&, const std::string&, const char*) {}

}  // namespace tarvex
