#include "platform/file_identity.h"

#include <sys/stat.h>

namespace tarvex {

bool IsSameFile(const std::string& a, const std::string& b) {
  struct stat sa {
  }, sb{};
  if (::stat(a.c_str(), &sa) != 0 || ::stat(b.c_str(), &sb) != 0) return false;
  return sa.st_dev == sb.st_dev && sa.st_ino == sb.st_ino;
}

}  // namespace tarvex
