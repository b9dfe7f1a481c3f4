// Where the elementary-stream bytes of one 2048-byte pack lie. Every locator reads the record
// through ByteView, so offsets taken from a damaged header never read outside the record;
// the lengths are the ones the PES header implies and may run past the record or be negative.
// PayloadBytes() turns a start and such a length into the bytes that really lie inside the
// record: a payload running past the end of the record is cut at the end of the record, and a
// negative length (or a start at or past the end) gives no bytes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/bytes.h"

namespace tarvex {

// An audio pack's payload and its stream number (0..7, the low three bits of the stream id or
// sub-stream id). An unknown private sub-stream leaves start and length as they were, so the
// caller keeps one AudioPayload for a whole extraction run (zero before the first pack).
struct AudioPayload {
  std::uint32_t start = 0;   // byte offset of the payload in the record
  std::int32_t length = 0;   // 20 + PES_packet_length - start
  std::uint32_t stream = 0;  // slot number 0..7
};
void LocateAudioPayload(ByteView record, AudioPayload& payload);

// The linear PCM stream parameters of an LPCM pack (sub-streams 0xA0..0xA7). The illegal
// quantization and frequency codes give the value 2, which goes into the WAV header as it is.
// For any other sub-stream the parameters are left as they were.
struct LpcmParameters {
  std::uint32_t bits_per_sample = 0;     // 16, 20, 24 or 2
  std::uint32_t channels = 0;            // 1..8
  std::uint32_t sampling_frequency = 0;  // Hz: 48000, 96000 or 2
};
void ReadLpcmParameters(ByteView record, LpcmParameters& parameters);

// A video pack's payload. The header walk adds up the optional PES fields from the flags; the
// header data length byte is not used and stuffing is not skipped, so 0xFF stuffing bytes are
// part of the payload.
struct VideoPayload {
  std::uint32_t start = 0;
  std::int32_t length = 0;  // PES_packet_length - (start - 20)
};
VideoPayload LocateVideoPayload(ByteView record);

// A sub-picture pack's payload (after the sub_stream_id) and whether the pack carries a PTS,
// which marks the start of a new sub-picture unit.
struct SubPicturePayload {
  std::uint32_t start = 0;
  std::int32_t length = 0;  // PES_packet_length - (start - 20)
  bool has_pts = false;
};
SubPicturePayload LocateSubPicturePayload(ByteView record);

// The part of a payload that lies inside the record.
struct ByteRange {
  std::size_t offset = 0;
  std::size_t size = 0;
};
ByteRange PayloadBytes(std::size_t record_size, std::uint32_t start, std::int32_t length);

}  // namespace tarvex
