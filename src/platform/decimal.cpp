#include "platform/decimal.h"

#include <cstddef>

namespace tarvex {

namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

}  // namespace

std::uint32_t ParseDecimal(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size() && IsBlank(text[i])) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
    negative = text[i] == '-';
    ++i;
  }
  std::uint32_t v = 0;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
    v = v * 10u + static_cast<std::uint32_t>(text[i] - '0');
  }
  return negative ? 0u - v : v;
}

}  // namespace tarvex
