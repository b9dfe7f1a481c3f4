// printf-style formatting with the number semantics of the 32-bit platform the report
// formats were written for: int and long are 32 bits, so "%ld" of 0x80000000 prints
// -2147483648 and "%lx" of -1 prints ffffffff. Every report line goes through here.
#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace tarvex {

// One argument of Format(): an integer (any width; only its low 32 bits are used by the
// integer conversions), a floating-point number, or a byte string (used up to its first zero).
class FmtArg {
 public:
  enum class Kind { kInt, kDouble, kStr };

  template <std::integral T>
  FmtArg(T v) : kind_(Kind::kInt), int_(static_cast<std::int64_t>(v)) {}  // NOLINT
  FmtArg(double v) : kind_(Kind::kDouble), dbl_(v) {}                     // NOLINT
  FmtArg(const char* s) : kind_(Kind::kStr), str_(s ? s : "") {}          // NOLINT
  FmtArg(std::string_view s) : kind_(Kind::kStr), str_(s) {}              // NOLINT
  FmtArg(const std::string& s) : kind_(Kind::kStr), str_(s) {}            // NOLINT

  Kind kind() const { return kind_; }
  std::int64_t as_int() const;
  double as_double() const;
  std::string_view as_str() const { return kind_ == Kind::kStr ? str_ : std::string_view(); }

 private:
  Kind kind_;
  std::int64_t int_ = 0;
  double dbl_ = 0.0;
  std::string_view str_;
};

// Formats like sprintf into a zero-terminated line buffer and returns the line: the result
// ends at the first zero byte that the formatting produced (for instance "%c" of 0).
// Conversions: d i u x X o c s f e E g G %; flags - + space # 0; width and precision as
// digits or '*'; length modifiers h hh l ll are accepted, integers always use 32 bits
// (h: 16, hh: 8). A conversion with no argument left formats 0 or the empty string.
std::string Format(std::string_view format, std::initializer_list<FmtArg> args = {});

// The same, appending to an existing line (what sprintf at the end of a buffer does).
void AppendFormat(std::string& line, std::string_view format,
                  std::initializer_list<FmtArg> args = {});

// A count with its noun, which takes an "s" unless the count is 1: "1 cell", "0 cells".
std::string Counted(std::uint64_t n, std::string_view noun);

}  // namespace tarvex
