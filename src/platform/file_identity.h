// Whether two paths name the same file (the same device and inode, links followed).
#pragma once

#include <string>

namespace tarvex {

bool IsSameFile(const std::string& a, const std::string& b);

}  // namespace tarvex
