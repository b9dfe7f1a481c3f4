#include "stream/sector_type.h"

namespace tarvex {

namespace {

constexpr std::uint32_t kSystemHeader = 0x1BB;
constexpr std::uint32_t kPrivateStream1 = 0x1BD;
constexpr std::uint32_t kPaddingStream = 0x1BE;
constexpr std::uint32_t kPrivateStream2 = 0x1BF;

bool IsVideoStream(std::uint32_t code) {
  return code >= 0x1E0 && code <= 0x1EF;
}
bool IsMpegAudioStream(std::uint32_t code) {
  return code >= 0x1C0 && code <= 0x1DF;
}

// Classifies a private stream 1 packet by its sub-stream id.
std::int32_t SubStreamType(ByteView packet, std::uint32_t& stream_number) {
  std::uint8_t s = PrivateSubstreamId(packet);
  if (s == 0x48 || s == 0xFF) return kSectorIllegal;
  stream_number = s;
  if (s >= 0x20 && s <= 0x2F) return kSectorSubPicture;
  if (s >= 0x80 && s <= 0x87) return kSectorAc3;
  if (s == 0x88) return kSectorDts;
  if (s == 0x90) return kSectorSdds;
  if (s >= 0xA0 && s <= 0xA7) return kSectorLpcm;
  stream_number = 0;
  return kSectorIllegal;
}

// The packet behind a system header: its start code is at offset 38.
std::int32_t TypeBehindSystemHeader(ByteView record, std::uint32_t& stream_number) {
  std::uint32_t d = record.be32(38);
  if (d == kPaddingStream) return kSectorPadding;
  if (IsVideoStream(d)) {
    stream_number = d & 0xFF;
    return kSectorVideo;
  }
  if (IsMpegAudioStream(d)) {
    stream_number = d & 0xFF;
    return kSectorMpegAudio;
  }
  if (d == kPrivateStream2) {
    stream_number = 0;
    return record.u8(44) <= 1 ? kSectorNavigation : kSectorIllegal;
  }
  // The private stream is taken at offset 28 here, not 38.
  if (d == kPrivateStream1) return SubStreamType(record.sub(28), stream_number);
  return kSectorIllegal;
}

}  // namespace

std::int32_t GetSectorType(ByteView record, std::uint32_t& stream_number) {
  std::uint32_t c = record.be32(14);
  if (c == kSystemHeader) return TypeBehindSystemHeader(record, stream_number);
  if (c == kPrivateStream1) return SubStreamType(record.sub(14), stream_number);
  if (c == kPaddingStream) return kSectorPadding;
  if (IsVideoStream(c)) {
    stream_number = c & 0xFF;
    return kSectorVideo;
  }
  if (c == kPrivateStream2) return record.u8(20) <= 1 ? kSectorNavigation : kSectorIllegal;
  if (IsMpegAudioStream(c)) {
    stream_number = c & 0xFF;
    return kSectorMpegAudio;
  }
  return kSectorIllegal;
}

std::uint8_t PrivateSubstreamId(ByteView p) {
  std::size_t i = 9;
  if ((p.u8(7) & 0xC0) != 0) {
    if ((p.u8(9) & 0xF0) == 0x20) i = 14;
    if ((p.u8(i) & 0xE0) == 0) i += 1;
    if ((p.u8(i) & 0xC0) == 0x40) i += 2;
  }
  for (int skipped = 0; skipped < 7 && p.u8(i) == 0xFF; ++skipped) ++i;
  return p.u8(i);
}

std::uint32_t ScrBase(ByteView b) {
  std::uint32_t b4 = b.u8(0), b5 = b.u8(1), b6 = b.u8(2), b7 = b.u8(3), b8 = b.u8(4);
  std::uint32_t byte3 = ((((b4 & 0x18) >> 1) | (b4 & 0x03)) << 4 | (b5 >> 4)) & 0xFF;
  std::uint32_t byte2 = ((b5 << 4) | (b6 >> 4)) & 0xFF;
  std::uint32_t byte1 = ((((b6 & 0x08) >> 1) | (b6 & 0x03)) << 5 | (b7 >> 3)) & 0xFF;
  std::uint32_t byte0 = ((b7 << 5) | (b8 >> 3)) & 0xFF;
  return (byte3 << 24) | (byte2 << 16) | (byte1 << 8) | byte0;
}

std::uint32_t ScrExtension(ByteView b) {
  return ((b.u8(4) & 0x03u) << 7) | (b.u8(5) >> 1);
}

std::uint32_t DecodePts(ByteView f) {
  std::uint32_t b0 = f.u8(0), b1 = f.u8(1), b2 = f.u8(2), b3 = f.u8(3), b4 = f.u8(4);
  // Bits 32..30 come from b0 bits 3..1; bit 32 falls off the 32-bit result.
  return (((b0 >> 1) & 0x07u) << 30) | (b1 << 22) | ((b2 >> 1) << 15) | (b3 << 7) | (b4 >> 1);
}

std::uint32_t PesPts(ByteView record) {
  std::uint8_t flags = record.u8(21) & 0xC0;
  return flags == 0xC0 || flags == 0x80 ? DecodePts(record.sub(23)) : 0;
}

std::uint32_t PesDts(ByteView record) {
  return (record.u8(21) & 0xC0) == 0xC0 ? DecodePts(record.sub(28)) : 0;
}

namespace {

constexpr std::size_t kVideoScanLast = 2044;  // last position of a 4-byte start code

// A group of pictures header at i: remembered, and the scan goes on.
void NoteGroupOfPictures(ByteView buf, std::size_t i, VideoScan& scan) {
  scan.gop_found = 1;
  scan.gop_position = static_cast<std::int32_t>(i);
  scan.gop_closed = (buf.u8(i + 4) & 0x80) != 0;
  std::uint32_t b4 = buf.u8(i + 4), b5 = buf.u8(i + 5), b6 = buf.u8(i + 6), b7 = buf.u8(i + 7);
  scan.gop_time = ((b4 & 0x7C) >> 2) * 324000000u +
                  (((b4 & 3) << 6) | ((b5 & 0xFC) >> 2)) * 5400000u +
                  (((b5 & 1) << 7) | ((b6 & 0xFC) >> 2)) * 90000u +
                  (((b6 & 3) << 6) | ((b7 & 0xFC) >> 2)) * 3003u;
}

// A picture header at i: frame type and number.
void NotePicture(ByteView buf, std::size_t i, VideoScan& scan) {
  scan.frame_type = (buf.u8(i + 5) & 0x38) >> 3;
  scan.frame_number = static_cast<std::int32_t>(static_cast<std::uint32_t>(buf.s8(i + 4)) << 2) |
                      ((buf.u8(i + 5) & 0xC0) >> 6);
}

}  // namespace

void ScanVideoHeaders(ByteView buf, VideoScan& scan) {
  if (buf.size() < kVideoScanLast + 4) {
    for (std::size_t i = 0; i <= kVideoScanLast; ++i) {
      std::uint32_t w = buf.be32(i);
      if (w == 0x1B8) {
        NoteGroupOfPictures(buf, i, scan);
      } else if (w == 0x100) {
        NotePicture(buf, i, scan);
        return;
      }
    }
    return;
  }
  // The same scan, skipping positions that cannot hold 00 00 01 (this runs for every video
  // record of a listing, so it must be quick). With b the third byte at position i: b > 1
  // rules out i, i+1 and i+2; b = 0 rules out i only; b = 1 rules out i+1 and i+2.
  const std::uint8_t* d = buf.data();
  std::size_t i = 0;
  while (i <= kVideoScanLast) {
    const std::uint8_t b = d[i + 2];
    if (b == 0) {
      i += 1;
      continue;
    }
    if (b == 1 && d[i] == 0 && d[i + 1] == 0) {
      if (d[i + 3] == 0xB8) {
        NoteGroupOfPictures(buf, i, scan);
      } else if (d[i + 3] == 0x00) {
        NotePicture(buf, i, scan);
        return;
      }
    }
    i += 3;
  }
}

}  // namespace tarvex
