// The title set PGCI table (VTS_PGCIT): a header, one search pointer (category and byte
// offset) per program chain, and the program chains of the titles.
#pragma once

#include <cstdint>
#include <vector>

#include "ifo/pgci_state.h"
#include "ifo/table.h"
#include "platform/bytes.h"

namespace tarvex {

extern const TableModule kVtsPgcitModule;

// Size of a block of program chains as it is written: an 8-byte header, one 8-byte search
// pointer per chain, and the chains.
std::uint32_t ChainBlockBytes(const std::vector<LoadedPgc>& pgcs);

// Appends such a block: the header (chain count, two zero bytes, end_field), the search
// pointers (category, and offset from the block start: the first chain right after the
// pointers, each next one right after the one before) and the chains.
void AppendChainBlock(ByteAppender& a, const std::vector<LoadedPgc>& pgcs, std::uint32_t end_field);

}  // namespace tarvex
