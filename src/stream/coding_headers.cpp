#include "stream/coding_headers.h"

#include <array>

namespace tarvex {

namespace {

constexpr std::uint32_t kSequenceHeaderCode = 0x1B3;
constexpr std::uint32_t kExtensionStartCode = 0x1B5;
constexpr std::uint8_t kSequenceExtensionId = 0x1;
constexpr std::size_t kSequenceHeaderBytes = 12;
constexpr std::size_t kAc3HeaderBytes = 8;   // up to lfeon
constexpr std::size_t kDtsHeaderBytes = 11;  // up to LFF
constexpr std::size_t kLpcmHeaderBytes = 7;  // sub-stream id to dynamic range
constexpr std::size_t kMpegAudioHeaderBytes = 4;
constexpr int kMpegAudioCandidates = 4;  // sync words tried per pack

// n bits (at most 32) from bit `bit` on, most significant first.
std::uint32_t Bits(ByteView v, std::size_t bit, std::size_t n) {
  std::uint32_t value = 0;
  for (std::size_t i = bit; i < bit + n; ++i)
    value = (value << 1) | ((v.u8(i / 8) >> (7 - i % 8)) & 1u);
  return value;
}

}  // namespace

SequenceHeader ReadSequenceHeader(ByteView at) {
  SequenceHeader h;
  const std::uint32_t b4 = at.u8(4), b5 = at.u8(5), b6 = at.u8(6), b7 = at.u8(7);
  const std::uint32_t b8 = at.u8(8), b9 = at.u8(9), b10 = at.u8(10), b11 = at.u8(11);
  h.width = b4 * 16 + (b5 >> 4);
  h.height = (b5 & 15) * 256 + b6;
  h.aspect_ratio = b7 >> 4;
  h.frame_rate = b7 & 15;
  h.bit_rate = b8 * 1024 + b9 * 4 + (b10 >> 6);
  h.vbv_buffer = (b10 & 31) * 32 + (b11 >> 3);
  return h;
}

std::optional<SequenceExtension> ReadSequenceExtension(ByteView at) {
  if (at.be32(0) != kExtensionStartCode || (at.u8(4) >> 4) != kSequenceExtensionId) {
    return std::nullopt;
  }
  SequenceExtension e;
  e.profile = at.u8(4) & 0x0F;
  e.level_byte = at.u8(5);
  e.progressive = (e.level_byte & 0x08) != 0;
  return e;
}

std::uint32_t Ac3Frame::frequency() const {
  static constexpr std::array<std::uint32_t, 4> kRates = {48000, 44100, 32000, 0};
  return kRates[fscod & 3];
}

std::uint32_t Ac3Frame::channels() const {
  static constexpr std::array<std::uint32_t, 8> kFull = {2, 1, 2, 3, 3, 4, 4, 5};
  return kFull[acmod & 7] + (lfe ? 1 : 0);
}

Ac3Frame ReadAc3Frame(ByteView frame) {
  Ac3Frame f;
  f.sync = frame.u8(0) == 0x0B && frame.u8(1) == 0x77;
  f.fscod = frame.u8(4) >> 6;
  f.frmsizecod = frame.u8(4) & 0x3F;
  f.bsid = frame.u8(5) >> 3;
  f.bsmod = frame.u8(5) & 7;
  // Bit stream information from byte 6: acmod, then the mix levels and the surround mode its
  // value calls for, then lfeon.
  const std::uint32_t word = frame.be16(6);
  f.acmod = static_cast<std::uint8_t>(word >> 13);
  std::uint32_t bit = 3;
  if ((f.acmod & 1) != 0 && f.acmod != 1) bit += 2;  // cmixlev
  if ((f.acmod & 4) != 0) bit += 2;                  // surmixlev
  if (f.acmod == 2) bit += 2;                        // dsurmod
  f.lfe = ((word >> (15 - bit)) & 1) != 0;
  return f;
}

std::uint32_t LpcmHeader::bits() const {
  static constexpr std::array<std::uint32_t, 4> kBits = {16, 20, 24, 0};
  return kBits[quantization & 3];
}

std::uint32_t LpcmHeader::frequency() const {
  return frequency_code == 0 ? 48000 : frequency_code == 1 ? 96000 : 0;
}

LpcmHeader ReadLpcmHeader(ByteView p) {
  LpcmHeader h;
  const std::uint8_t b4 = p.u8(4), b5 = p.u8(5);
  h.emphasis = b4 >> 7;
  h.mute = (b4 >> 6) & 1;
  h.frame_number = b4 & 0x1F;
  h.quantization = b5 >> 6;
  h.frequency_code = (b5 >> 4) & 3;
  h.channels_code = b5 & 7;
  h.dynamic_range = p.u8(6);
  return h;
}

std::uint32_t MpegAudioHeader::frequency() const {
  static constexpr std::array<std::uint32_t, 4> kMpeg1 = {44100, 48000, 32000, 0};
  return id == 1 ? kMpeg1[frequency_index & 3] : kMpeg1[frequency_index & 3] / 2;
}

MpegAudioHeader ReadMpegAudioHeader(ByteView at) {
  MpegAudioHeader h;
  const std::uint8_t second = at.u8(1), third = at.u8(2);
  h.sync = at.u8(0) == 0xFF && (second & 0xF0) == 0xF0;
  h.id = (second >> 3) & 1;
  h.layer = (second >> 1) & 3;
  h.protection = second & 1;
  h.bitrate_index = third >> 4;
  h.frequency_index = (third >> 2) & 3;
  h.padding = (third >> 1) & 1;
  h.mode = at.u8(3) >> 6;
  return h;
}

std::uint32_t DtsFrame::frequency() const {
  static constexpr std::array<std::uint32_t, 16> kRates = {
      0, 8000, 16000, 32000, 0, 0, 11025, 22050, 44100, 0, 0, 12000, 24000, 48000, 0, 0};
  return kRates[sfreq & 15];
}

std::uint32_t DtsFrame::channels() const {
  static constexpr std::array<std::uint32_t, 16> kChannels = {1, 2, 2, 2, 2, 3, 3, 4,
                                                              4, 5, 6, 6, 6, 7, 8, 8};
  if (amode >= kChannels.size()) return 0;  // user defined
  return kChannels[amode] + (lff == 1 || lff == 2 ? 1 : 0);
}

DtsFrame ReadDtsFrame(ByteView frame) {
  // After the sync word: FTYPE 1, SHORT 5, CPF 1, NBLKS 7, FSIZE 14 bits, then AMODE 6 and
  // SFREQ 4 (bit 60 on), RATE 5, five flags, EXT_AUDIO_ID 3, EXT_AUDIO 1, ASPF 1, LFF 2.
  DtsFrame f;
  f.sync = frame.be32(0) == 0x7FFE8001;
  f.amode = static_cast<std::uint8_t>(Bits(frame, 60, 6));
  f.sfreq = static_cast<std::uint8_t>(Bits(frame, 66, 4));
  f.lff = static_cast<std::uint8_t>(Bits(frame, 85, 2));
  return f;
}

namespace {

// The first start code at or after from, or nothing.
std::optional<std::size_t> NextStartCode(ByteView v, std::size_t from) {
  for (std::size_t i = from; v.contains(i, 4); ++i) {
    if (v.u8(i + 2) > 1) {
      i += 2;  // no start code prefix ends at i, i+1 or i+2
      continue;
    }
    if (v.u8(i) == 0 && v.u8(i + 1) == 0 && v.u8(i + 2) == 1) return i;
  }
  return std::nullopt;
}

std::optional<StreamCoding> VideoCoding(ByteView payload) {
  for (std::optional<std::size_t> at = NextStartCode(payload, 0); at;
       at = NextStartCode(payload, *at + 4)) {
    if (payload.be32(*at) != kSequenceHeaderCode) continue;
    // Complete when the start code after the header (and its quantiser matrices) is in the
    // pack: a sequence extension there makes the stream MPEG-2.
    std::optional<std::size_t> next = NextStartCode(payload, *at + kSequenceHeaderBytes);
    if (!next || !payload.contains(*next, 5)) return std::nullopt;
    StreamCoding c;
    c.kind = StreamCoding::Kind::kVideo;
    c.sequence = ReadSequenceHeader(payload.sub(*at));
    c.mpeg2 = ReadSequenceExtension(payload.sub(*next)).has_value();
    return c;
  }
  return std::nullopt;
}

std::optional<StreamCoding> MpegAudioCoding(ByteView payload) {
  int candidates = 0;
  for (std::size_t i = 0; payload.contains(i, kMpegAudioHeaderBytes); ++i) {
    MpegAudioHeader h = ReadMpegAudioHeader(payload.sub(i));
    if (!h.sync || h.layer == 0 || h.bitrate_index == 15 || h.frequency_index == 3) continue;
    if (++candidates > kMpegAudioCandidates) return std::nullopt;
    // A frame header is taken when another with the same fields (but padding) follows in
    // the pack: a sync pattern inside audio data seldom repeats itself.
    const std::uint32_t fields = payload.be32(i) & 0xFFFFFDC0u;
    for (std::size_t j = i + kMpegAudioHeaderBytes; payload.contains(j, 4); ++j) {
      if ((payload.be32(j) & 0xFFFFFDC0u) != fields) continue;
      StreamCoding c;
      c.kind = StreamCoding::Kind::kMpegAudio;
      c.frequency = h.frequency();
      c.channels = h.channels();
      return c;
    }
  }
  return std::nullopt;
}

// The coding of the AC-3 or DTS frame that a private stream 1 audio pack's first access unit
// pointer names (it counts from the pointer's last byte, 3 bytes after the sub-stream id),
// when the pack holds its header.
template <typename Frame>
std::optional<StreamCoding> FrameCoding(ByteView payload, std::size_t header_bytes,
                                        Frame (*read)(ByteView), StreamCoding::Kind kind) {
  std::uint32_t pointer = payload.be16(2);
  if (pointer == 0 || !payload.contains(3 + pointer, header_bytes)) return std::nullopt;
  Frame f = read(payload.sub(3 + pointer));
  if (!f.sync) return std::nullopt;
  StreamCoding c;
  c.kind = kind;
  c.frequency = f.frequency();
  c.channels = f.channels();
  return c;
}

std::optional<StreamCoding> PrivateAudioCoding(ByteView payload) {
  const std::uint8_t sub = payload.u8(0);
  std::optional<StreamCoding> c;
  if (sub >= 0x80 && sub <= 0x87) {
    c = FrameCoding(payload, kAc3HeaderBytes, ReadAc3Frame, StreamCoding::Kind::kAc3);
  } else if (sub >= 0x88 && sub <= 0x8F) {
    c = FrameCoding(payload, kDtsHeaderBytes, ReadDtsFrame, StreamCoding::Kind::kDts);
  } else if (sub >= 0xA0 && sub <= 0xA7 && payload.contains(0, kLpcmHeaderBytes)) {
    LpcmHeader h = ReadLpcmHeader(payload);
    c = StreamCoding{};
    c->kind = StreamCoding::Kind::kLpcm;
    c->frequency = h.frequency();
    c->channels = h.channels();
    c->bits = h.bits();
  }
  if (c) c->stream = sub;
  return c;
}

}  // namespace

std::optional<StreamCoding> FindStreamCoding(ByteView pack) {
  // The packet after the pack header (behind a system header when there is one), its payload
  // after the PES header, up to the packet's end inside the pack.
  std::size_t at = 14;
  if (pack.be32(at) == 0x1BB) at += 6 + std::size_t{pack.be16(at + 4)};
  const std::uint32_t code = pack.be32(at);
  if ((code >> 8) != 1) return std::nullopt;
  const std::size_t end = at + 6 + pack.be16(at + 4);
  const std::size_t start = at + 9 + pack.u8(at + 8);
  if (start >= end) return std::nullopt;
  ByteView payload = pack.sub(start, end - start);
  const std::uint8_t id = code & 0xFF;
  std::optional<StreamCoding> c;
  if (id >= 0xE0 && id <= 0xEF) c = VideoCoding(payload);
  if (id >= 0xC0 && id <= 0xDF) c = MpegAudioCoding(payload);
  if (id == 0xBD) return PrivateAudioCoding(payload);
  if (c) c->stream = id;
  return c;
}

}  // namespace tarvex
