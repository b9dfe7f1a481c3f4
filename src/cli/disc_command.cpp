#include "cli/disc_command.h"

#include <cstdio>

namespace tarvex::cli {

void PrintOut(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fflush(stdout);
}

bool WriteTextFile(const std::string& path, const std::string& text) {
  std::FILE* f = std::fopen(path.c_str(), "wb");
  if (f == nullptr) return false;
  bool ok = std::fwrite(text.data(), 1, text.size(), f) == text.size();
  return std::fclose(f) == 0 && ok;
}

void PrintDiscError(const std::string& command, const std::string& disc, const std::string& error) {
  std::fprintf(stderr, "tarvex-cli %s: %s: %s\n", command.c_str(), disc.c_str(), error.c_str());
}

std::optional<Disc> LoadDiscForCommand(const char* command, const std::string& path,
                                       Session& session) {
  std::string error;
  std::optional<Disc> disc = LoadDisc(path, error);
  if (!disc) {
    PrintDiscError(command, path, error);
    session.exit_status = 1;
  }
  return disc;
}

}  // namespace tarvex::cli
