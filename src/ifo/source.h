// The IfoSource: the profile-format text source of one IFO. Reading and writing values, the
// hex and decimal parsers of its value encodings, and sector padding of binary output.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/bytes.h"
#include "platform/decimal.h"
#include "platform/file_io.h"
#include "state/context.h"

namespace tarvex {

inline constexpr std::uint32_t kSectorSize = 2048;

// Reads section/key of the current IfoSource (ctx.convert.source_path) into value, with the
// default "$" and at most 255 characters. Returns false when the statement is missing, which
// is decided solely by the first character being '$'.
bool ReadSourceValue(AppContext& ctx, std::string_view section, std::string_view key,
                     std::string& value);
// Writes one key of the current IfoSource. The value ends at its first zero byte.
void WriteSourceValue(AppContext& ctx, std::string_view section, std::string_view key,
                      std::string_view value);

// Hex digit value: 0-9, a-f, A-F; any other character counts 0 (it still takes its place).
std::uint32_t HexDigitValue(char c);
// Exactly two characters as hex digits, most significant first; characters beyond the end
// of the text read as 0.
std::uint8_t ParseHexByte(std::string_view text);
// The same over exactly four characters.
std::uint16_t ParseHexWord(std::string_view text);
// A hex number of any length: one optional leading 'x', then characters while they are ASCII
// digits or letters (a letter beyond f counts 0); wraps at 32 bits; 0 for an empty rest.
std::uint32_t ParseHexValue(std::string_view text);
// A byte string: after an optional leading 'x', count bytes of two characters each.
std::vector<std::uint8_t> ParseHexBytes(std::string_view text, std::size_t count);
// Decimal values are read with ParseDecimal (platform/decimal.h): as atol reads them, modulo
// 2^32.

// Writes zero bytes until the file position is a multiple of 2048.
void PadToSector(File& file);
// Writes a table's bytes and pads them with zeros to a whole sector.
void WriteTableSectors(File& file, ByteView bytes);
// Sectors needed for a size in bytes (rounded up).
std::uint32_t SectorsFor(std::uint32_t bytes);
// End address of a table: its size in bytes minus 1.
std::uint32_t TableEndAddress(std::uint32_t header_bytes, std::uint32_t entries,
                              std::uint32_t entry_bytes);

// Reads n bytes of the file at pos; bytes beyond the end of the file read 0.
std::vector<std::uint8_t> ReadFileBlock(File& file, std::int64_t pos, std::size_t n);

// A table body whose byte count comes from a 32-bit field taken as signed: no bytes for a
// negative count; nothing (an allocation failure) when more bytes than the file holds from pos
// on are asked for; otherwise the bytes, read like ReadFileBlock.
std::optional<std::vector<std::uint8_t>> ReadBoundedBlock(File& file, std::int64_t pos,
                                                          std::int32_t n);

// Message for a missing statement: text is the key, caption "Statement missing in " + section.
void ReportMissingStatement(AppContext& ctx, std::string_view key, std::string_view caption);
// ReadSourceValue for a statement the table cannot do without: when it is missing, the message
// with the key as text and the given caption is shown and false returned.
bool ReadRequiredValue(AppContext& ctx, std::string_view section, std::string_view key,
                       std::string_view caption, std::string& value);

}  // namespace tarvex
