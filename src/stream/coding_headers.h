// The coding parameters in the headers of a pack's elementary stream, read field by field:
// the MPEG video sequence header and sequence extension, the AC-3 syncframe, the LPCM private
// header, the MPEG audio and DTS frame headers. The detail views print these fields; verify
// compares them with the attributes the IFOs declare.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/bytes.h"

namespace tarvex {

// A sequence header, at its start code (00 00 01 B3).
struct SequenceHeader {
  std::uint32_t width = 0, height = 0;
  std::uint32_t aspect_ratio = 0;  // aspect_ratio_information (MPEG-1: pel aspect ratio)
  std::uint32_t frame_rate = 0;    // frame_rate_code: 3 = 25, 4 = 29.97 frames/s
  std::uint32_t bit_rate = 0;      // units of 400 bit/s
  std::uint32_t vbv_buffer = 0;    // vbv_buffer_size_value
};
SequenceHeader ReadSequenceHeader(ByteView at);

// A sequence extension, at its extension start code (00 00 01 B5, identifier 1), or nothing
// when there is none there.
struct SequenceExtension {
  std::uint8_t profile = 0;     // profile_and_level_indication bits 7-4 (escape, profile)
  std::uint8_t level_byte = 0;  // the byte after: level in bits 7-4
  bool progressive = false;     // progressive_sequence
};
std::optional<SequenceExtension> ReadSequenceExtension(ByteView at);

// An AC-3 syncframe, at its sync word.
struct Ac3Frame {
  bool sync = false;  // 0B 77
  std::uint8_t fscod = 0, frmsizecod = 0;
  std::uint8_t bsid = 0, bsmod = 0, acmod = 0;
  bool lfe = false;
  std::uint32_t frequency() const;  // Hz; 0 for the reserved code
  std::uint32_t channels() const;   // full-bandwidth channels of acmod, and the LFE channel
};
Ac3Frame ReadAc3Frame(ByteView frame);

// The private header of an LPCM pack, at its sub-stream id.
struct LpcmHeader {
  std::uint8_t emphasis = 0, mute = 0, frame_number = 0;
  std::uint8_t quantization = 0;    // 0 16 bits, 1 20 bits, 2 24 bits
  std::uint8_t frequency_code = 0;  // 0 48 kHz, 1 96 kHz
  std::uint8_t channels_code = 0;   // channels - 1
  std::uint8_t dynamic_range = 0;
  std::uint32_t bits() const;       // 0 for the reserved code
  std::uint32_t frequency() const;  // Hz; 0 for a code DVD-Video does not use
  std::uint32_t channels() const { return channels_code + 1u; }
};
LpcmHeader ReadLpcmHeader(ByteView private_header);

// An MPEG audio frame header, at its sync word.
struct MpegAudioHeader {
  bool sync = false;       // twelve bits set
  std::uint8_t id = 0;     // 1 MPEG-1, 0 MPEG-2 at half the sampling frequencies
  std::uint8_t layer = 0;  // layer code: 3 layer I, 2 layer II, 1 layer III
  std::uint8_t protection = 0;
  std::uint8_t bitrate_index = 0, frequency_index = 0, padding = 0;
  std::uint8_t mode = 0;            // 3 single channel
  std::uint32_t frequency() const;  // Hz; 0 for the reserved index
  std::uint32_t channels() const { return mode == 3 ? 1 : 2; }
};
MpegAudioHeader ReadMpegAudioHeader(ByteView at);

// A DTS core frame header (16-bit big-endian), at its sync word.
struct DtsFrame {
  bool sync = false;  // 7F FE 80 01
  std::uint8_t amode = 0, sfreq = 0, lff = 0;
  std::uint32_t frequency() const;  // Hz; 0 for an invalid code
  std::uint32_t channels() const;   // channels of amode and the LFE channel; 0 when unknown
};
DtsFrame ReadDtsFrame(ByteView frame);

// What the first complete header of a stream in one pack says of its coding.
struct StreamCoding {
  enum class Kind : std::uint8_t { kVideo, kAc3, kDts, kLpcm, kMpegAudio };
  Kind kind = Kind::kVideo;
  std::uint8_t stream = 0;  // stream id, or the sub-stream id of private stream 1
  // Video.
  bool mpeg2 = false;  // a sequence extension follows the sequence header
  SequenceHeader sequence;
  // Audio.
  std::uint32_t frequency = 0, channels = 0;
  std::uint32_t bits = 0;  // LPCM quantization
};

// The coding of the stream of a pack's packet (video 0xE0-0xEF, MPEG audio 0xC0-0xDF, AC-3,
// DTS or LPCM in private stream 1), when the pack holds a complete header of it: a sequence
// header with the start code after it, the frame an AC-3 or DTS pack's first access unit
// pointer names, the private header of an LPCM pack, an MPEG audio frame header whose like
// follows in the same pack. Nothing for a pack without one (the next pack of the stream may
// have one).
std::optional<StreamCoding> FindStreamCoding(ByteView pack);

}  // namespace tarvex
