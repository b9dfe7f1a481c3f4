#include "stream/video_details.h"

#include <cstddef>
#include <cstdint>

#include "platform/format.h"
#include "stream/coding_headers.h"

namespace tarvex {

namespace {

constexpr std::uint32_t kSequenceHeaderCode = 0x1B3;
constexpr std::uint32_t kExtensionStartCode = 0x1B5;
constexpr std::uint32_t kPictureStartCode = 0x100;
constexpr std::uint8_t kPictureCodingExtensionId = 0x8;

// The first byte offset (relative to the payload start) where a sequence extension is sought.
constexpr std::size_t kScanStart = 11;
constexpr std::size_t kSequenceExtensionLast = 1034;
constexpr std::size_t kPictureScanLimit = 2048;
constexpr std::size_t kCodingExtensionWindow = 16;

bool IsExtension(ByteView payload, std::size_t at, std::uint8_t id) {
  return payload.be32(at) == kExtensionStartCode && (payload.u8(at + 4) >> 4) == id;
}

const char* AspectRatioLine(std::uint32_t code) {
  switch (code) {
    case 1:
      return "    aspect_ratio_information %ld 1:1 DVD-Video Warning";
    case 2:
      return "    aspect_ratio_information %ld 4:3";
    case 3:
      return "    aspect_ratio_information %ld 16:9";
    case 4:
      return "    aspect_ratio_information %ld 2.21:1 DVD-Video Warning";
    default:
      return "    aspect_ratio_information %ld Illegal";
  }
}

const char* FrameRateLine(std::uint32_t code) {
  switch (code) {
    case 1:
      return "    frame_rate_code %ld 23.976 DVD-Video Warning";
    case 2:
      return "    frame_rate_code %ld 24 DVD-Video Warning";
    case 3:
      return "    frame_rate_code %ld 25";
    case 4:
      return "    frame_rate_code %ld 29.97";
    case 5:
      return "    frame_rate_code %ld 30 DVD-Video Warning";
    case 6:
      return "    frame_rate_code %ld 50 DVD-Video Warning";
    case 7:
      return "    frame_rate_code %ld 59.94 DVD-Video Warning";
    case 8:
      return "    frame_rate_code %ld 60 DVD-Video Warning";
    default:
      return "    frame_rate_code %ld Illegal";
  }
}

const char* ProfileText(std::uint32_t code) {
  switch (code) {
    case 1:
      return "    profile_and_level_indication HP:";
    case 2:
      return "    profile_and_level_indication Spatially ScallableP:";
    case 3:
      return "    profile_and_level_indication SNR ScalableP:";
    case 4:
      return "    profile_and_level_indication MP:";
    case 5:
      return "    profile_and_level_indication SP:";
    default:
      return "    profile_and_level_indication ??P:";
  }
}

const char* LevelText(std::uint32_t code) {
  switch (code) {
    case 4:
      return "HL";
    case 6:
      return "H 1440L";
    case 8:
      return "ML";
    case 10:
      return "LL";
    default:
      return "??L";
  }
}

const char* PictureCodingTypeLine(std::uint32_t type) {
  switch (type) {
    case 1:
      return "    picture_coding_type I frame";
    case 2:
      return "    picture_coding_type P frame";
    case 3:
      return "    picture_coding_type B frame";
    default:
      return "    picture_coding_type Illegal frame type";
  }
}

const char* PictureStructureLine(std::uint32_t structure) {
  switch (structure) {
    case 1:
      return "    picture_structure Top Field";
    case 2:
      return "    picture_structure Bottom Field";
    case 3:
      return "    picture_structure Frame";
    default:
      return "    picture_structure Illegal";
  }
}

void ShowSetLine(AppContext& ctx, const char* name, bool set) {
  std::string line = "    ";
  line += name;
  line += set ? " Set" : " Not Set";
  ctx.AddReportLine(line);
}

void ShowSequenceHeader(AppContext& ctx, ByteView payload) {
  const SequenceHeader h = ReadSequenceHeader(payload);
  ctx.AddReportLine(Format("video sequence_header_code %lx", {payload.be32(0)}));
  ctx.AddReportLine(Format("    horizontal_size_value width %ld", {h.width}));
  ctx.AddReportLine(Format("    vertical_size_value height %ld", {h.height}));
  ctx.AddReportLine(Format(AspectRatioLine(h.aspect_ratio), {h.aspect_ratio}));
  ctx.AddReportLine(Format(FrameRateLine(h.frame_rate), {h.frame_rate}));
  // bit_rate_value counts 400 bit/s; vbv_buffer_size_value is shown in units of 1024 bytes.
  ctx.AddReportLine(Format("    bit_rate_value %ld, %ldbps", {h.bit_rate, h.bit_rate * 400}));
  ctx.AddReportLine(
      Format("    vbv_buffer_size_value %ld, %ld bytes", {h.vbv_buffer, h.vbv_buffer * 1024}));
}

void ShowSequenceExtension(AppContext& ctx, ByteView payload) {
  for (std::size_t i = kScanStart; i <= kSequenceExtensionLast; ++i) {
    const std::optional<SequenceExtension> e = ReadSequenceExtension(payload.sub(i));
    if (!e) continue;
    ctx.AddReportLine("  SEQUENCE_EXTENSION");
    std::string line = ProfileText(e->profile);
    line += LevelText(e->level_byte >> 4);
    ctx.AddReportLine(line);
    ShowSetLine(ctx, "progressive_sequence", e->progressive);
    return;
  }
}

}  // namespace

void ShowVideoStreamDetails(AppContext& ctx, ByteView payload) {
  // Only a pack whose payload begins with a sequence header gets video details.
  if (payload.be32(0) != kSequenceHeaderCode) return;
  ShowSequenceHeader(ctx, payload);
  ShowSequenceExtension(ctx, payload);

  // Picture headers. The scan goes up to payload offset 2048 but never beyond the record: a
  // start code must lie wholly inside the record (payload ends where the record ends), so no
  // code is ever completed by bytes that are not there.
  bool picture_found = false;
  std::size_t last_picture = 0;
  for (std::size_t i = kScanStart; i < kPictureScanLimit && payload.contains(i, 4); ++i) {
    if (payload.be32(i) != kPictureStartCode) continue;
    ctx.AddReportLine(PictureCodingTypeLine((payload.u8(i + 5) >> 3) & 7));
    picture_found = true;
    last_picture = i;
    i += 4;  // past the code's 4 bytes, plus the loop's one
  }
  // Without a picture there is nowhere to look for a picture coding extension.
  if (!picture_found) return;

  for (std::size_t i = last_picture; i < last_picture + kCodingExtensionWindow; ++i) {
    if (!IsExtension(payload, i, kPictureCodingExtensionId)) continue;
    const std::uint8_t flags = payload.u8(i + 7);
    ctx.AddReportLine("  PICTURE_CODING_EXTENSION");
    ctx.AddReportLine(PictureStructureLine(payload.u8(i + 6) & 3));
    ShowSetLine(ctx, "top_field_first", (flags & 0x80) != 0);
    ShowSetLine(ctx, "repeat_first_field", (flags & 0x02) != 0);
    ShowSetLine(ctx, "progressive_frame", (payload.u8(i + 8) & 0x80) != 0);
    return;
  }
}

}  // namespace tarvex
