// MPEG-2 video headers in the payload of a video pack: sequence header and extension, picture
// headers and the picture coding extension, with the values DVD-Video does not allow flagged.
#pragma once

#include "platform/bytes.h"
#include "state/context.h"

namespace tarvex {

// payload starts at the first payload byte of the pack and ends where the record ends.
void ShowVideoStreamDetails(AppContext& ctx, ByteView payload);

}  // namespace tarvex
