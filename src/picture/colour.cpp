#include "picture/colour.h"

#include <cmath>
#include <cstdio>

namespace tarvex::picture {

namespace {

std::uint8_t Clamp(double v) {
  long r = std::lround(v);
  if (r < 0) return 0;
  if (r > 255) return 255;
  return static_cast<std::uint8_t>(r);
}

}  // namespace

Rgb YCrCbToRgb(std::uint8_t y, std::uint8_t cr, std::uint8_t cb) {
  double l = 1.164 * (y - 16);
  double v = cr - 128;
  double u = cb - 128;
  return {Clamp(l + 1.596 * v), Clamp(l - 0.813 * v - 0.391 * u), Clamp(l + 2.018 * u)};
}

Rgb PaletteEntryToRgb(std::uint32_t entry) {
  return YCrCbToRgb(static_cast<std::uint8_t>(entry >> 16), static_cast<std::uint8_t>(entry >> 8),
                    static_cast<std::uint8_t>(entry));
}

std::array<Rgb, 16> PaletteToRgb(const std::array<std::uint32_t, 16>& palette) {
  std::array<Rgb, 16> rgb{};
  for (std::size_t i = 0; i < rgb.size(); ++i) rgb[i] = PaletteEntryToRgb(palette[i]);
  return rgb;
}

std::string RgbHex(Rgb c) {
  char text[8];
  std::snprintf(text, sizeof text, "%02x%02x%02x", c.r, c.g, c.b);
  return text;
}

}  // namespace tarvex::picture
