#include "platform/paths.h"

#include <cstdlib>

namespace tarvex {

std::string HomeDirectory() {
  const char* home = std::getenv("HOME");
  return home && *home ? home : "/";
}

std::string ConfigFilePath() {
  const char* xdg = std::getenv("XDG_CONFIG_HOME");
  std::string base = xdg && *xdg ? xdg : HomeDirectory() + "/.config";
  return base + "/ambrix/ambrix.ini";
}

void EnsureParentDirectory(const std::string&) {}

std::size_t LastSeparator(std::string_view path) {
  return path.rfind(kPathSeparator);
}

std::string DirectoryPart(std::string_view path) {
  std::size_t sep = LastSeparator(path);
  return sep == std::string_view::npos ? std::string() : std::string(path.substr(0, sep));
}

std::string NamePart(std::string_view path) {
  std::size_t sep = LastSeparator(path);
  return std::string(sep == std::string_view::npos ? path : path.substr(sep + 1));
}

std::string FindFileIgnoringCase(const std::string& path) {
  return path;
}

}  // namespace tarvex
