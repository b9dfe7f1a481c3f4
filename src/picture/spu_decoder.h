// The sub-picture unit decoder for rendering: a unit's display control sequences (start and
// stop delays, forced start, colour and contrast, display area, the field offsets and the
// colour / contrast changes by line and column) and its run-length coded pixels, drawn as an
// RGBA image of the display area in the colours of a program chain's palette.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "picture/colour.h"
#include "platform/bytes.h"

namespace tarvex::picture {

// The four colour codes (palette entries) or contrasts of the pixel values background (0),
// pattern (1), emphasis 1 (2) and emphasis 2 (3).
using SpuCodes = std::array<std::uint8_t, 4>;

// One change point of a change-colour-and-contrast command: from this screen column on.
struct SpuChangePoint {
  std::uint16_t column = 0;
  SpuCodes colors{}, contrast{};
};
// The change points of a range of screen lines, inclusive.
struct SpuChangeLines {
  std::uint16_t first_line = 0, last_line = 0;
  std::vector<SpuChangePoint> points;
};

struct SpuControl {
  std::size_t size = 0;  // the unit's size as its header gives it
  bool forced = false;
  // Delays of the sequences that start and stop the display, in units of 1024 ticks of 90 kHz.
  std::optional<std::uint16_t> start_delay, stop_delay;
  SpuCodes colors{}, contrast{};
  bool has_area = false;
  std::uint16_t x0 = 0, x1 = 0, y0 = 0, y1 = 0;   // the display area, inclusive
  std::uint16_t top_field = 0, bottom_field = 0;  // byte offsets of the fields' pixel data
  std::vector<SpuChangeLines> changes;
  std::uint32_t width() const { return has_area && x1 >= x0 ? x1 - x0 + 1u : 0u; }
  std::uint32_t height() const { return has_area && y1 >= y0 ? y1 - y0 + 1u : 0u; }
};

// Reads the display control sequences of a whole unit (its size bytes first). Colour,
// contrast, area, field and change commands are taken from the sequences up to the one that
// starts the display (all of them when none does).
SpuControl DecodeSpuControl(ByteView unit);

// The pixel values (0-3) of the display area, row by row: even rows from the top field's data,
// odd rows from the bottom field's. A line ends at the end of the area or at a run that fills
// the rest of it; pixels the data does not reach are background (0).
std::vector<std::uint8_t> DecodeSpuPixels(ByteView unit, const SpuControl& control);

struct RgbaImage {
  std::uint32_t width = 0, height = 0;
  std::vector<std::uint8_t> rgba;  // 4 bytes per pixel, row by row
};

// A rectangle of the screen (inclusive) drawn with codes of its own: a menu button in its
// selected or activated colours.
struct SpuHighlight {
  std::uint16_t x0 = 0, y0 = 0, x1 = 0, y1 = 0;
  SpuCodes colors{}, contrast{};
};
// The codes of a button colour entry: colours in bits 31-16, contrasts in 15-0, each as
// e2 e1 p b nibbles.
SpuHighlight HighlightCodes(std::uint32_t entry);

// The display area in colour: a pixel of value i gets the palette entry of its colour code and
// alpha 17 x its contrast, from the highlight that covers it, else the change point that
// covers it, else the unit's codes.
RgbaImage RenderSpu(ByteView unit, const SpuControl& control, const std::array<Rgb, 16>& palette,
                    const SpuHighlight* highlight = nullptr);

}  // namespace tarvex::picture
