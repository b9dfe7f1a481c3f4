// The colours of DVD-Video pictures: palette entries and frames are Y Cr Cb (BT.601, Y in
// 16-235), shown as RGB through one formula everywhere.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace tarvex::picture {

struct Rgb {
  std::uint8_t r = 0, g = 0, b = 0;
  bool operator==(const Rgb&) const = default;
};

// R = 1.164(Y-16) + 1.596(Cr-128), G = 1.164(Y-16) - 0.813(Cr-128) - 0.391(Cb-128),
// B = 1.164(Y-16) + 2.018(Cb-128), each rounded to the nearest integer and clamped to 0-255.
Rgb YCrCbToRgb(std::uint8_t y, std::uint8_t cr, std::uint8_t cb);

// A palette entry of a program chain (0, Y, Cr, Cb from the most significant byte down).
Rgb PaletteEntryToRgb(std::uint32_t entry);

// The 16 entries of a chain's palette as RGB.
std::array<Rgb, 16> PaletteToRgb(const std::array<std::uint32_t, 16>& palette);

// "rrggbb", lower case.
std::string RgbHex(Rgb c);

}  // namespace tarvex::picture
