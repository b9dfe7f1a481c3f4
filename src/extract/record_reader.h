// Reads the open program stream record by record through one large block buffer. Each record
// it yields holds exactly what a 2048-byte read into one persistent record buffer would hold:
// a short last read leaves the previous record's bytes (as the caller left them, for instance
// byte-swapped in place) behind the bytes it got. A new reader starts from a zeroed buffer.
// Memory use is the block buffer plus two records, whatever the file size.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/bytes.h"
#include "platform/file_io.h"

namespace tarvex {

class RecordReader {
 public:
  static constexpr std::size_t kRecordSize = 2048;
  static constexpr std::size_t kDefaultBlockSize = 1 << 20;  // bytes, a multiple of 2048

  explicit RecordReader(File& file, std::size_t block_size = kDefaultBlockSize);
  RecordReader(const RecordReader&) = delete;
  RecordReader& operator=(const RecordReader&) = delete;
  // Leaves the file where record-by-record reading would have left it.
  ~RecordReader();

  // Starts again at the start of the file; the record buffer keeps its bytes.
  void Rewind();
  // Reads the next record; returns the number of bytes the read got (0 at the end).
  std::size_t Next();
  // The current record buffer: always 2048 bytes, writable.
  std::span<std::uint8_t> record() const { return {current_, kRecordSize}; }
  ByteView view() const { return {current_, kRecordSize}; }
  // The file position after the last read, in bytes.
  std::int64_t position() const { return position_; }
  // Moves the file to position() now and leaves it alone afterwards (for a caller that is
  // about to read the file itself, such as the error dump).
  void Release();

 private:
  bool FillBlock();

  File& file_;
  std::vector<std::uint8_t> block_;
  std::size_t block_used_ = 0;              // valid bytes in block_
  std::size_t block_offset_ = 0;            // next unread byte in block_
  bool at_end_ = false;                     // the last block read hit the end of the file
  std::vector<std::uint8_t> short_record_;  // holds a short record and the bytes behind it
  std::uint8_t* current_;
  std::int64_t position_ = 0;
  bool released_ = false;
};

}  // namespace tarvex
