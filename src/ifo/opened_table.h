// Steps shared by the tables that begin with an 8-byte header of a 16-bit count, two zero bytes
// and a 32-bit end address: opening them, reading their body afresh, and bounding loops whose
// count comes from a 32-bit field by the length of the file.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/bytes.h"
#include "platform/file_io.h"
#include "state/context.h"
#include "state/opened_table_state.h"

namespace tarvex {

struct TableNames {
  const char* name;     // heading name, e.g. "PTT_SRPTI"
  const char* absent;   // text after "There is no "
  const char* heading;  // text of the heading line
};

// The whole absence and heading lines of the tables whose lines do not follow the
// "NAME IFO File: ..." pattern.
struct TableLines {
  const char* absent;
  const char* heading;
};

// Open step: with start sector 0 adds the absence line, forgets any earlier table and returns
// 0; otherwise reads the header at start_sector x 2048, adds the heading line, keeps the
// header in host order and the position after it, and returns the end address.
std::uint32_t OpenCountedTable(AppContext& ctx, File& ifo, std::uint32_t start_sector,
                               const TableNames& names, OpenedTable& table);
std::uint32_t OpenCountedTable(AppContext& ctx, File& ifo, std::uint32_t start_sector,
                               const TableLines& lines, OpenedTable& table);

// n bytes of the opened table's body, read from the file now; bytes beyond the end of the
// file read 0.
std::vector<std::uint8_t> ReadTableBody(const OpenedTable& table, std::size_t n);

// Appends the 8-byte header of such a table: the 16-bit count, two zero bytes and the 32-bit
// end address.
void AppendCountedHeader(ByteAppender& a, std::uint32_t count, std::uint32_t end_address);

// The body from a byte offset counted from the table start (the body begins after the 8-byte
// header): empty for an offset inside the header. Reads run on into whatever follows.
ByteView BodyAt(ByteView body, std::uint32_t table_offset);

// Bytes of the file from the start of the body on (0 when the body begins beyond the end).
std::uint64_t BodyBytesInFile(const OpenedTable& table);

// How many items of item_bytes each, laid one after another from the start of the body, begin
// inside the file: the bound of every loop whose count comes from a 32-bit field. Loops over a
// 16-bit count run their full count, reading zeros beyond the end of the file; only program
// chains, whose reports are long, keep a work budget (ChainBudget in pgc.h).
std::uint32_t ItemsInFile(const OpenedTable& table, std::uint32_t item_bytes);

}  // namespace tarvex
