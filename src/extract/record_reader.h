// Reads the open program stream record by record through one large block: a window of the file
// mapped into memory (so records are classified and copied out without first being copied
// into a buffer), or a block read into a buffer when the file cannot be mapped. Each record it
// yields holds exactly what a 2048-byte read into one persistent record buffer would hold: a
// short last read leaves the previous record's bytes (with the caller's changes, for instance
// the LPCM byte swap, see ChangeWhenKept) behind the bytes it got. A new reader starts from a
// zeroed buffer. Memory use is one block plus one record, whatever the file size.
#pragma once

#include <array>
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
  // Large enough to map or read in few calls, small enough to keep the resident memory low.
  static constexpr std::size_t kDefaultBlockSize = 4 * 1024 * 1024;  // bytes, a multiple of 2048

  // block_size is rounded down to whole records (at least one).
  explicit RecordReader(File& file, std::size_t block_size = kDefaultBlockSize);
  RecordReader(const RecordReader&) = delete;
  RecordReader& operator=(const RecordReader&) = delete;
  // Leaves the file where record-by-record reading would have left it.
  ~RecordReader();

  // Starts again at the start of the file; the record buffer keeps its bytes.
  void Rewind();
  // Reads the next record; returns the number of bytes the read got (0 at the end).
  std::size_t Next();
  // The current record: always 2048 bytes.
  ByteView view() const { return {current_, kRecordSize}; }
  // A change to the bytes of the current record in place, made only when somebody can still
  // see it: when a later short read keeps the record's bytes behind its own, or at once when
  // the record is already the reader's own copy. A caller that goes on with its own changed
  // copy of the bytes (written straight into an output, say) so saves copying every record.
  // A later call replaces a change not yet made; the next whole record forgets it.
  using Change = void (*)(std::span<std::uint8_t> record, std::size_t offset, std::size_t size);
  void ChangeWhenKept(Change change, std::size_t offset, std::size_t size);
  // The file position after the last read, in bytes.
  std::int64_t position() const { return position_; }
  // Forgets every byte read ahead of position(): the next record is read from the file as
  // it is then (for instance after an output file of the same name truncated it). The current
  // record is kept in the reader's own buffer; views taken before this call are no longer
  // valid, so take view() again.
  void DropReadAhead();
  // Moves the file to position() now and leaves it alone afterwards (for a caller that is
  // about to read the file itself, such as the error dump).
  void Release();

 private:
  bool Refill();
  void KeepCurrent();

  bool MapBlock();
  bool ReadBlock();

  File& file_;
  std::size_t block_size_;
  MappedRegion mapping_;
  std::vector<std::uint8_t> block_;              // only when the file cannot be mapped
  const std::uint8_t* base_ = nullptr;           // the block
  std::size_t available_ = 0;                    // valid bytes at base_
  std::size_t offset_ = 0;                       // next unread byte at base_
  std::array<std::uint8_t, kRecordSize> own_{};  // a record the reader owns (short or kept)
  const std::uint8_t* current_;
  std::int64_t position_ = 0;
  bool released_ = false;
  struct PendingChange {
    Change change = nullptr;
    std::size_t offset = 0;
    std::size_t size = 0;
  };
  PendingChange pending_;  // for the current record while it still lies in the block
};

}  // namespace tarvex
