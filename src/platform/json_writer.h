// A strict RFC 8259 JSON writer. Names and texts are escaped; a byte that does not belong to a
// well-formed UTF-8 sequence is written as \u00XX (the byte's own value), so any bytes found
// on a disc, identifiers and language codes included, give valid JSON.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarvex {

// The JSON string literal (quotes included) of text.
std::string JsonQuote(std::string_view text);

// Builds one JSON document. Objects and arrays nest; the writer puts commas and, when pretty,
// line breaks and two-blank indentation. Numbers are integers or decimals with a fixed number
// of digits after the point (never NaN or infinity: those are written as null).
class JsonWriter {
 public:
  explicit JsonWriter(bool pretty = true) : pretty_(pretty) {}

  JsonWriter& BeginObject();
  JsonWriter& EndObject();
  JsonWriter& BeginArray();
  JsonWriter& EndArray();
  // The name of the next member of the current object.
  JsonWriter& Key(std::string_view name);

  JsonWriter& String(std::string_view text);
  JsonWriter& Int(std::int64_t value);
  JsonWriter& Uint(std::uint64_t value);
  // value with exactly decimals digits after the point (trailing zeros kept off: 8.0 -> 8).
  JsonWriter& Decimal(double value, int decimals);
  JsonWriter& Bool(bool value);
  JsonWriter& Null();

  // Shorthands for a member.
  JsonWriter& Member(std::string_view name, std::string_view text) {
    return Key(name).String(text);
  }
  JsonWriter& Member(std::string_view name, const char* text) { return Key(name).String(text); }
  JsonWriter& MemberInt(std::string_view name, std::int64_t v) { return Key(name).Int(v); }
  JsonWriter& MemberUint(std::string_view name, std::uint64_t v) { return Key(name).Uint(v); }

  // Objects written on one line inside a pretty document (for long lists of small objects).
  void set_compact_depth(int depth) { compact_depth_ = depth; }

  const std::string& text() const { return out_; }

 private:
  void BeforeValue();
  void Open(char c);
  void Close(char c);
  bool Compact() const;

  std::string out_;
  struct Level {
    bool object;
    bool empty;
  };
  std::vector<Level> levels_;
  bool after_key_ = false;
  bool pretty_;
  int compact_depth_ = -1;
};

}  // namespace tarvex
