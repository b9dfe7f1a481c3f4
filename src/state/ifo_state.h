// State of the IFO table modules: each module keeps its table image, counts and loaded entries
// here while an IFO is open or assembled. Only one IFO is handled at a time.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "state/adt_state.h"
#include "state/pgci_state.h"
#include "state/srpt_state.h"

namespace tarvex {

// One program chain being assembled (the assembler handles one chain at a time).
struct PgcAssembly {
  std::array<std::uint8_t, 236> header{};
  std::array<std::uint8_t, 8> command_header{};
  std::vector<std::uint8_t> commands;  // 8 bytes per stored command, in reading order
  std::vector<std::uint8_t> program_map;
  std::vector<std::array<std::uint8_t, 24>> cell_playback;
  std::vector<std::array<std::uint8_t, 4>> cell_position;
};

// The video manager information table: the 2292-byte image in file byte order, and its
// multi-byte fields converted to host order.
struct VmgiMatState {
  std::vector<std::uint8_t> image;  // 1024-byte table and room for the first-play chain
  std::uint32_t vmg_ea = 0;
  std::uint32_t vmgi_ea = 0;
  std::uint32_t vmg_cat = 0;
  std::array<std::uint16_t, 4> vlms_id{};
  std::uint16_t vmg_ns = 0;
  std::uint32_t vmgi_mat_ea = 0;
  std::uint32_t fp_pgci_sa = 0;
  std::uint32_t vmgm_vobs_sa = 0;
  std::uint32_t tt_srpt_sa = 0;
  std::uint32_t vmgm_pgci_ut_sa = 0;
  std::uint32_t ptl_mait_sa = 0;
  std::uint32_t vts_atrt_sa = 0;
  std::uint32_t txtdt_mg_sa = 0;
  std::uint32_t vmgm_c_adt_sa = 0;
  std::uint32_t vmgm_vobu_admap_sa = 0;
};

// The title set information table: the 2048-byte record with its 32-bit fields swapped to
// host order in place, kept while the title set IFO stays open.
struct VtsiMatState {
  std::vector<std::uint8_t> record;
};

struct IfoState {
  PgcAssembly pgc;
  VmgiMatState vmgi_mat;
  VtsiMatState vtsi_mat;
  std::array<CAdtState, 3> c_adt;  // video manager menus, title set menus, title set titles
  std::array<VobuAdmapState, 3> vobu_admap;  // the same three VOB sets
  VtsAtrtState vts_atrt;
  PtlMaitState ptl_mait;
  TxtdtMgState txtdt_mg;
  VtsPgcitState vts_pgcit;
  PgciUtState vtsm_pgci_ut;
  PgciUtState vmgm_pgci_ut;
  TtSrptState tt_srpt;
  VtsPttSrptState vts_ptt_srpt;
  VtsTmaptState vts_tmapt;
};

}  // namespace tarvex
