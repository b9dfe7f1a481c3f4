// Reading decimal numbers the way the runtime's atol reads them on the 32-bit platform the
// formats were written for: long is 32 bits, so values wrap at 2^32.
#pragma once

#include <cstdint>
#include <string_view>

namespace tarvex {

// Leading blanks (space, tab, line feed, vertical tab, form feed, carriage return), one
// optional sign, then digits up to the first non-digit; 0 when there are none. The value is
// taken modulo 2^32 (a negative number wraps).
std::uint32_t ParseDecimal(std::string_view text);

}  // namespace tarvex
