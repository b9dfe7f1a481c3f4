#include "ifo/source.h"

#include <algorithm>

namespace tarvex {

bool ReadSourceValue(AppContext& ctx, std::string_view section, std::string_view key,
                     std::string& value) {
  value = ctx.profiles.GetString(ctx.convert.source_path, section, key, "$");
  std::size_t zero = value.find('\0');
  if (zero != std::string::npos) value.resize(zero);
  if (value.size() > 255) value.resize(255);
  return value.empty() || value[0] != '$';
}

void WriteSourceValue(AppContext& ctx, std::string_view section, std::string_view key,
                      std::string_view value) {
  std::size_t zero = value.find('\0');
  if (zero != std::string_view::npos) value = value.substr(0, zero);
  ctx.profiles.WriteString(ctx.convert.source_path, section, key, value);
}

std::uint32_t HexDigitValue(char c) {
  if (c >= '0' && c <= '9') return static_cast<std::uint32_t>(c - '0');
  if (c >= 'a' && c <= 'f') return static_cast<std::uint32_t>(c - 'a' + 10);
  if (c >= 'A' && c <= 'F') return static_cast<std::uint32_t>(c - 'A' + 10);
  return 0;
}

namespace {

char CharAt(std::string_view text, std::size_t i) {
  return i < text.size() ? text[i] : '\0';
}

bool IsAsciiAlnum(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

}  // namespace

std::uint8_t ParseHexByte(std::string_view text) {
  return static_cast<std::uint8_t>((HexDigitValue(CharAt(text, 0)) << 4) |
                                   HexDigitValue(CharAt(text, 1)));
}

std::uint16_t ParseHexWord(std::string_view text) {
  std::uint32_t v = 0;
  for (std::size_t i = 0; i < 4; ++i) v = (v << 4) | HexDigitValue(CharAt(text, i));
  return static_cast<std::uint16_t>(v);
}

std::uint32_t ParseHexValue(std::string_view text) {
  std::size_t i = 0;
  if (CharAt(text, 0) == 'x') i = 1;
  std::uint32_t v = 0;
  for (; i < text.size() && IsAsciiAlnum(text[i]); ++i) v = (v << 4) | HexDigitValue(text[i]);
  return v;
}

std::vector<std::uint8_t> ParseHexBytes(std::string_view text, std::size_t count) {
  std::size_t pos = CharAt(text, 0) == 'x' ? 1 : 0;
  std::vector<std::uint8_t> out(count, 0);
  for (std::size_t i = 0; i < count; ++i) {
    out[i] = ParseHexByte(pos < text.size() ? text.substr(pos) : std::string_view());
    pos += 2;
  }
  return out;
}

void PadToSector(File& file) {
  std::int64_t pos = file.Tell();
  if (pos < 0) return;
  std::int64_t rest = pos % kSectorSize;
  if (rest == 0) return;
  std::vector<std::uint8_t> zeros(static_cast<std::size_t>(kSectorSize - rest), 0);
  file.Write(zeros.data(), zeros.size());
}

void WriteTableSectors(File& file, ByteView bytes) {
  file.Write(bytes.data(), bytes.size());
  PadToSector(file);
}

std::uint32_t SectorsFor(std::uint32_t bytes) {
  return (bytes >> 11) + ((bytes & 0x7FF) != 0 ? 1 : 0);
}

std::uint32_t TableEndAddress(std::uint32_t header_bytes, std::uint32_t entries,
                              std::uint32_t entry_bytes) {
  return header_bytes + entries * entry_bytes - 1;
}

std::vector<std::uint8_t> ReadFileBlock(File& file, std::int64_t pos, std::size_t n) {
  std::vector<std::uint8_t> block(n, 0);
  if (n == 0 || !file.is_open()) return block;
  std::int64_t length = file.Length();
  if (pos < 0 || pos >= length) return block;
  std::size_t avail = static_cast<std::size_t>(std::min<std::int64_t>(length - pos, n));
  file.Seek(pos);
  file.Read(block.data(), avail);
  return block;
}

std::optional<std::vector<std::uint8_t>> ReadBoundedBlock(File& file, std::int64_t pos,
                                                          std::int32_t n) {
  if (n < 0) return std::vector<std::uint8_t>{};  // no entries
  std::int64_t length = file.Length();
  std::int64_t available = length > pos ? length - pos : 0;
  if (n > available) return std::nullopt;
  return ReadFileBlock(file, pos, static_cast<std::size_t>(n));
}

void ReportMissingStatement(AppContext& ctx, std::string_view key, std::string_view caption) {
  ctx.ui.ShowMessage(key, caption);
}

bool ReadRequiredValue(AppContext& ctx, std::string_view section, std::string_view key,
                       std::string_view caption, std::string& value) {
  if (ReadSourceValue(ctx, section, key, value)) return true;
  ReportMissingStatement(ctx, key, caption);
  return false;
}

}  // namespace tarvex
