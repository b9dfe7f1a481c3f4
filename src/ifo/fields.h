// Field descriptors: each table describes its binary layout once, as data, and the report,
// the disassembly and the assembly all walk that one description.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "platform/bytes.h"
#include "state/context.h"

namespace tarvex {

// How a field is held in the bytes being read.
enum class Store : std::uint8_t {
  kU8,
  kBe16,
  kBe32,
  kHost32,  // a 32-bit field swapped to host (little-endian) order in place; big-endian on disc
  kBytes,   // opaque bytes (attributes, codes)
  kText,    // fixed-length identifier text
};

// How a field is written into the IfoSource.
enum class SourceForm : std::uint8_t {
  kNone,       // not written
  kDecimal,    // "%d"
  kText,       // the bytes as text, cut at the field's length
  kVersion,    // "%d.%d" of the high and low nibble
  kHexBytesX,  // "x" and "%02x" per byte
  kHexBytes,   // "%02x" per byte
  kHex32X,     // "x%08x"
  kHex32,      // "%08x"
  kHex16,      // "%04x"
  kHexWordsX,  // "x%04x" then "%04x" per 16-bit word
  kHexWords,   // "%04x" per 16-bit word
};

// How a field is read back from the IfoSource.
enum class LoadRule : std::uint8_t {
  kComputed,  // written for reference only, never read back
  kDecimal,   // atol, truncated to the field's width
  kXDecimal,  // atol after one optional leading "x", truncated to the field's width
  kText,      // the first characters, up to the field's length (field cleared first)
  kVersion,   // first character major, from the third character minor
  kHexBytes,  // two characters per byte after an optional "x"
  kHexValue,  // ParseHexValue, stored big-endian in the field's width
  kHexWords,  // four characters per 16-bit word after an optional "x"
};

// How a field is reported.
enum class ReportStyle : std::uint8_t {
  kNone,
  kValue,    // the format with the value (repeated fields: the index, then the value)
  kBytes,    // the format with every byte (repeated fields: the index first)
  kVersion,  // the format with the high and the low nibble
  kCstr,     // the format with the bytes from the field up to the first zero byte
  kHook,     // the table's own code (ReportHook)
};

struct FieldDesc;
using ReportHook = void (*)(AppContext& ctx, ByteView bytes, const FieldDesc& field,
                            const std::string& indent);

struct FieldDesc {
  const char* key;  // IfoSource key (printf pattern with the index for repeated fields)
  std::uint16_t offset;
  std::uint16_t width;  // bytes of one item
  Store store;
  SourceForm form;
  LoadRule load;
  ReportStyle style = ReportStyle::kNone;
  const char* report = nullptr;  // report format
  ReportHook hook = nullptr;
  // Repeated fields: a fixed count, or the count held in the byte at count_at.
  std::uint16_t repeat = 0;
  std::int16_t count_at = -1;
  std::uint16_t stride = 0;
  const char* missing_text = nullptr;  // message text when missing, if not the key itself
};

// A big-endian number of width 1, 2 or 4 bytes, written to the IfoSource in decimal, read back
// as a decimal number and reported by its value.
constexpr FieldDesc DecimalNumber(const char* key, std::uint16_t offset, std::uint16_t width,
                                  const char* report) {
  return {.key = key,
          .offset = offset,
          .width = width,
          .store = width == 1   ? Store::kU8
                   : width == 2 ? Store::kBe16
                                : Store::kBe32,
          .form = SourceForm::kDecimal,
          .load = LoadRule::kDecimal,
          .style = ReportStyle::kValue,
          .report = report};
}

// Number of items of a field (1 for a single field).
std::uint32_t FieldCount(ByteView bytes, const FieldDesc& field);
// Offset of item i (from 0).
std::size_t FieldOffset(const FieldDesc& field, std::uint32_t i);
// Numeric value of item i as held in bytes.
std::uint32_t FieldValue(ByteView bytes, const FieldDesc& field, std::uint32_t i = 0);
// The key of item i (from 0; the key's index is i + 1).
std::string FieldKey(const FieldDesc& field, std::uint32_t i, std::string_view prefix = {});

// "%02x" per byte of the n bytes at off (bytes outside the data read 0).
std::string HexBytes(ByteView bytes, std::size_t off, std::size_t n);

// The source text of item i.
std::string FormatSourceValue(ByteView bytes, const FieldDesc& field, std::uint32_t i = 0);
// Parses text by the field's load rule and writes item i into out (file byte order).
void StoreSourceValue(ByteWriter out, const FieldDesc& field, std::uint32_t i,
                      std::string_view text);

// Report lines of the fields, in order, each prefixed with indent.
void ReportFields(AppContext& ctx, ByteView bytes, std::span<const FieldDesc> fields,
                  const std::string& indent = {});
// One IfoSource key per item, in order.
void DisassembleFields(AppContext& ctx, ByteView bytes, std::span<const FieldDesc> fields,
                       std::string_view section, std::string_view prefix = {});
// Reads every field with a load rule from section into out; a missing key shows a message
// (text: the key or the field's missing text, caption: caption) and leaves the field 0.
// Repeated fields take their count from out as filled so far.
void LoadFields(AppContext& ctx, ByteWriter out, ByteView out_view,
                std::span<const FieldDesc> fields, std::string_view section,
                std::string_view caption, std::string_view prefix = {});

}  // namespace tarvex
