#include "picture/spu_decoder.h"

#include <algorithm>

namespace tarvex::picture {

namespace {

constexpr std::uint8_t kForcedStart = 0x00;
constexpr std::uint8_t kStartDisplay = 0x01;
constexpr std::uint8_t kStopDisplay = 0x02;
constexpr std::uint8_t kSetColor = 0x03;
constexpr std::uint8_t kSetContrast = 0x04;
constexpr std::uint8_t kSetArea = 0x05;
constexpr std::uint8_t kSetFields = 0x06;
constexpr std::uint8_t kChangeColorContrast = 0x07;
constexpr std::uint8_t kEnd = 0xFF;
constexpr std::uint32_t kEndOfChanges = 0x0FFFFFFF;
// A unit of at most 64 KiB holds far fewer sequences and change lines than this.
constexpr int kMaxSequences = 1024;

// e2 e1 p b nibbles, as the colour and contrast commands and change points write them.
SpuCodes Nibbles(ByteView v, std::size_t at) {
  return {static_cast<std::uint8_t>(v.u8(at + 1) & 0x0F),
          static_cast<std::uint8_t>(v.u8(at + 1) >> 4), static_cast<std::uint8_t>(v.u8(at) & 0x0F),
          static_cast<std::uint8_t>(v.u8(at) >> 4)};
}

// The line ranges of a change-colour-and-contrast command whose parameters span [at, end).
std::vector<SpuChangeLines> DecodeChanges(ByteView unit, std::size_t at, std::size_t end) {
  std::vector<SpuChangeLines> lines;
  while (at + 4 <= end && lines.size() < kMaxSequences) {
    std::uint32_t v = unit.be32(at);
    at += 4;
    if (v == kEndOfChanges) break;
    SpuChangeLines range{
        static_cast<std::uint16_t>((v >> 16) & 0xFFF), static_cast<std::uint16_t>(v & 0xFFF), {}};
    for (std::uint32_t n = (v >> 12) & 0xF; n > 0 && at + 6 <= end; --n, at += 6) {
      range.points.push_back({static_cast<std::uint16_t>(unit.be16(at) & 0xFFF),
                              Nibbles(unit, at + 2), Nibbles(unit, at + 4)});
    }
    lines.push_back(std::move(range));
  }
  return lines;
}

// Applies the command at i of a sequence; returns the offset of the next command, or nothing
// at the end of the sequence.
std::optional<std::size_t> ApplyCommand(ByteView unit, std::size_t i, std::uint16_t delay,
                                        bool apply, SpuControl& c) {
  switch (unit.u8(i)) {
    case kForcedStart:
      if (apply) c.forced = true;
      if (!c.start_delay) c.start_delay = delay;
      return i + 1;
    case kStartDisplay:
      if (!c.start_delay) c.start_delay = delay;
      return i + 1;
    case kStopDisplay:
      if (!c.stop_delay) c.stop_delay = delay;
      return i + 1;
    case kSetColor:
      if (apply) c.colors = Nibbles(unit, i + 1);
      return i + 3;
    case kSetContrast:
      if (apply) c.contrast = Nibbles(unit, i + 1);
      return i + 3;
    case kSetArea:
      if (apply) {
        c.has_area = true;
        c.x0 = static_cast<std::uint16_t>(unit.be16(i + 1) >> 4);
        c.x1 = static_cast<std::uint16_t>(unit.be16(i + 2) & 0xFFF);
        c.y0 = static_cast<std::uint16_t>(unit.be16(i + 4) >> 4);
        c.y1 = static_cast<std::uint16_t>(unit.be16(i + 5) & 0xFFF);
      }
      return i + 7;
    case kSetFields:
      if (apply) {
        c.top_field = unit.be16(i + 1);
        c.bottom_field = unit.be16(i + 3);
      }
      return i + 5;
    case kChangeColorContrast: {
      std::size_t size = unit.be16(i + 1);
      if (size < 2) return std::nullopt;
      if (apply) c.changes = DecodeChanges(unit, i + 3, i + 1 + size);
      return i + 1 + size;
    }
    default:  // kEnd, or a code no sequence may hold: the sequence ends here
      return std::nullopt;
  }
}

}  // namespace

SpuControl DecodeSpuControl(ByteView whole) {
  SpuControl c;
  c.size = whole.be16(0);
  ByteView unit = whole.sub(0, c.size);
  std::size_t at = unit.be16(2);
  for (int n = 0; n < kMaxSequences && unit.contains(at, 4); ++n) {
    bool apply = !c.start_delay;
    std::uint16_t delay = unit.be16(at);
    std::optional<std::size_t> i = at + 4;
    while (i && *i < unit.size() && unit.u8(*i) != kEnd)
      i = ApplyCommand(unit, *i, delay, apply, c);
    std::size_t next = unit.be16(at + 2);
    if (next <= at) break;  // the last sequence points at itself
    at = next;
  }
  return c;
}

namespace {

// Reads the run-length codes of one field, a nibble at a time.
class NibbleReader {
 public:
  NibbleReader(ByteView data, std::size_t offset, std::size_t end)
      : data_(data.sub(0, end)), nibble_(offset * 2) {}
  bool past_end() const { return nibble_ >= data_.size() * 2; }
  std::uint32_t Get() {
    std::uint8_t b = data_.u8(nibble_ / 2);
    std::uint32_t v = (nibble_ % 2 == 0) ? b >> 4 : b & 0x0F;
    ++nibble_;
    return v;
  }
  void Align() { nibble_ += nibble_ % 2; }
  // One code of 4, 8, 12 or 16 bits: its run length in bits 15-2, its pixel value in 1-0.
  std::uint32_t Code() {
    std::uint32_t v = Get();
    if (v >= 0x4) return v;
    v = (v << 4) | Get();
    if (v >= 0x10) return v;
    v = (v << 4) | Get();
    if (v >= 0x40) return v;
    return (v << 4) | Get();
  }

