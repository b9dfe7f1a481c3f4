// Comparisons without regard to ASCII case, as file names, extensions and profile sections and
// keys are compared (bytes above 0x7F compare as they are).
#pragma once

#include <cstddef>
#include <string_view>

namespace tarvex {

constexpr char AsciiLower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline bool EqualIgnoringAsciiCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (AsciiLower(a[i]) != AsciiLower(b[i])) return false;
  }
  return true;
}

inline bool StartsWithIgnoringAsciiCase(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() &&
         EqualIgnoringAsciiCase(text.substr(0, prefix.size()), prefix);
}

inline bool EndsWithIgnoringAsciiCase(std::string_view text, std::string_view suffix) {
  return text.size() >= suffix.size() &&
         EqualIgnoringAsciiCase(text.substr(text.size() - suffix.size()), suffix);
}

}  // namespace tarvex
