#include "platform/last_path.h"

#include <string_view>

#include "platform/paths.h"

namespace tarvex {

namespace {

// The section of the suite configuration file that holds the remembered folders.
constexpr std::string_view kConfigSection = "kelvane";

}  // namespace

std::string ReadLastPath(ProfileStore& profiles, const std::string& current, const char* key) {
  std::string config = ConfigFilePath();
  std::string value = profiles.GetString(config, kConfigSection, key, "0");
  // A value beginning with '0' is the default: the key is missing. Remember the current
  // directory then; an empty value is a remembered (empty) directory.
  if (!value.empty() && value[0] == '0') {
    profiles.WriteString(config, kConfigSection, key, current);
    return current;
  }
  return value;
}

void WriteLastPath(ProfileStore& profiles, const std::string& chosen_path, const char* key) {
  std::size_t sep = LastSeparator(chosen_path);
  std::string dir = sep == std::string::npos ? std::string() : chosen_path.substr(0, sep);
  profiles.WriteString(ConfigFilePath(), kConfigSection, key, dir);
}

}  // namespace tarvex
