// Decoding of the first sub-picture unit of a SUP file.
#pragma once

#include <cstdint>

#include "app/context.h"

namespace tarvex {

void decode_subpicture_unit(AppContext& ctx, std::uint32_t record);

}  // namespace tarvex
