#include "extract/payload.h"

namespace tarvex {

namespace {

constexpr std::size_t kPesLengthOffset = 18;  // PES_packet_length; the packet ends at 20 + L
constexpr std::size_t kPesFlags2 = 21;        // pts_dts_flags .. pes_extension_flag
constexpr std::size_t kStreamId = 17;

std::int32_t PacketEnd(ByteView record) {
  return 20 + static_cast<std::int32_t>(record.be16(kPesLengthOffset));
}

std::uint32_t PtsDtsFlags(ByteView record) {
  return (record.u8(kPesFlags2) >> 6) & 3;
}

// Skips 0xFF bytes from p; a byte outside the record reads 0 and ends the run.
std::size_t SkipStuffing(ByteView record, std::size_t p) {
  while (p < record.size() && record.u8(p) == 0xFF) ++p;
  return p;
}

// The audio header cursor: 31 with a PES extension (a PTS and three extension bytes are
// assumed), 28 with a PTS, else 23.
std::size_t AudioHeaderEnd(ByteView record) {
  if (record.u8(kPesFlags2) & 0x01) return 31;
  std::uint32_t pts_dts = PtsDtsFlags(record);
  return pts_dts == 2 || pts_dts == 3 ? 28 : 23;
}

bool IsMpegAudioStreamId(std::uint8_t id) {
  return id >= 0xC0 && id <= 0xC7;
}

}  // namespace

void LocateAudioPayload(ByteView record, AudioPayload& payload) {
  std::size_t p = AudioHeaderEnd(record);
  std::int32_t end = PacketEnd(record);
  std::uint8_t stream_id = record.u8(kStreamId);
  if (IsMpegAudioStreamId(stream_id)) {
    payload.stream = stream_id & 7u;
    payload.start = static_cast<std::uint32_t>(p);
    payload.length = end - static_cast<std::int32_t>(p);
    return;
  }
  p = SkipStuffing(record, p);
  std::uint8_t sub_stream_id = record.u8(p);
  payload.stream = sub_stream_id & 7u;
  // sub_stream_id, number_of_frame_headers, first_access_unit_pointer (2 bytes).
  std::size_t start = p + 4;
  if (sub_stream_id >= 0xA0 && sub_stream_id <= 0xA7) {
    start = p + 7;  // and the three LPCM header bytes
  } else if (sub_stream_id < 0x80 || sub_stream_id > 0x87) {
    return;  // unknown sub-stream: start and length stay as they were
  }
  payload.start = static_cast<std::uint32_t>(start);
  payload.length = end - static_cast<std::int32_t>(start);
}

void ReadLpcmParameters(ByteView record, LpcmParameters& parameters) {
  std::size_t p = SkipStuffing(record, AudioHeaderEnd(record));
  std::uint8_t sub_stream_id = record.u8(p);
  if (sub_stream_id < 0xA0 || sub_stream_id > 0xA7) return;
  std::uint8_t info = record.u8(p + 5);  // the second LPCM header byte
  static constexpr std::uint32_t kBits[4] = {16, 20, 24, 2};
  static constexpr std::uint32_t kFrequency[4] = {48000, 96000, 2, 2};
  parameters.bits_per_sample = kBits[(info >> 6) & 3];
  parameters.sampling_frequency = kFrequency[(info >> 4) & 3];
  parameters.channels = (info & 7u) + 1;
}

VideoPayload LocateVideoPayload(ByteView record) {
  std::uint8_t f = record.u8(kPesFlags2);
  std::size_t p = (f & 0x80) ? 28 : 23;  // PTS
  if ((f & 0xC0) == 0xC0) p += 5;        // DTS
  if (f & 0x20) p += 6;                  // ESCR
  if (f & 0x10) p += 3;                  // ES rate
  if (f & 0x08) p += 1;                  // DSM trick mode
  if (f & 0x04) p += 1;                  // additional copy info
  if (f & 0x02) p += 2;                  // PES CRC
  if (f & 0x01) {                        // PES extension
    std::uint8_t e = record.u8(p);
    std::size_t before_flags = p;
    p += 1;
    if (e & 0x80) p = before_flags + 17;  // 16 bytes of private data
    if (e & 0x40) p += 1;                 // pack header field
    if (e & 0x20) p += 2;                 // program packet sequence counter
    if (e & 0x10) p += 2;                 // P-STD buffer
    if (e & 0x01) p += 2;                 // extension 2
  }
  VideoPayload payload;
  payload.start = static_cast<std::uint32_t>(p);
  payload.length = static_cast<std::int32_t>(record.be16(kPesLengthOffset)) -
                   (static_cast<std::int32_t>(p) - 20);
  return payload;
}

SubPicturePayload LocateSubPicturePayload(ByteView record) {
  std::uint32_t pts_dts = PtsDtsFlags(record);
  std::size_t p = pts_dts == 3 ? 33 : pts_dts == 2 ? 28 : 23;
  if (record.u8(kPesFlags2) & 0x01) p += 3;
  p = SkipStuffing(record, p);
  std::size_t start = p + 1;  // past the sub_stream_id
  SubPicturePayload payload;
  payload.start = static_cast<std::uint32_t>(start);
  payload.length = static_cast<std::int32_t>(record.be16(kPesLengthOffset)) -
                   (static_cast<std::int32_t>(start) - 20);
  payload.has_pts = pts_dts == 2 || pts_dts == 3;
  return payload;
}

ByteRange PayloadBytes(std::size_t record_size, std::uint32_t start, std::int32_t length) {
  if (length <= 0 || start >= record_size) return {start < record_size ? start : record_size, 0};
  std::size_t available = record_size - start;
  std::size_t wanted = static_cast<std::size_t>(length);
  return {start, wanted < available ? wanted : available};
}

}  // namespace tarvex
