// Writes pictures as PNG files through libpng.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tarvex::picture {

// pixels: width x height pixels of channels bytes (3 RGB, 4 RGBA), row by row. An image
// without pixels is written as one transparent (or black) pixel. False with error set when the
// file cannot be written.
bool WritePng(const std::string& path, std::uint32_t width, std::uint32_t height, int channels,
              const std::vector<std::uint8_t>& pixels, std::string& error);

}  // namespace tarvex::picture
