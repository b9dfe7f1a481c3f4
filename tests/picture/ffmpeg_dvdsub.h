// The test's independent decoder of sub-picture units: libavcodec's dvdsub decoder, given a
// palette explicitly, and a PNG reader (libpng) for the pictures the tool writes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarvex::test {

struct DecodedRect {
  int x = 0, y = 0, width = 0, height = 0;
  std::vector<std::uint8_t> rgba;   // width x height x 4
  std::vector<std::uint8_t> index;  // the pixel values 0-3, width x height
};

// palette: 16 "rrggbb" separated by commas. Nothing when the decoder shows nothing (a unit
// whose pixels are all transparent); ffmpeg crops the area to its visible pixels.
std::optional<DecodedRect> DecodeWithFfmpeg(const std::vector<std::uint8_t>& unit,
                                            const std::string& palette);

struct PngImage {
  std::uint32_t width = 0, height = 0;
  int channels = 0;
  std::vector<std::uint8_t> pixels;
};
PngImage ReadPng(const std::string& path);

// Writes an RGBA PNG of width x height, transparent but for the given boxes (x, y, w, h and
// their colour r, g, b, a), drawn in order.
struct Box {
  int x, y, w, h;
  std::uint8_t r, g, b, a;
};
void WriteBoxesPng(const std::string& path, int width, int height, const std::vector<Box>& boxes);

// Splits concatenated sub-picture units by their size fields.
std::vector<std::vector<std::uint8_t>> SplitUnits(const std::vector<std::uint8_t>& bytes);

}  // namespace tarvex::test
