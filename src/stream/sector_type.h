// Sector classification of program-stream records and the clock fields of pack and PES
// headers. A record is one 2048-byte pack; its 14-byte pack header has no stuffing on DVD.
#pragma once

#include <cstdint>

#include "platform/bytes.h"

namespace tarvex {

enum SectorType : std::int32_t {
  kSectorIllegal = 0,
  kSectorVideo = 1,
  kSectorNavigation = 2,
  kSectorSubPicture = 3,
  kSectorAc3 = 4,
  kSectorDts = 5,
  kSectorSdds = 6,
  kSectorLpcm = 7,
  kSectorMpegAudio = 8,
  kSectorPadding = 9,
};

// Classifies a record. Sets stream_number to the stream id (video, MPEG audio) or the private
// stream 1 sub-stream id, to 0 for a navigation pack behind a system header and for an
// unrecognised sub-stream, and leaves it unchanged otherwise.
std::int32_t GetSectorType(ByteView record, std::uint32_t& stream_number);

// The byte after the PES header of a private stream 1 packet that starts at packet[0].
std::uint8_t PrivateSubstreamId(ByteView packet);

// Bits 31..0 of the 33-bit SCR base and the 9-bit SCR extension; pack points at byte 4 of the
// pack header.
std::uint32_t ScrBase(ByteView pack);
std::uint32_t ScrExtension(ByteView pack);

// A 5-byte PTS or DTS field in 90 kHz ticks (bit 32 of the time stamp is lost).
std::uint32_t DecodePts(ByteView field);

// PTS and DTS of the PES packet at offset 14 of the record; 0 when absent.
std::uint32_t PesPts(ByteView record);
std::uint32_t PesDts(ByteView record);

// What ScanVideoHeaders finds in a record and the one after it.
struct VideoScan {
  std::int32_t frame_number = -1;
  std::int32_t frame_type = -1;
  std::int32_t gop_found = -1;
  // Of the last group of pictures header seen (kept for completeness; no listing prints it).
  std::int32_t gop_position = 0;
  std::int32_t gop_closed = 0;
  std::uint32_t gop_time = 0;
};

// Scans 4096 bytes (this record and the next) for group of pictures and picture start codes.
void ScanVideoHeaders(ByteView buf, VideoScan& scan);

}  // namespace tarvex
