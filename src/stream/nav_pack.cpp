#include "stream/nav_pack.h"

#include <array>
#include <cstdint>
#include <string>

#include "ifo/nav_command.h"
#include "platform/format.h"
#include "stream/nav_layout.h"
#include "stream/pack_header.h"

namespace tarvex {

namespace {

constexpr int kLadderSteps = 19;

// The seek distances of the VOBU search entries, in seconds, largest first: generated from a
// half-second counter that starts at 240 and jumps over the gaps of the ladder.
std::array<double, kLadderSteps> SeekSecondsLadder() {
  std::array<double, kLadderSteps> steps{};
  int half_seconds = 240;
  for (double& step : steps) {
    step = half_seconds * 0.5;
    if (half_seconds == 20) {
      half_seconds = 16;
    } else if (half_seconds == 60) {
      half_seconds = 21;
    } else if (half_seconds == 120) {
      half_seconds = 61;
    } else if (half_seconds == 240) {
      half_seconds = 121;
    }
    --half_seconds;
  }
  return steps;
}

// A cell time in BCD: hh:mm:ss.ff and the frame-rate code in bits 7..6 of the last byte.
struct BcdCellTime {
  std::uint32_t hours, minutes, seconds, frames, frame_rate;
};

BcdCellTime DecodeCellTime(std::uint32_t v) {
  return {(v >> 28) * 10 + ((v >> 24) & 15), ((v >> 20) & 15) * 10 + ((v >> 16) & 15),
          ((v >> 12) & 15) * 10 + ((v >> 8) & 15), ((v >> 4) & 3) * 10 + (v & 15), (v >> 6) & 3};
}

std::string CellTimeText(const char* format, std::uint32_t v) {
  BcdCellTime t = DecodeCellTime(v);
  return Format(format, {t.hours, t.minutes, t.seconds, t.frames});
}

void ShowPci(AppContext& ctx, ByteView rec) {
  ctx.AddReportLine(Format("PCI packet_start_code_prefix %lx", {rec.be32(kPciStartCode)}));
  ctx.AddReportLine(Format("    packete_length %ld", {rec.be16(kPciLength)}));
  ctx.AddReportLine(Format("    PCI sub_stream_id %x", {rec.u8(kPciSubStream)}));
  ctx.AddReportLine("  PCI General Information");

  ByteView pci = rec.sub(kPciData);
  ctx.AddReportLine(Format("    nv_pck_lbn %ld LBN of Nav pack", {pci.be32(kPciNvPckLbn)}));
  // The category is masked with 0xC0 before the shift by 14, so this line always shows 0.
  ctx.AddReportLine(Format("    vobu_cat %x Category of VOBU (analog prot. sys.)",
                           {(pci.be16(kPciVobuCat) & 0xC0) >> 14}));
  ctx.AddReportLine(
      Format("    vobu_uop_ctl %lx User Operation control of VOBU", {pci.be32(kPciVobuUopCtl)}));
  ctx.AddReportLine(Format("    vobu_s_ptm %ld Start PTM of VOBU", {pci.be32(kPciVobuSPtm)}));
  ctx.AddReportLine(Format("    vobu_e_ptm %ld End PTM of VOBU", {pci.be32(kPciVobuEPtm)}));
  ctx.AddReportLine(
      Format("    vobu_se_e_ptm %ld End PTM ov VOBU if Seq_End_Code", {pci.be32(kPciVobuSeEPtm)}));

  std::uint32_t c_eltm = pci.be32(kPciCEltm);
  std::string line = CellTimeText("    c_eltm %02d:%02d:%02d.%02d Cell Elapsed Time", c_eltm);
  switch (DecodeCellTime(c_eltm).frame_rate) {
    case 3:
      line += " at 30 FPS";
      break;
    case 1:
      line += " at 25 FPS";
      break;
    default:
      line += " Unknown or illegal VOB Mux frame rate";
      break;
  }
  ctx.AddReportLine(line);

  // The angle entries are shown as raw little-endian words.
  ctx.AddReportLine("  Angle Information for non-seamless play");
  for (int n = 1; n <= 9; ++n) {
    std::uint32_t entry = pci.le32(kPciNsmlAngles + 4 * static_cast<std::size_t>(n - 1));
    ctx.AddReportLine(Format("    VOBU #%d Before/After %x RLBN address %d",
                             {n, entry >> 31, entry & 0x7FFFFFFF}));
  }

  ctx.AddReportLine("  Button Highlight Information");
  ctx.AddReportLine(Format("    hli_ss %d Status of Highlight", {pci.be16(kPciHliSs)}));
  ctx.AddReportLine(Format("    hli_s_ptm %d Start PTM of Highlight", {pci.be32(kPciHliSPtm)}));
  ctx.AddReportLine(Format("    hli_e_ptm %d End PTM of Highlight", {pci.be32(kPciHliEPtm)}));
  ctx.AddReportLine(
      Format("    hli_sl_e_ptm %d End PTM of Button select", {pci.be32(kPciBtnSlEPtm)}));
  std::uint32_t btn_md = pci.be16(kPciBtnMd);
  ctx.AddReportLine(Format("    btn_md: %04x [Button Modes]", {btn_md}));
  ctx.AddReportLine(Format("      btngr_ns: %d [Button Groups]", {(btn_md >> 12) & 3}));
  ctx.AddReportLine(
      Format("      btngr1_dsp_ty: %x [Button grp 1 display type]", {(btn_md >> 8) & 7}));
  ctx.AddReportLine(
      Format("      btngr2_dsp_ty: %x [Button grp 2 display type]", {(btn_md >> 4) & 7}));
  ctx.AddReportLine(Format("      btngr3_dsp_ty: %x [Button grp 3 display type]", {btn_md & 7}));
  ctx.AddReportLine(Format("      btn_ofn: %d [Button offset number]", {pci.u8(kPciBtnOfn)}));
  ctx.AddReportLine(Format("      btn_ns: %d [Number of buttons]", {pci.u8(kPciBtnNs)}));
  ctx.AddReportLine(
      Format("      nsl_btn_ns: %d [Number of selectable buttons]", {pci.u8(kPciNslBtnNs)}));
  ctx.AddReportLine(
      Format("      fosl_btnn: %d [Default button at start PTM]", {pci.u8(kPciFoslBtnn)}));
  ctx.AddReportLine(
      Format("      foac_btnn: %d [Default button at termination PTM]", {pci.u8(kPciFoacBtnn)}));

  // The colour words are shown as raw little-endian words.
  ctx.AddReportLine("  Button Color Information Table");
  for (int n = 1; n <= 3; ++n) {
    std::size_t at = kPciBtnColit + 8 * static_cast<std::size_t>(n - 1);
    ctx.AddReportLine(Format("      btn_coli%d: %02x [Selection Color Info.]", {n, pci.le32(at)}));
    ctx.AddReportLine(Format("      btn_coli%d: %02x [Action Color Info.]", {n, pci.le32(at + 4)}));
  }

  // All 18 entries are listed, whatever btn_ns says.
  ctx.AddReportLine("  Button Navigational Commands");
  for (int n = 1; n <= kButtonCount; ++n) {
    ByteView b = pci.sub(kPciButtons + kButtonSize * static_cast<std::size_t>(n - 1), kButtonSize);
    std::uint32_t x_start = (b.u8(0) & 0x3Fu) * 16 + (b.u8(1) >> 4);
    std::uint32_t x_end = (b.u8(1) & 3u) * 256 + (b.u8(2) & 0xF0u);
    std::uint32_t y_start = (b.u8(3) & 0x3Fu) * 16 + (b.u8(4) >> 4);
    std::uint32_t y_end = (b.u8(4) & 3u) * 256 + (b.u8(5) & 0xF0u);
    ctx.AddReportLine(Format("      btn_coln: %d [Button %d color number]", {b.u8(0) >> 6, n}));
    ctx.AddReportLine(
        Format("      Auto action mode: %x [Button %d Selection/Action modes]", {b.u8(3) >> 6, n}));
    ctx.AddReportLine(Format("      Location: %03dx%03d %03dx%03d [Button %d coordinates]",
                             {x_start, y_start, x_end, y_end, n}));
    ctx.AddReportLine(Format("      Adjacent buttons: %d %d %d %d [to Button %d]",
                             {b.u8(6), b.u8(7), b.u8(8), b.u8(9), n}));
    ByteView command = b.sub(10, 8);
    std::string cmd_line = Format("      Nav cmd: %08x%08x", {command.be32(0), command.be32(4)});
    cmd_line += DescribeNavCommand(command);
    ctx.AddReportLine(cmd_line);
    ctx.AddReportLine(" ");
  }

  ctx.AddReportLine("  Recording Information ISRC is skipped");
  ctx.AddReportLine(" ");
}

void ShowVobuSearchEntry(AppContext& ctx, ByteView dsi, int entry, const char* missing_format,
                         const char* format, const double* seconds) {
  std::uint32_t v = dsi.be32(kDsiVobuSri + 4 * static_cast<std::size_t>(entry));
  if ((v & kSriAddressMask) == kSriAddressMask) {
    ctx.AddReportLine(seconds ? Format(missing_format, {*seconds, v})
                              : Format(missing_format, {v}));
    return;
  }
  std::uint32_t before_after = v >> 31, flag = (v >> 30) & 1, address = v & kSriAddressMask;
  ctx.AddReportLine(seconds ? Format(format, {*seconds, before_after, flag, address})
                            : Format(format, {before_after, flag, address}));
}

void ShowDsi(AppContext& ctx, ByteView rec, std::size_t start) {
  ctx.AddReportLine(Format("DSI packet_start_code_prefix %lx", {rec.be32(start)}));
  ctx.AddReportLine(Format("    packete_length %ld Substream", {rec.be16(start + 4)}));
  ctx.AddReportLine(Format("    DSI sub_stream_id %x", {rec.u8(start + 6)}));
  ctx.AddReportLine("  Data Search Information (DSI) General Information");

  ByteView dsi = rec.sub(start + 7);
  ctx.AddReportLine(Format("      nv_pck_scr %ld", {dsi.be32(kDsiNvPckScr)}));
  ctx.AddReportLine(Format("      nv_pck_lbn %ld Logical Block Number", {dsi.be32(kDsiNvPckLbn)}));
  ctx.AddReportLine(Format("      vobu_ea %ld End adr of VOBU", {dsi.be32(kDsiVobuEa)}));
  ctx.AddReportLine(
      Format("      vobu_1stref_ea %ld First ref. picture", {dsi.be32(kDsiVobu1stRefEa)}));
  ctx.AddReportLine(
      Format("      vobu_2ndref_ea %ld Second ref. picture", {dsi.be32(kDsiVobu2ndRefEa)}));
  ctx.AddReportLine(
      Format("      vobu_3rdref_ea %ld Third ref. picture", {dsi.be32(kDsiVobu3rdRefEa)}));
  ctx.AddReportLine(Format("      vobu_vob_idn %d VOB ID number", {dsi.be16(kDsiVobuVobIdn)}));
  ctx.AddReportLine(Format("      vobu_c_idn %d Cell ID number of VOBU", {dsi.u8(kDsiVobuCIdn)}));
  ctx.AddReportLine(
      CellTimeText("      c_eltm %02d:%02d:%02d.%02d Cell elapse time", dsi.be32(kDsiCEltm)));

  // The category is read as a raw little-endian word, so the four flags are bits 7..4 of its
  // second byte. Each prints as 0 or 1.
  ctx.AddReportLine("  Seamless Playback Information SML_PBI");
  std::uint32_t category = dsi.le16(kDsiSmlPbiCategory);
  ctx.AddReportLine(Format("    PREU flag %x ", {(category >> 15) & 1}));
  ctx.AddReportLine(Format("    ILVU flag %x ", {(category >> 14) & 1}));
  ctx.AddReportLine(Format("    Unit Start flag %x ", {(category >> 13) & 1}));
  ctx.AddReportLine(Format("    Unit End flag %x ", {(category >> 12) & 1}));

  ctx.AddReportLine(
      Format("    ilvu_ea %d RLBN adr. of last pack in this ILVU", {dsi.be32(kDsiIlvuEa)}));
  ctx.AddReportLine(
      Format("    nxt_ilvu_sa %d RLBN of Next ILVU pack in this chain", {dsi.be32(kDsiNxtIlvuSa)}));
  ctx.AddReportLine(
      Format("    nxt_ilvu_sz %d Size of next ILVU in this chain", {dsi.be16(kDsiNxtIlvuSz)}));
  ctx.AddReportLine(Format("    vob_v_s_ptm %d PTM of first video frame in first GOP in VOB",
                           {dsi.be32(kDsiVobVSPtm)}));
  ctx.AddReportLine(Format("    vob_v_e_ptm %d PTM of last video frame in last GOP in VOB",
                           {dsi.be32(kDsiVobVEPtm)}));
  for (std::size_t k = 0; k < 8; ++k) {
    ctx.AddReportLine(
        Format("    vob_a_stp_ptm 1: %d 2: %d ",
               {dsi.be32(kDsiVobAStpPtm + 8 * k), dsi.be32(kDsiVobAStpPtm + 8 * k + 4)}));
  }
  for (std::size_t k = 0; k < 8; ++k) {
    ctx.AddReportLine(
        Format("    vob_a_gap_len 1: %d 2: %d ",
               {dsi.be32(kDsiVobAGapLen + 8 * k), dsi.be32(kDsiVobAGapLen + 8 * k + 4)}));
  }

  // The first line's format takes only the angle number, so the before/after bit is not shown.
  ctx.AddReportLine("  Angle Information for Seamless Jumps");
  for (int n = 1; n <= 9; ++n) {
    std::size_t at = kDsiSmlAgl + 6 * static_cast<std::size_t>(n - 1);
    ctx.AddReportLine(Format("    agl_c %x Location Befor/After nav pack", {n}));
    ctx.AddReportLine(
        Format("    agl_c %d RLBN %d Next ILVU of this angle", {n, dsi.be32(at) & 0x7FFFFFFF}));
    ctx.AddReportLine(
        Format("    agl_c %d Size %d Length of ILVU of this angle", {n, dsi.be16(at + 4)}));
    ctx.AddReportLine(" ");
  }

  ctx.AddReportLine("  VOBU Search Information (VOBU_SRI)");
  const std::array<double, kLadderSteps> ladder = SeekSecondsLadder();
  ShowVobuSearchEntry(ctx, dsi, kSriNextWithVideo, "    Next VOBU with video - Does not exist %08x",
                      "    Next VOBU with video %x %x %d", nullptr);
  ShowVobuSearchEntry(ctx, dsi, kSriNextPossibleVideo,
                      "    Next VOBU with possible video - Does not exist %08x",
                      "    Next VOBU with possible video %x %x %d", nullptr);
  for (int i = 0; i < kLadderSteps; ++i) {
    ShowVobuSearchEntry(ctx, dsi, kSriNextFirstStep + i,
                        "    Next VOBU %f seconds from present - Does not exist %08x",
                        "    Next VOBU %f seconds from present %x %x %d", &ladder[i]);
  }
  ShowVobuSearchEntry(ctx, dsi, kSriPreviousPossibleVideo,
                      "    Previous VOBU with possible video - Does not exist %08x",
                      "    Previous VOBU with possible video %x %x %x", nullptr);
  ShowVobuSearchEntry(ctx, dsi, kSriPreviousWithVideo,
                      "    Previous VOBU with video - Does not exist %08x",
                      "    Previous VOBU with video %x %x %d", nullptr);
  for (int i = 0; i < kLadderSteps; ++i) {
    ShowVobuSearchEntry(ctx, dsi, kSriPreviousSmallestStep + (kLadderSteps - 1) - i,
                        "    Previous VOBU %f seconds from present - Does not exist %08x",
                        "    Previous VOBU %f seconds from present %x %x %d", &ladder[i]);
  }

  ctx.AddReportLine("  Synchronous Information (SYNCI)");
  for (std::size_t k = 0; k < 8; ++k) {
    std::uint32_t v = dsi.be16(kDsiSynciAudio + 2 * k);
    ctx.AddReportLine(Format("    Sync. Audio: Before/After flag %x, RLBN from this pack %04x",
                             {v >> 15, v & 0x7FFF}));
  }
  for (std::size_t k = 0; k < 32; ++k) {
    std::uint32_t v = dsi.be32(kDsiSynciSubPicture + 4 * k);
    ctx.AddReportLine(Format("    Sync. Subpicture: Before/After flag %x, RLBN from this pack %08x",
                             {v >> 31, v & 0x7FFFFFFF}));
  }
}

}  // namespace

void ShowNavPackDetails(AppContext& ctx, ByteView record) {
  // Every field is read through a view of exactly one record. The PCI length comes from the
  // data and may place the DSI block anywhere, even beyond the record; the view then reads the
  // bytes outside the 2048 as 0, so a damaged pack prints zeros there instead of reading on
  // past its buffer.
  ByteView rec = record.sub(0, RECORD_SIZE);

  ShowPackHeaderLines(ctx, rec);
  ShowSystemHeaderLines(ctx, rec);
  ctx.AddReportLine(" ");
  ShowPci(ctx, rec);
  ShowDsi(ctx, rec, kDsiAfterPciLength + rec.be16(kPciLength));
}

}  // namespace tarvex
