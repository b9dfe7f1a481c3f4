// The reading of an 8-byte DVD-Video navigation command, as appended after its hex listing.
#pragma once

#include <string>

#include "platform/bytes.h"

namespace tarvex {

// The text that follows a command's hex digits on its report line (it starts with a blank).
std::string DescribeNavCommand(ByteView command);

}  // namespace tarvex
