#include "platform/paths.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <vector>

#include "platform/ascii.h"
#include "platform/file_io.h"

namespace tarvex {

std::string HomeDirectory() {
  const char* home = std::getenv("HOME");
  return home && *home ? home : "/";
}

std::string ConfigFilePath() {
  const char* xdg = std::getenv("XDG_CONFIG_HOME");
  std::string base = xdg && *xdg ? std::string(xdg) : HomeDirectory();
  while (base.size() > 1 && base.back() == kPathSeparator) base.pop_back();
  if (base == "/") base.clear();
  if (!(xdg && *xdg)) base += "/.config";
  return base + "/ambrix/ambrix.ini";
}

void EnsureParentDirectory(const std::string& path) {
  std::string dir = DirectoryPart(path);
  if (dir.empty()) return;
  // mkdir -p: create every missing folder from the top down.
  for (std::size_t pos = 1; pos <= dir.size(); ++pos) {
    if (pos != dir.size() && dir[pos] != kPathSeparator) continue;
    std::string prefix = dir.substr(0, pos);
    if (prefix.empty() || prefix.back() == kPathSeparator) continue;
    if (::mkdir(prefix.c_str(), 0755) != 0 && errno != EEXIST) return;
  }
}

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
  struct stat st {};
  if (::lstat(path.c_str(), &st) == 0) return path;
  std::size_t sep = LastSeparator(path);
  std::string dir;
  if (sep == std::string::npos) {
    dir = ".";
  } else if (sep == 0) {
    dir.push_back(kPathSeparator);
  } else {
    dir = path.substr(0, sep);
  }
  std::string name = sep == std::string::npos ? path : path.substr(sep + 1);
  if (name.empty()) return {};
  DIR* d = ::opendir(dir.c_str());
  if (!d) return {};
  std::vector<std::string> matches;
  while (const dirent* e = ::readdir(d)) {
    if (EqualIgnoringAsciiCase(e->d_name, name)) matches.emplace_back(e->d_name);
  }
  ::closedir(d);
  if (matches.empty()) return {};
  std::sort(matches.begin(), matches.end());
  std::string prefix = sep == std::string::npos ? std::string() : path.substr(0, sep + 1);
  return prefix + matches.front();
}

std::string FindExistingFileIgnoringCase(const std::string& path) {
  std::string found = FindFileIgnoringCase(path);
  return !found.empty() && File::Exists(found) ? found : std::string();
}

std::string ReplaceExtension(const std::string& path, std::string_view extension) {
  std::size_t sep = LastSeparator(path);
  std::size_t dot = path.rfind('.');
  if (dot == std::string::npos || (sep != std::string::npos && dot < sep)) {
    return path + "." + std::string(extension);
  }
  return path.substr(0, dot + 1) + std::string(extension);
}

}  // namespace tarvex
