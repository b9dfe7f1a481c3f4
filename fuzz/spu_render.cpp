// Fuzzes the sub-picture unit decoder for rendering on an arbitrary unit: its control
// sequences, its run-length fields and its drawing, with and without a button highlight.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "picture/spu_decoder.h"

using namespace tarvex;  // NOLINT

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  ByteView unit(data, size);
  picture::SpuControl control = picture::DecodeSpuControl(unit);
  std::array<picture::Rgb, 16> palette{};
  for (std::size_t i = 0; i < palette.size(); ++i)
    palette[i] = {std::uint8_t(i), std::uint8_t(i * 2), std::uint8_t(i * 3)};
  picture::RgbaImage image = picture::RenderSpu(unit, control, palette);
  if (image.rgba.size() != std::size_t{image.width} * image.height * 4) std::abort();
  picture::SpuHighlight highlight = picture::HighlightCodes(unit.be32(0));
  highlight.x1 = highlight.y1 = 0x3FF;
  picture::RgbaImage lit = picture::RenderSpu(unit, control, palette, &highlight);
  if (lit.width != image.width || lit.height != image.height) std::abort();
  return 0;
}
