#include "platform/profile.h"

namespace tarvex {

class ProfileDocument {};

ProfileStore::ProfileStore() = default;
ProfileStore::~ProfileStore() = default;

std::string ProfileStore::GetString(const std::string&, std::string_view, std::string_view,
                                    std::string_view def) {
  return std::string(def);
}
void ProfileStore::WriteString(const std::string&, std::string_view, std::string_view,
                               std::string_view) {}
void ProfileStore::Flush() {}
bool ProfileStore::DeleteFile(const std::string&) {
  return false;
}

}  // namespace tarvex
