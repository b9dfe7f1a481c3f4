#include "stream/listing_json.h"

#include <vector>

#include "platform/file_io.h"
#include "platform/json_writer.h"
#include "stream/sector_type.h"

namespace tarvex {

namespace {

constexpr std::size_t kRecordBytes = 2048;

std::string Hex(std::uint32_t id) {
  static const char kDigits[] = "0123456789abcdef";
  return std::string("0x") + kDigits[(id >> 4) & 15] + kDigits[id & 15];
}

// A whole 33-bit PTS or DTS from its 5 bytes (the listing's text keeps only 32 bits).
std::uint64_t TimeStamp(ByteView field) {
  return ((std::uint64_t{field.u8(0)} >> 1 & 7) << 30) | (std::uint64_t{field.u8(1)} << 22) |
         ((std::uint64_t{field.u8(2)} >> 1) << 15) | (std::uint64_t{field.u8(3)} << 7) |
         (std::uint64_t{field.u8(4)} >> 1);
}

void WritePack(JsonWriter& j, std::uint32_t record, ByteView pack) {
  j.BeginObject().MemberUint("record", record);
  if (pack.be32(0) != 0x1BA) {
    j.Member("type", "Illegal").Member("pack_start_code", Hex(pack.be32(0) & 0xFF));
    j.EndObject();
    return;
  }
  std::uint32_t stream_number = 0;
  std::int32_t type = GetSectorType(pack, stream_number);
  j.Member("type", PackTypeWord(type));
  std::uint64_t b4 = pack.u8(4), b5 = pack.u8(5), b6 = pack.u8(6), b7 = pack.u8(7), b8 = pack.u8(8),
                b9 = pack.u8(9);
  std::uint64_t base = (((b4 >> 3) & 7) << 30) | ((b4 & 3) << 28) | (b5 << 20) | ((b6 >> 3) << 15) |
                       ((b6 & 3) << 13) | (b7 << 5) | (b8 >> 3);
  std::uint64_t ext = ((b8 & 3) << 7) | (b9 >> 1);
  j.MemberUint("scr", base * 300 + ext)
      .MemberUint("scr_base", base)
      .MemberUint("scr_extension", ext);
  // The PES packet: behind the system header of a navigation pack, else right after the
  // 14-byte pack header.
  std::size_t pes = pack.be32(14) == 0x1BB ? 38 : 14;
  std::uint32_t code = pack.be32(pes);
  if ((code >> 8) != 1) {
    j.EndObject();
    return;
  }
  std::uint32_t id = code & 0xFF;
  bool mpeg2_header = id == 0xBD || (id >= 0xC0 && id <= 0xEF);
  if (mpeg2_header && (pack.u8(pes + 6) & 0xC0) == 0x80) {
    std::uint8_t flags = pack.u8(pes + 7) & 0xC0;
    if (flags & 0x80) j.MemberUint("pts", TimeStamp(pack.sub(pes + 9, 5)));
    if (flags == 0xC0) j.MemberUint("dts", TimeStamp(pack.sub(pes + 14, 5)));
  }
  j.Member("stream_id", Hex(id));
  if (id == 0xBD) {
    j.Member("sub_stream_id", Hex(PrivateSubstreamId(pack.sub(pes))));
  } else if (id == 0xBF) {
    j.Member("sub_stream_id", Hex(pack.u8(pes + 6)));
  }
  j.EndObject();
}

}  // namespace

const char* PackTypeWord(std::int32_t sector_type) {
  switch (sector_type) {
    case kSectorVideo:
      return "Video";
    case kSectorNavigation:
      return "Navigations";
    case kSectorSubPicture:
      return "Subpicture";
    case kSectorAc3:
      return "AC-3 Audio";
    case kSectorDts:
      return "DTS Audio";
    case kSectorSdds:
      return "SDDS Audio";
    case kSectorLpcm:
      return "PCM Audio";
    case kSectorMpegAudio:
      return "MPEG Audio";
    case kSectorPadding:
      return "Padding";
    default:
      return "Illegal";
  }
}

std::optional<std::string> ListPacksJson(const std::string& path, std::uint32_t first,
                                         std::uint32_t end) {
  File file = File::OpenRead(path);
  if (!file.is_open()) return std::nullopt;
  std::uint64_t records =
      static_cast<std::uint64_t>(std::max<std::int64_t>(file.Length(), 0)) / kRecordBytes;
  JsonWriter j;
  j.set_compact_depth(2);
  j.BeginObject().Member("file", path).Key("packets").BeginArray();
  std::vector<std::uint8_t> block(256 * kRecordBytes);
  std::uint64_t stop = std::min<std::uint64_t>(end, records);
  for (std::uint64_t r = first; r < stop;) {
    std::size_t n = static_cast<std::size_t>(std::min<std::uint64_t>(256, stop - r));
    file.Seek(static_cast<std::int64_t>(r * kRecordBytes));
    std::size_t got = file.Read(block.data(), n * kRecordBytes) / kRecordBytes;
    for (std::size_t k = 0; k < got; ++k) {
      WritePack(j, static_cast<std::uint32_t>(r + k),
                ByteView(block.data() + k * kRecordBytes, kRecordBytes));
    }
    if (got < n) break;
    r += n;
  }
  j.EndArray().EndObject();
  return j.text();
}

}  // namespace tarvex
