// Decoding of the first sub-picture unit of a SUP file.
#pragma once

#include <cstdint>

#include "state/context.h"

namespace tarvex {

void DecodeSubpictureUnit(AppContext& ctx, std::uint32_t record);

}  // namespace tarvex
