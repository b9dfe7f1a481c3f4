// The title set PGCI table (VTS_PGCIT): a header, one search pointer (category and byte
// offset) per program chain, and the program chains of the titles.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "app/context.h"
#include "ifo/pgci_state.h"
#include "ifo/table.h"
#include "platform/bytes.h"
#include "platform/file_io.h"

namespace tarvex {

extern const TableModule kVtsPgcitModule;

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

}  // namespace tarvex