 private:
  ByteView data_;
  std::size_t nibble_;
};

// A field's data ends where the other field's data or the control sequences begin, when they
// lie after it; else at the end of the unit.
std::size_t FieldEnd(ByteView unit, std::size_t field, std::size_t other) {
  std::size_t end = unit.size();
  for (std::size_t next : {other, std::size_t{unit.be16(2)}}) {
    if (next > field && next < end) end = next;
  }
  return end;
}

void DecodeLine(NibbleReader& reader, std::uint8_t* row, std::uint32_t width) {
  std::uint32_t x = 0;
  while (x < width && !reader.past_end()) {
    std::uint32_t code = reader.Code();
    std::uint32_t run = code >> 2;
    if (run == 0 || run > width - x) run = width - x;  // 0: to the end of the line
    std::fill(row + x, row + x + run, static_cast<std::uint8_t>(code & 3));
    x += run;
  }
  reader.Align();
}

}  // namespace

std::vector<std::uint8_t> DecodeSpuPixels(ByteView whole, const SpuControl& control) {
  ByteView unit = whole.sub(0, control.size);
  std::uint32_t width = control.width(), height = control.height();
  std::vector<std::uint8_t> pixels(std::size_t{width} * height, 0);
  std::size_t top = control.top_field, bottom = control.bottom_field;
  NibbleReader fields[2] = {{unit, top, FieldEnd(unit, top, bottom)},
                            {unit, bottom, FieldEnd(unit, bottom, top)}};
  for (std::uint32_t y = 0; y < height; ++y) {
    DecodeLine(fields[y % 2], pixels.data() + std::size_t{y} * width, width);
  }
  return pixels;
}

namespace {

// The codes in force at a screen position: the last change point at or left of it on a line
// a change range covers, else the unit's own.
struct Codes {
  const SpuCodes* colors;
  const SpuCodes* contrast;
};
Codes CodesAt(const SpuControl& c, const SpuHighlight* h, std::uint32_t line,
              std::uint32_t column) {
  if (h && line >= h->y0 && line <= h->y1 && column >= h->x0 && column <= h->x1)
    return {&h->colors, &h->contrast};
  Codes codes{&c.colors, &c.contrast};
  for (const SpuChangeLines& range : c.changes) {
    if (line < range.first_line || line > range.last_line) continue;
    for (const SpuChangePoint& p : range.points) {
      if (p.column <= column) codes = {&p.colors, &p.contrast};
    }
  }
  return codes;
}

}  // namespace

SpuHighlight HighlightCodes(std::uint32_t entry) {
  auto nibbles = [](std::uint32_t v) {
    return SpuCodes{static_cast<std::uint8_t>(v & 0xF), static_cast<std::uint8_t>((v >> 4) & 0xF),
                    static_cast<std::uint8_t>((v >> 8) & 0xF),
                    static_cast<std::uint8_t>((v >> 12) & 0xF)};
  };
  SpuHighlight h;
  h.colors = nibbles(entry >> 16);
  h.contrast = nibbles(entry & 0xFFFF);
  return h;
}

namespace {

// The four pixel values in colour under one set of codes.
std::array<std::array<std::uint8_t, 4>, 4> Colours(const Codes& codes,
                                                   const std::array<Rgb, 16>& palette) {
  std::array<std::array<std::uint8_t, 4>, 4> out{};
  for (std::size_t v = 0; v < 4; ++v) {
    Rgb rgb = palette[(*codes.colors)[v]];
    out[v] = {rgb.r, rgb.g, rgb.b, static_cast<std::uint8_t>(17 * (*codes.contrast)[v])};
  }
  return out;
}

}  // namespace

RgbaImage RenderSpu(ByteView unit, const SpuControl& control, const std::array<Rgb, 16>& palette,
                    const SpuHighlight* highlight) {
  RgbaImage image{control.width(), control.height(), {}};
  std::vector<std::uint8_t> pixels = DecodeSpuPixels(unit, control);
  image.rgba.resize(pixels.size() * 4);
  bool uniform = control.changes.empty() && !highlight;
  auto plain = Colours({&control.colors, &control.contrast}, palette);
  std::uint8_t* out = image.rgba.data();
  const std::uint8_t* in = pixels.data();
  for (std::uint32_t y = 0; y < image.height; ++y) {
    for (std::uint32_t x = 0; x < image.width; ++x, ++in, out += 4) {
      // A copy: the colours of a changed area are a temporary table.
      const auto c = uniform ? plain[*in]
                             : Colours(CodesAt(control, highlight, control.y0 + y, control.x0 + x),
                                       palette)[*in];
      std::copy(c.begin(), c.end(), out);
    }
  }
  return image;
}

}  // namespace tarvex::picture
