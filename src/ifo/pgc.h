// Program chains: a 236-byte header and up to four sub-tables (commands, program map, cell
// playback information, cell position information), each found through a 16-bit byte offset.
// The containing table chooses the IfoSource section and the key prefix.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "platform/bytes.h"
#include "state/context.h"
#include "state/opened_table_state.h"
#include "state/pgci_state.h"

namespace tarvex {

inline constexpr std::uint32_t kPgcHeaderSize = 236;

// Reports the chain at base + offset; every line starts with indent blanks.
void PgcReport(AppContext& ctx, int indent, ByteView base, std::size_t offset);
// Writes the chain at base + offset as prefix + field keys into section.
void PgcDisassemble(AppContext& ctx, ByteView base, std::size_t offset, std::string_view prefix,
                    std::string_view section);
// Reads a chain from the IfoSource into the assembly state (ctx.ifo.pgc).
void PgcAssemble(AppContext& ctx, std::string_view section, std::string_view prefix);
// Lays out the assembled chain, fills the four offsets of its header and returns its size
// in bytes (kept as a 16-bit value).
std::uint16_t PgcLayout(AppContext& ctx);
// Copies the assembled chain into buffer (its size is the capacity); returns the bytes
// written. Frees both cell lists.
std::uint32_t PgcCopyOut(AppContext& ctx, std::span<std::uint8_t> buffer);

// Reads one program chain from section with the key prefix and returns its bytes as laid out
// for writing (assemble, lay out, copy out).
std::vector<std::uint8_t> AssembleChainBytes(AppContext& ctx, std::string_view section,
                                             std::string_view prefix);

// Size of a block of program chains as it is written: an 8-byte header, one 8-byte search
// pointer per chain, and the chains.
std::uint32_t ChainBlockBytes(const std::vector<LoadedPgc>& pgcs);

// Appends such a block: the header (chain count, two zero bytes, end_field), the search
// pointers (category, and offset from the block start: the first chain right after the
// pointers, each next one right after the one before) and the chains.
void AppendChainBlock(ByteAppender& a, const std::vector<LoadedPgc>& pgcs, std::uint32_t end_field);

// Program chains one report or disassembly pass over a table walks at most: as many as the
// file holds 8-byte search pointers. A chain's report is long, and search pointers that repeat
// or lie beyond the end of the file must not multiply the work.
std::uint64_t ChainBudget(const OpenedTable& table);

}  // namespace tarvex
