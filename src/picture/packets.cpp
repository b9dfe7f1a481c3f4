#include "picture/packets.h"

#include "stream/sector_type.h"

namespace tarvex::picture {

namespace {

constexpr std::size_t kPackHeader = 14;
constexpr std::uint8_t kPackStart = 0xBA;
constexpr std::uint8_t kSystemHeader = 0xBB;

// The packet at at, whose start code and length lie in the record.
PesPacket ReadPacket(ByteView record, std::size_t at, std::size_t end) {
  PesPacket p;
  p.stream_id = record.u8(at + 3);
  bool has_header = p.stream_id != kPaddingStream && p.stream_id != kPrivateStream2;
  std::size_t data = at + 6;
  if (has_header && (record.u8(at + 6) & 0xC0) == 0x80) {
    if (record.u8(at + 7) & 0x80) p.pts = DecodePts(record.sub(at + 9, 5));
    data = at + 9 + record.u8(at + 8);
  }
  if (data > end) data = end;
  p.payload = record.sub(data, end - data);
  if (p.stream_id == kPrivateStream1) {
    p.substream = p.payload.u8(0);
    p.payload = p.payload.sub(1);
  }
  return p;
}

}  // namespace

std::vector<PesPacket> PackPackets(ByteView record) {
  std::vector<PesPacket> packets;
  std::size_t at = kPackHeader + (record.u8(13) & 7);
  while (record.contains(at, 6) && record.be24(at) == 1) {
    std::uint8_t id = record.u8(at + 3);
    if (id == kPackStart) break;
    std::size_t end = at + 6 + record.be16(at + 4);
    if (end > record.size()) end = record.size();
    if (id != kSystemHeader) packets.push_back(ReadPacket(record, at, end));
    at = end;
  }
  return packets;
}

std::uint16_t FirstPacketKey(ByteView record) {
  std::size_t at = kPackHeader + (record.u8(13) & 7);
  if (record.be24(at) == 1 && record.u8(at + 3) == kSystemHeader) at += 6 + record.be16(at + 4);
  if (!record.contains(at, 6) || record.be24(at) != 1) return kPaddingStream;
  std::uint8_t id = record.u8(at + 3);
  if (id >= 0xE0 && id <= 0xEF) return kVideoKey;
  if (id == kPrivateStream1)
    return static_cast<std::uint16_t>(kSubstreamKey | record.u8(at + 9 + record.u8(at + 8)));
  return id;
}

PackClock PackScr(ByteView record) {
  return {ScrBase(record.sub(4)), ScrExtension(record.sub(4))};
}

std::int64_t ClockDifference(PackClock later, PackClock earlier) {
  auto base = static_cast<std::int32_t>(later.base - earlier.base);
  return std::int64_t{base} * 300 + std::int64_t{later.extension} - earlier.extension;
}

}  // namespace tarvex::picture
