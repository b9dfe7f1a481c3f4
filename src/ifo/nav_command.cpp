#include "ifo/nav_command.h"

namespace tarvex {

std::string describe_nav_command(ByteView) {
  return {};
}

}  // namespace tarvex
