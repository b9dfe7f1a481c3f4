#include "disc/attributes.h"

#include <cstdio>

namespace tarvex {

namespace {

std::uint8_t Bcd(std::uint8_t b) {
  return static_cast<std::uint8_t>((b >> 4) * 10 + (b & 15));
}

}  // namespace

std::optional<std::string> SpecifiedLanguage(std::uint8_t first, std::uint8_t second) {
  auto letter = [](std::uint8_t c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  if (!letter(first) || !letter(second)) return std::nullopt;
  return std::string{static_cast<char>(first), static_cast<char>(second)};
}

std::uint64_t PlaybackTime::Milliseconds() const {
  std::uint64_t ms = ((std::uint64_t{hours} * 60 + minutes) * 60 + seconds) * 1000;
  if (rate_code == 3) ms += std::uint64_t{frames} * 100000 / 2997;
  if (rate_code == 1) ms += std::uint64_t{frames} * 1000 / 25;
  return ms;
}

std::uint64_t PlaybackTime::Frames() const {
  std::uint64_t rate = rate_code == 1 ? 25 : 30;
  return ((std::uint64_t{hours} * 60 + minutes) * 60 + seconds) * rate + frames;
}

std::uint64_t PlaybackTime::Ticks() const {
  if (rate_code == 1) return Frames() * 3600;
  if (rate_code == 3) return Frames() * 3003;
  return ((std::uint64_t{hours} * 60 + minutes) * 60 + seconds) * 90000;
}

std::string PlaybackTime::Text() const {
  return MillisecondsText(Milliseconds());
}

std::string MillisecondsText(std::uint64_t ms) {
  char buf[48];
  std::snprintf(
      buf, sizeof buf, "%02llu:%02llu:%02llu.%03llu", static_cast<unsigned long long>(ms / 3600000),
      static_cast<unsigned long long>(ms / 60000 % 60),
      static_cast<unsigned long long>(ms / 1000 % 60), static_cast<unsigned long long>(ms % 1000));
  return buf;
}

PlaybackTime DecodePlaybackTime(ByteView four) {
  PlaybackTime t;
  t.hours = Bcd(four.u8(0));
  t.minutes = Bcd(four.u8(1));
  t.seconds = Bcd(four.u8(2));
  std::uint8_t f = four.u8(3);
  t.frames = static_cast<std::uint8_t>(((f >> 4) & 3) * 10 + (f & 15));
  t.rate_code = static_cast<std::uint8_t>(f >> 6);
  return t;
}

bool VideoAttributes::wide() const {
  return std::string_view(aspect) == "16:9";
}

VideoAttributes DecodeVideoAttributes(ByteView two) {
  VideoAttributes v;
  std::uint8_t b0 = two.u8(0), b1 = two.u8(1);
  v.mpeg2 = (b0 >> 6) == 1;
  std::uint8_t format = (b0 >> 4) & 3;
  v.standard = format == 0 ? "NTSC" : format == 1 ? "PAL" : "?";
  std::uint8_t aspect = (b0 >> 2) & 3;
  v.aspect = aspect == 0 ? "4:3" : aspect == 3 ? "16:9" : "?";
  v.permitted_display = b0 & 3;
  bool pal = format == 1;
  v.frame_rate = pal ? 25.0 : 29.97;
  std::uint32_t full = pal ? 576 : 480;
  // Byte 1: line 21 closed captions (bits 7-6), a reserved bit, the source picture resolution
  // (bits 5-3), letterboxed (bit 2), a reserved bit, film (bit 0).
  v.resolution = (b1 >> 3) & 7;
  switch (v.resolution) {
    case 0:
      v.width = 720;
      v.height = full;
      break;
    case 1:
      v.width = 704;
      v.height = full;
      break;
    case 2:
      v.width = 352;
      v.height = full;
      break;
    case 3:
      v.width = 352;
      v.height = full / 2;
      break;
    default:  // reserved
      break;
  }
  v.letterboxed = (b1 & 4) != 0;
  v.film = (b1 & 1) != 0;
  return v;
}

AudioAttributes DecodeAudioAttributes(ByteView eight) {
  AudioAttributes a;
  std::uint8_t b0 = eight.u8(0), b1 = eight.u8(1);
  a.coding = b0 >> 5;
  switch (a.coding) {
    case 0:
      a.format = "ac3";
      break;
    case 2:
      a.format = "mpeg1";
      break;
    case 3:
      a.format = "mpeg2";
      break;
    case 4:
      a.format = "lpcm";
      break;
    case 6:
      a.format = "dts";
      break;
    case 7:
      a.format = "sdds";
      break;
    default:
      a.format = "unknown";
      break;
  }
  a.multichannel_extension = (b0 & 0x10) != 0;
  a.application_mode = b0 & 3;
  a.quantization = b1 >> 6;
  a.frequency = ((b1 >> 4) & 3) == 1 ? 96000 : 48000;
  a.channels = (b1 & 7) + 1u;
  a.language = SpecifiedLanguage(eight.u8(2), eight.u8(3));
  a.code_extension = eight.u8(5);
  return a;
}

SubpictureAttributes DecodeSubpictureAttributes(ByteView six) {
  SubpictureAttributes s;
  s.coding = six.u8(0) >> 5;
  s.language = SpecifiedLanguage(six.u8(2), six.u8(3));
  s.code_extension = six.u8(5);
  return s;
}

std::optional<std::uint8_t> AudioStreamId(std::uint8_t coding, std::uint32_t n) {
  n &= 7;
  switch (coding) {
    case 0:
      return static_cast<std::uint8_t>(0x80 + n);
    case 2:
    case 3:
      return static_cast<std::uint8_t>(0xC0 + n);
    case 4:
      return static_cast<std::uint8_t>(0xA0 + n);
    case 6:
      return static_cast<std::uint8_t>(0x88 + n);
    case 7:
      return static_cast<std::uint8_t>(0x90 + n);
    default:
      return std::nullopt;
  }
}

std::optional<std::uint32_t> AudioControlNumber(std::uint16_t control) {
  if ((control & 0x8000) == 0) return std::nullopt;
  return (control >> 8) & 0x1F;
}

SubpictureControl DecodeSubpictureControl(std::uint32_t control) {
  SubpictureControl c;
  c.available = (control & 0x80000000u) != 0;
  c.standard = (control >> 24) & 0x1F;
  c.wide = (control >> 16) & 0x1F;
  c.letterbox = (control >> 8) & 0x1F;
  c.pan_scan = control & 0x1F;
  return c;
}

std::vector<SubpictureStream> SubpictureStreamIds(const VideoAttributes& video,
                                                  const SubpictureControl& c) {
  if (!c.available) return {};
  if (!video.wide()) return {{"4:3", 0x20 + c.standard}};
  std::vector<SubpictureStream> ids = {{"wide", 0x20 + c.wide}};
  // Permitted display formats of a 16:9 picture: 0 both, 1 pan-scan only, 2 letterbox only.
  std::uint8_t permitted = video.permitted_display;
  if (permitted == 0 || permitted == 2) ids.push_back({"letterbox", 0x20 + c.letterbox});
  if (permitted == 0 || permitted == 1) ids.push_back({"pan-scan", 0x20 + c.pan_scan});
  return ids;
}

std::string StreamIdText(std::uint32_t id) {
  char buf[8];
  std::snprintf(buf, sizeof buf, "0x%02x", id & 0xFF);
  return buf;
}

}  // namespace tarvex
