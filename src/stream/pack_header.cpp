#include "stream/pack_header.h"

#include "platform/format.h"
#include "stream/sector_type.h"

namespace tarvex {

void ShowPackHeaderLines(AppContext& ctx, ByteView record) {
  ctx.AddReportLine(Format("pack_start_code %lx", {record.be32(0)}));
  ByteView scr = record.sub(4);
  ctx.AddReportLine(Format("   SCR = %08ld.%03ld", {ScrBase(scr), ScrExtension(scr)}));
  std::uint32_t rate = record.be32(10) >> 10;  // units of 50 bytes per second
  ctx.AddReportLine(
      Format("    program_mux_rate = %ld, %ld BPS %ld bps", {rate, rate * 50, rate * 400}));
}

namespace {

// One stream entry of the system header: its id line and its buffer bound line.
void ShowStreamBound(AppContext& ctx, ByteView record, std::size_t offset, const char* id_line,
                     std::uint32_t scale) {
  ctx.AddReportLine(Format(id_line, {record.u8(offset)}));
  std::uint32_t bound = record.be16(offset + 1) & 0x1FFF;
  ctx.AddReportLine(Format("      PSTD_buf_bound = %d, %ld bytes", {bound, bound * scale}));
}

}  // namespace

void ShowSystemHeaderLines(AppContext& ctx, ByteView record) {
  ctx.AddReportLine(" ");
  ctx.AddReportLine(Format("system_header_start_code %lx", {record.be32(14)}));
  ctx.AddReportLine(Format("    header_length %ld", {record.be16(18)}));
  std::uint32_t rate = (record.be32(20) & 0x7FFFFFFF) >> 9;
  ctx.AddReportLine(Format("    rate_bound = %ld, %ld BPS %ld bps", {rate, rate * 50, rate * 400}));
  std::uint8_t b23 = record.u8(23), b24 = record.u8(24);
  ctx.AddReportLine(Format("    audio_bound = %d", {b23 >> 2}));
  ctx.AddReportLine(Format("    fixed_flag = %x", {(b23 >> 1) & 1}));
  ctx.AddReportLine(Format("    CSPS_flag = %x", {b23 & 1}));
  ctx.AddReportLine(Format("    system_audio_lock_flag = %x", {b24 >> 7}));
  ctx.AddReportLine(Format("    system_video_lock_flag = %x", {(b24 >> 6) & 1}));
  ctx.AddReportLine(Format("    video_bound = %d", {b24 & 0x1F}));
  ctx.AddReportLine(Format("    packet_rate_restriction_flag = %x", {record.u8(25) >> 7}));
  // The buffer-bound scale bit is not consulted: each entry position has its fixed scale.
  ShowStreamBound(ctx, record, 26, "    video_stream_id = %x", 1024);
  ShowStreamBound(ctx, record, 29, "    audio_stream_id = %x", 128);
  ShowStreamBound(ctx, record, 32, "    private_stream_1_id = %x", 1024);
  ShowStreamBound(ctx, record, 35, "    private_stream_2_id = %x", 1024);
}

}  // namespace tarvex
