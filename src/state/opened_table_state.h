// Where an opened table lies: shared by the state of every table whose open step reads an
// 8-byte header of a 16-bit count, two zero bytes and a 32-bit end address.
#pragma once

#include <cstdint>

namespace tarvex {

class File;

// The IFO the table was read from and the file position after its 8-byte header (nullptr
// while no table is open). The body is read afresh from there by every report and
// disassembly.
struct OpenedTable {
  File* file = nullptr;
  std::int64_t body_pos = 0;
  std::uint16_t count = 0;        // header count, host order
  std::uint32_t end_address = 0;  // header end address, host order

  bool open() const { return file != nullptr; }
};

}  // namespace tarvex
