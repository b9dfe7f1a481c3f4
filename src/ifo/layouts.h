// The binary layouts of the IFO tables as field descriptors, for readers other than the table
// modules (the disc model). The information tables, the program chain header, the title entries
// and the attribute records are the very descriptors that drive their report, disassembly and
// assembly; the entry layouts below describe the small repeated records of the other tables.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "ifo/fields.h"
#include "platform/bytes.h"

namespace tarvex {

// VMGI_MAT (offsets from the start of VIDEO_TS.IFO).
std::span<const FieldDesc> VmgiMatLayout();
// VTSI_MAT (offsets from the start of a title set IFO). Its 32-bit fields are declared as held
// in host order (the table module swaps its record in place); DiscFieldValue reads them from
// the file's bytes.
std::span<const FieldDesc> VtsiMatLayout();
// The 236-byte program chain header.
std::span<const FieldDesc> PgcHeaderLayout();
// One 12-byte title entry of TT_SRPT (keys with the title number).
std::span<const FieldDesc> TtSrptEntryLayout();
// One 776-byte title set record of VTS_ATRT.
std::span<const FieldDesc> VtsAtrtRecordLayout();

// The repeated records of the other tables (offsets within one record).
inline constexpr std::uint32_t kTableHeaderBytes = 8;  // count, reserved, end address
std::span<const FieldDesc> TableHeaderLayout();        // "ns", "ea"
inline constexpr std::uint32_t kCellPlaybackBytes = 24;
std::span<const FieldDesc> CellPlaybackLayout();  // "cat", "pbtm", "fvobu_sa", ...
inline constexpr std::uint32_t kCellPositionBytes = 4;
std::span<const FieldDesc> CellPositionLayout();  // "vobid", "cellid"
inline constexpr std::uint32_t kCellAddressBytes = 12;
std::span<const FieldDesc> CellAddressLayout();  // "vob_idn", "c_idn", "cp_sa", "cp_ea"
inline constexpr std::uint32_t kPartOfTitleBytes = 4;
std::span<const FieldDesc> PartOfTitleLayout();  // "pgcn", "pgn"
inline constexpr std::uint32_t kChainPointerBytes = 8;
std::span<const FieldDesc> ChainPointerLayout();  // "pgc_cat", "pgci_sa"
inline constexpr std::uint32_t kLanguageUnitPointerBytes = 8;
std::span<const FieldDesc> LanguageUnitPointerLayout();  // "lcd", "exst", "lu_sa"
std::span<const FieldDesc> TimeMapLayout();              // "tmu", "map_en_ns"
// Offsets of the four sub-tables in the program chain header.
std::span<const FieldDesc> PgcSubTableLayout();   // "cmdt_sa", "pgmap_sa", "c_pbit_sa", ...
std::span<const FieldDesc> CommandTableLayout();  // "cmdt_pre_ns", "cmdt_post_ns", ...

// The field of layout whose key (its pattern, without prefix) is key. An unknown key is a
// programming error: std::logic_error.
const FieldDesc& LayoutField(std::span<const FieldDesc> layout, std::string_view key);

// The numeric value of item i of a field as the file holds it (big-endian; fields the table
// modules keep in host order are read from the file's bytes, big-endian, too).
std::uint32_t DiscFieldValue(ByteView bytes, const FieldDesc& field, std::uint32_t i = 0);
// Shorthand: DiscFieldValue of LayoutField(layout, key).
std::uint32_t DiscValue(ByteView bytes, std::span<const FieldDesc> layout, std::string_view key,
                        std::uint32_t i = 0);
// The bytes of item i of a field.
ByteView DiscFieldBytes(ByteView bytes, std::span<const FieldDesc> layout, std::string_view key,
                        std::uint32_t i = 0);

}  // namespace tarvex
