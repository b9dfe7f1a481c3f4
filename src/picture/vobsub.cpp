#include "picture/vobsub.h"

#include <algorithm>
#include <cstdio>

#include "picture/packets.h"
#include "platform/bytes.h"

namespace tarvex::picture {

namespace {

constexpr std::size_t kPackHeader = 14;
constexpr std::size_t kPesFixed = 9;  // start code, length, flags and header length
constexpr std::size_t kPtsBytes = 5;
constexpr std::size_t kMinPadding = 6;  // a padding packet's start code and length
constexpr std::uint8_t kMuxRate[3] = {0x01, 0x89, 0xC3};  // 25200 x 50 bytes/s, marker bits
constexpr std::uint8_t kVobsubSubstream = 0x20;

// A pack header with SCR base scr (90 kHz) and no extension.
void PackHeader(ByteAppender& a, std::uint64_t scr) {
  a.be32(0x000001BA);
  a.u8(0x44 | ((scr >> 27) & 0x38) | ((scr >> 28) & 0x03));
  a.u8(static_cast<std::uint32_t>(scr >> 20));
  a.u8(0x04 | ((scr >> 12) & 0xF8) | ((scr >> 13) & 0x03));
  a.u8(static_cast<std::uint32_t>(scr >> 5));
  a.u8(0x04 | ((scr << 3) & 0xF8));
  a.u8(0x01);
  for (std::uint8_t b : kMuxRate) a.u8(b);
  a.u8(0xF8);
}

void Pts(ByteAppender& a, std::uint64_t pts) {
  a.u8(0x21 | ((pts >> 29) & 0x0E));
  a.u8(static_cast<std::uint32_t>(pts >> 22));
  a.u8(((pts >> 14) & 0xFE) | 1);
  a.u8(static_cast<std::uint32_t>(pts >> 7));
  a.u8(((pts << 1) & 0xFE) | 1);
}

// One pack holding bytes [at, at + n) of the unit; the first carries the PTS.
void Pack(std::vector<std::uint8_t>& out, ByteView unit, std::size_t at, std::size_t n,
          std::uint64_t pts) {
  bool first = at == 0;
  std::size_t header = first ? kPtsBytes : 0;
  std::size_t room = kSectorSize - kPackHeader - kPesFixed - header - 1;
  std::size_t gap = room - n;
  std::size_t stuffing = gap < kMinPadding ? gap : 0;
  ByteAppender a(out);
  PackHeader(a, pts);
  a.be32(0x000001BD);
  a.be16(static_cast<std::uint32_t>(3 + header + stuffing + 1 + n));
  a.u8(0x81);
  a.u8(first ? 0x80 : 0x00);
  a.u8(static_cast<std::uint32_t>(header + stuffing));
  if (first) Pts(a, pts);
  for (std::size_t i = 0; i < stuffing; ++i) a.u8(0xFF);
  a.u8(kVobsubSubstream);
  a.bytes(unit.sub(at, n));
  if (gap >= kMinPadding) {
    a.be32(0x000001BE);
    a.be16(static_cast<std::uint32_t>(gap - kMinPadding));
    for (std::size_t i = kMinPadding; i < gap; ++i) a.u8(0xFF);
  }
}

std::uint64_t PtsOf(const SubpictureUnitFound& u) {
  return u.pts_ticks > 0 ? static_cast<std::uint64_t>(u.pts_ticks) : 0;
}

std::string Timestamp(std::uint64_t ticks) {
  std::uint64_t ms = (ticks * 1000 + 45000) / 90000;
  char text[40];
  std::snprintf(text, sizeof text, "%02llu:%02llu:%02llu:%03llu",
                static_cast<unsigned long long>(ms / 3600000),
                static_cast<unsigned long long>(ms / 60000 % 60),
                static_cast<unsigned long long>(ms / 1000 % 60),
                static_cast<unsigned long long>(ms % 1000));
  return text;
}

// Appends one unit's packs; returns where they start.
std::size_t AppendUnit(std::vector<std::uint8_t>& out, const SubpictureUnitFound& u) {
  std::size_t start = out.size();
  ByteView unit(u.bytes);
  std::size_t at = 0;
  do {
    std::size_t room = kSectorSize - kPackHeader - kPesFixed - (at == 0 ? kPtsBytes : 0) - 1;
    std::size_t n = std::min(room, unit.size() - at);
    Pack(out, unit, at, n, PtsOf(u));
    at += n;
  } while (at < unit.size());
  return start;
}

}  // namespace

std::vector<std::uint8_t> VobsubSub(const SubpictureTrack& track) {
  std::vector<std::uint8_t> out;
  for (const SubpictureUnitFound& u : track.units) AppendUnit(out, u);
  return out;
}

std::string VobsubIdx(const SubpictureTrack& track) {
  std::string text = "# VobSub index file, v7 (do not modify this line!)\n";
  text += "size: " + std::to_string(track.video_width) + "x" + std::to_string(track.video_height) +
          "\n";
  text += "palette: ";
  for (std::size_t i = 0; i < track.rgb.size(); ++i) text += (i ? ", " : "") + RgbHex(track.rgb[i]);
  text += "\nlangidx: 0\n";
  text += "id: " + track.language.value_or("--") + ", index: 0\n";
  std::vector<std::uint8_t> scratch;
  for (const SubpictureUnitFound& u : track.units) {
    char pos[32];
    std::snprintf(pos, sizeof pos, "%09zx", AppendUnit(scratch, u));
    text += "timestamp: " + Timestamp(PtsOf(u)) + ", filepos: " + pos + "\n";
  }
  return text;
}

namespace {

bool WriteFile(const std::string& path, ByteView bytes, std::string& error) {
  std::FILE* f = std::fopen(path.c_str(), "wb");
  bool ok = f && std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size();
  if (f && std::fclose(f) != 0) ok = false;
  if (!ok) error = path + ": cannot be written";
  return ok;
}

}  // namespace

bool WriteVobsub(const SubpictureTrack& track, const std::string& base, std::string& error) {
  std::string idx = VobsubIdx(track);
  std::vector<std::uint8_t> sub = VobsubSub(track);
  return WriteFile(base + ".idx",
                   ByteView(reinterpret_cast<const std::uint8_t*>(idx.data()), idx.size()),
                   error) &&
         WriteFile(base + ".sub", sub, error);
}

}  // namespace tarvex::picture
