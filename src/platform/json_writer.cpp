#include "platform/json_writer.h"

#include <cmath>
#include <cstdio>

namespace tarvex {

namespace {

// Length of the well-formed UTF-8 sequence at text[i], or 0 when the byte there does not start
// one (overlong forms, surrogates and code points above U+10FFFF are not well-formed).
std::size_t Utf8SequenceLength(std::string_view text, std::size_t i) {
  auto byte = [&](std::size_t k) { return static_cast<unsigned char>(text[k]); };
  unsigned char b0 = byte(i);
  std::size_t n = 0;
  unsigned char lo = 0x80, hi = 0xBF;
  if (b0 >= 0xC2 && b0 <= 0xDF) {
    n = 2;
  } else if (b0 >= 0xE0 && b0 <= 0xEF) {
    n = 3;
    if (b0 == 0xE0) lo = 0xA0;
    if (b0 == 0xED) hi = 0x9F;
  } else if (b0 >= 0xF0 && b0 <= 0xF4) {
    n = 4;
    if (b0 == 0xF0) lo = 0x90;
    if (b0 == 0xF4) hi = 0x8F;
  } else {
    return 0;
  }
  if (text.size() - i < n) return 0;
  if (byte(i + 1) < lo || byte(i + 1) > hi) return 0;
  for (std::size_t k = 2; k < n; ++k) {
    if (byte(i + k) < 0x80 || byte(i + k) > 0xBF) return 0;
  }
  return n;
}

void AppendEscapedByte(std::string& out, unsigned char c) {
  char buf[8];
  std::snprintf(buf, sizeof buf, "\\u%04x", c);
  out += buf;
}

}  // namespace

std::string JsonQuote(std::string_view text) {
  std::string out;
  out.reserve(text.size() + 2);
  out += '"';
  for (std::size_t i = 0; i < text.size();) {
    auto c = static_cast<unsigned char>(text[i]);
    if (c < 0x80) {
      switch (c) {
        case '"':
          out += "\\\"";
          break;
        case '\\':
          out += "\\\\";
          break;
        case '\n':
          out += "\\n";
          break;
        case '\r':
          out += "\\r";
          break;
        case '\t':
          out += "\\t";
          break;
        case '\b':
          out += "\\b";
          break;
        case '\f':
          out += "\\f";
          break;
        default:
          if (c < 0x20 || c == 0x7F) {
            AppendEscapedByte(out, c);
          } else {
            out += static_cast<char>(c);
          }
      }
      ++i;
      continue;
    }
    std::size_t n = Utf8SequenceLength(text, i);
    if (n == 0) {
      AppendEscapedByte(out, c);
      ++i;
    } else {
      out.append(text.substr(i, n));
      i += n;
    }
  }
  out += '"';
  return out;
}

bool JsonWriter::Compact() const {
  return !pretty_ || (compact_depth_ >= 0 && static_cast<int>(levels_.size()) > compact_depth_);
}

void JsonWriter::BeforeValue() {
  if (after_key_) {
    after_key_ = false;
    return;
  }
  if (levels_.empty()) return;
  Level& level = levels_.back();
  if (!level.empty) out_ += Compact() ? ", " : ",";
  level.empty = false;
  if (!Compact()) {
    out_ += '\n';
    out_.append(2 * levels_.size(), ' ');
  }
}

void JsonWriter::Open(char c) {
  BeforeValue();
  out_ += c;
  levels_.push_back({c == '{', true});
}

void JsonWriter::Close(char c) {
  if (levels_.empty()) return;
  bool empty = levels_.back().empty;
  bool compact = Compact();
  levels_.pop_back();
  if (!empty && !compact) {
    out_ += '\n';
    out_.append(2 * levels_.size(), ' ');
  }
  out_ += c;
  if (levels_.empty() && pretty_) out_ += '\n';
}

JsonWriter& JsonWriter::BeginObject() {
  Open('{');
  return *this;
}
JsonWriter& JsonWriter::EndObject() {
  Close('}');
  return *this;
}
JsonWriter& JsonWriter::BeginArray() {
  Open('[');
  return *this;
}
JsonWriter& JsonWriter::EndArray() {
  Close(']');
  return *this;
}

JsonWriter& JsonWriter::Key(std::string_view name) {
  BeforeValue();
  out_ += JsonQuote(name);
  out_ += ": ";
  after_key_ = true;
  return *this;
}

JsonWriter& JsonWriter::String(std::string_view text) {
  BeforeValue();
  out_ += JsonQuote(text);
  return *this;
}

JsonWriter& JsonWriter::Int(std::int64_t value) {
  BeforeValue();
  out_ += std::to_string(value);
  return *this;
}

JsonWriter& JsonWriter::Uint(std::uint64_t value) {
  BeforeValue();
  out_ += std::to_string(value);
  return *this;
}

JsonWriter& JsonWriter::Decimal(double value, int decimals) {
  if (!std::isfinite(value)) return Null();
  BeforeValue();
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.*f", decimals, value);
  std::string text(buf);
  if (text.find('.') != std::string::npos) {
    while (text.back() == '0') text.pop_back();
    if (text.back() == '.') text.pop_back();
  }
  if (text == "-0") text = "0";
  out_ += text;
  return *this;
}

JsonWriter& JsonWriter::Bool(bool value) {
  BeforeValue();
  out_ += value ? "true" : "false";
  return *this;
}

JsonWriter& JsonWriter::Null() {
  BeforeValue();
  out_ += "null";
  return *this;
}

}  // namespace tarvex
