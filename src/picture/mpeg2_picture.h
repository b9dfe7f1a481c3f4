// The first picture of an MPEG-2 video elementary stream, decoded with libavcodec and converted
// to RGB by the BT.601 formula of picture/colour.h.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/bytes.h"

namespace tarvex::picture {

struct RgbImage {
  std::uint32_t width = 0, height = 0;
  std::vector<std::uint8_t> rgb;  // 3 bytes per pixel, row by row
};

// Nothing when the stream holds no picture libavcodec can decode.
std::optional<RgbImage> DecodeFirstPicture(ByteView elementary_stream);

}  // namespace tarvex::picture
