// The packets of a program-stream pack as the pictures read them: the pack's clock and each
// PES packet's stream, sub-stream, time stamp and payload.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/bytes.h"

namespace tarvex::picture {

inline constexpr std::size_t kSectorSize = 2048;
inline constexpr std::uint8_t kPrivateStream1 = 0xBD;
inline constexpr std::uint8_t kPaddingStream = 0xBE;
inline constexpr std::uint8_t kPrivateStream2 = 0xBF;  // navigation data

struct PesPacket {
  std::uint8_t stream_id = 0;
  std::uint8_t substream = 0;  // the first payload byte of private stream 1
  std::optional<std::uint32_t> pts;
  ByteView payload;  // after the PES header (and after the sub-stream id in private stream 1)
};

// The packets of an MPEG-2 pack after its header and system header, in order (at most the
// ones whose start codes lie in the pack).
std::vector<PesPacket> PackPackets(ByteView record);

// The stream of a pack's first PES packet (behind its system header), as one number: the
// stream id, 0xE0 for every video stream, 0x100 + the sub-stream id for private stream 1, and
// padding (0xBE) for a pack without a packet. Read without building the packet list, for the
// commands that look at every pack.
inline constexpr std::uint16_t kVideoKey = 0xE0;
inline constexpr std::uint16_t kSubstreamKey = 0x100;
std::uint16_t FirstPacketKey(ByteView record);

// The pack's system clock reference in 27 MHz units, of the low 32 bits of its base (enough
// for differences within a cell, taken modulo 2^32 of the base).
struct PackClock {
  std::uint32_t base = 0;
  std::uint32_t extension = 0;
};
PackClock PackScr(ByteView record);
// (later - earlier) in 27 MHz units.
std::int64_t ClockDifference(PackClock later, PackClock earlier);

}  // namespace tarvex::picture
