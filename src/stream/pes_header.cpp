#include "stream/pes_header.h"

#include "platform/format.h"
#include "stream/pack_header.h"
#include "stream/sector_type.h"
#include "stream/video_details.h"

namespace tarvex {

namespace {

// What sets the members of the PES header family apart.
struct MemberTraits {
  bool dts_line;
  const char* fourth_flag_line;
  std::uint8_t fourth_flag_mask;  // applied to the extension flags byte
  bool pstd_at_fixed_offset;      // P-STD bytes at 29..30 and the cursor set to 31
  std::uint32_t value_mask;
  std::uint32_t byte_mask;
};

MemberTraits TraitsOf(PesMember member) {
  switch (member) {
    case PesMember::kVideo:
      return {true, "    extension_flag_2 %x", 0x0F, false, 0xFFF, 0xFFF};
    case PesMember::kSubPicture:
      return {true, "    PES_extension_flag_2 %x", 0x01, false, 0xFFF, 0x1FF};
    case PesMember::kAudio:
      break;
  }
  return {false, "    extension_flag_2 %x", 0x0F, true, 0x1FF, 0x1FF};
}

constexpr std::size_t kAudioPstdOffset = 29;
constexpr std::size_t kAudioCursorAfterExtension = 31;

}  // namespace

std::size_t ShowPesHeaderLines(AppContext& ctx, ByteView record, PesMember member) {
  const MemberTraits traits = TraitsOf(member);
  ctx.AddReportLine(" ");
  ctx.AddReportLine(Format("packet_start_code %lx", {record.be32(14)}));
  ctx.AddReportLine(Format("    packet_length %d", {record.be16(18)}));

  const std::uint8_t b20 = record.u8(20);
  ctx.AddReportLine(Format("    scrambling_control %x", {(b20 >> 4) & 3}));
  ctx.AddReportLine(Format("    priority %x", {(b20 >> 3) & 1}));
  ctx.AddReportLine(Format("    data_alignment_indicator %x", {(b20 >> 2) & 1}));
  ctx.AddReportLine(Format("    copyright %x", {(b20 >> 1) & 1}));
  ctx.AddReportLine(Format("    original_or_copy %x", {b20 & 1}));

  const std::uint8_t b21 = record.u8(21);
  const std::uint32_t pts_dts_flags = b21 >> 6;
  ctx.AddReportLine(Format("    pts_dts_flags %x", {pts_dts_flags}));
  ctx.AddReportLine(Format("    escr_flag %x", {(b21 >> 5) & 1}));
  ctx.AddReportLine(Format("    es_rate_flag %x", {(b21 >> 4) & 1}));
  ctx.AddReportLine(Format("    dsm_tick_mode_flag %x", {(b21 >> 3) & 1}));
  ctx.AddReportLine(Format("    additional_copy_info_flag %x", {(b21 >> 2) & 1}));
  ctx.AddReportLine(Format("    pes_crc_flag %x", {(b21 >> 1) & 1}));
  ctx.AddReportLine(Format("    pes_extension_flag %x", {b21 & 1}));
  ctx.AddReportLine(Format("    header_data_length %d", {record.u8(22)}));

  // Only the PTS and DTS move the cursor; ESCR, ES rate, trick mode, copy info and CRC fields
  // are neither shown nor skipped.
  std::size_t cursor = 23;
  if (pts_dts_flags == 2 || pts_dts_flags == 3) {
    ctx.AddReportLine(Format("    PTS %ld", {DecodePts(record.sub(23))}));
    cursor = 28;
  }
  if (pts_dts_flags == 3 && traits.dts_line) {
    ctx.AddReportLine(Format("    DTS %ld", {DecodePts(record.sub(28))}));
    cursor = 33;
  }

  if ((b21 & 1) != 0) {
    const std::uint8_t flags = record.u8(cursor);
    ctx.AddReportLine(Format("    private_data_flag %x", {flags >> 7}));
    ctx.AddReportLine(Format("    pack_header_field_flag %x", {(flags >> 6) & 1}));
    ctx.AddReportLine(Format("    program_packet_sequuence_counter_flag %x", {(flags >> 5) & 1}));
    ctx.AddReportLine(Format("    p-std_buffer_flag %x", {(flags >> 4) & 1}));
    ctx.AddReportLine(Format(traits.fourth_flag_line, {flags & traits.fourth_flag_mask}));
    // The P-STD buffer fields are taken as if they always followed the flags byte directly
    // (for audio packs: always at 29..30).
    const std::size_t pstd = traits.pstd_at_fixed_offset ? kAudioPstdOffset : cursor + 1;
    ctx.AddReportLine(Format("    p-std_buffer_scale %x", {(record.u8(pstd) >> 5) & 1}));
    const std::uint32_t size = record.be16(pstd);
    ctx.AddReportLine(Format("    p-std_buffer_size %d, %d bytes",
                             {size & traits.value_mask, (size & traits.byte_mask) * 1024}));
    cursor = traits.pstd_at_fixed_offset ? kAudioCursorAfterExtension : cursor + 3;
  }

  // Stuffing bytes; the record ends the run (bytes beyond it read as 0).
  while (record.u8(cursor) == 0xFF) ++cursor;
  return cursor;
}

void ShowVideoPackDetails(AppContext& ctx, ByteView record) {
  ShowPackHeaderLines(ctx, record);
  std::size_t cursor = ShowPesHeaderLines(ctx, record, PesMember::kVideo);
  ctx.AddReportLine(" ");
  ShowVideoStreamDetails(ctx, record.sub(cursor));
}

void ShowSubPictureDetails(AppContext& ctx, ByteView record) {
  ShowPackHeaderLines(ctx, record);
  std::size_t cursor = ShowPesHeaderLines(ctx, record, PesMember::kSubPicture);
  const std::uint8_t sub_stream = record.u8(cursor);
  ctx.AddReportLine(Format("    sub_stream_id: x%02x %d", {sub_stream, sub_stream}));
  // Read from every sub-picture pack, also from one that continues a unit begun earlier.
  ctx.AddReportLine(Format("    SUP_SZ size of sub-picture unit: %d", {record.be16(cursor + 1)}));
  ctx.AddReportLine(Format("    SP_DCSQT_SA start address of display control seq table: %d",
                           {record.be16(cursor + 3)}));
  ctx.AddReportLine(" ");
}

}  // namespace tarvex
