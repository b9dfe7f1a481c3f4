// The video title set information management table (VTSI_MAT), sector 0 of a VTS_nn_0.IFO,
// and the assembly of a whole title set IFO with the size checks of its VOB files.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "ifo/table.h"
#include "platform/file_io.h"
#include "state/context.h"

namespace tarvex {

extern const TableModule kVtsiMatModule;

// Offsets of the title set tables' start sectors in VTSI_MAT.
inline constexpr std::size_t kVtsPttSrptSa = 0x0C8;
inline constexpr std::size_t kVtsPgcitSa = 0x0CC;
inline constexpr std::size_t kVtsmPgciUtSa = 0x0D0;
inline constexpr std::size_t kVtsTmaptSa = 0x0D4;
inline constexpr std::size_t kVtsmCAdtSa = 0x0D8;
inline constexpr std::size_t kVtsmVobuAdmapSa = 0x0DC;
inline constexpr std::size_t kVtsCAdtSa = 0x0E0;
inline constexpr std::size_t kVtsVobuAdmapSa = 0x0E4;

// Open-time reading: checks sector 0, adds the heading and the VOB lines and opens the title
// set's tables. A file that is not a title set goes to the video manager reading.
std::uint32_t OpenTitleSet(AppContext& ctx, File& ifo);
// Host-order start sector held at one of the offsets above in the record in memory.
std::uint32_t TitleSetStartSector(const AppContext& ctx, std::size_t offset);
// The field report (clears the report list first).
void ReportTitleSet(AppContext& ctx);
// Section "vtsi_mat"; deletes an existing IfoSource first.
void DisassembleTitleSet(AppContext& ctx);
// Start sectors of the eight tables after VTSI_MAT (in file order) from their sizes in
// sectors: a table of size 0 starts at 0, table k at 1 + the sizes before it.
std::array<std::uint32_t, 8> LayOutTitleSetTables(const std::array<std::uint32_t, 8>& sectors);
// Builds and writes a whole title set IFO from the IfoSource into out.
void AssembleTitleSet(AppContext& ctx, File& out, const std::string& output_path);

}  // namespace tarvex
