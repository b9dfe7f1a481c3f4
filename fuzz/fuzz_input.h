// Splitting a fuzz input into parts: [2-byte big-endian length N][N bytes] per part, each part
// cut short where the input ends.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tarvex::fuzz {

inline std::vector<std::uint8_t> Take(const std::uint8_t*& data, std::size_t& size) {
  std::size_t n = 0;
  if (size >= 2) {
    n = (std::size_t{data[0]} << 8) | data[1];
    data += 2;
    size -= 2;
  }
  n = n < size ? n : size;
  std::vector<std::uint8_t> part(data, data + n);
  data += n;
  size -= n;
  return part;
}

}  // namespace tarvex::fuzz
