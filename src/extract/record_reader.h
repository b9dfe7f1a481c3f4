// Reads the open program stream record by record through one large block read into a buffer
// (records are classified and copied out of the block without a copy of their own). Each
// record it yields holds exactly what a 2048-byte read into one persistent record buffer would
// hold: a short last read leaves the previous record's bytes (with the caller's changes, for
// instance the LPCM byte swap, see ChangeWhenKept) behind the bytes it got. A new reader starts
// from a zeroed buffer. Memory use is one block plus one record, whatever the file size.
//
// The reader knows how long the stream is meant to be: its length when the reader was made, or
// the length given to ExpectLength(). A record that the stream held wholly at that length but
// that a read no longer gets wholly means the stream shrank under the reader (another program
// shortened it, or it lay on a medium that went away): the walk ends there, without that
// record, and shrunk() tells it from the end of the stream. Records behind the new end that
// were read before are yielded as usual. Bytes beyond the expected length (the file grew) are
// read like any others, and a short read there is a normal end.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "platform/bytes.h"
#include "platform/file_io.h"

namespace tarvex {

class RecordReader {
 public:
  static constexpr std::size_t kRecordSize = 2048;
  // Large enough to read in few calls, small enough to stay in the processor's cache between
  // the read that fills it and the walk over its records.
  static constexpr std::size_t kDefaultBlockSize = 256 * 1024;  // bytes, a multiple of 2048
  // The block starts on a memory page: the system copies whole pages of the file into whole
  // pages faster than into pages cut anywhere.
  static constexpr std::size_t kBlockAlignment = 4096;  // bytes

  // block_size is rounded down to whole records (at least one). The stream is expected to be as
  // long as the file is now.
  explicit RecordReader(File& file, std::size_t block_size = kDefaultBlockSize);
  RecordReader(const RecordReader&) = delete;
  RecordReader& operator=(const RecordReader&) = delete;
  // Leaves the file where record-by-record reading would have left it.
  ~RecordReader();

  // Starts again at the start of the file; the record buffer keeps its bytes.
  void Rewind();
  // Reads the next record; returns the number of bytes the read got (0 at the end, and from the
  // record on that the stream no longer holds wholly, see shrunk()).
  std::size_t Next();
  // True once Next() found the stream shorter than expected; Next() then reads nothing more
  // until Rewind().
  bool shrunk() const { return shrunk_; }
  // The length the stream is expected to have from now on (for instance the length of the
  // file as the extraction found it when it began, or 0 after it truncated its own input).
  void ExpectLength(std::int64_t length) { expected_length_ = length; }
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
  void Refill();
  void KeepCurrent();
  // Bytes of the record at position() that the stream held at its expected length.
  std::size_t Expected() const;

  File& file_;
  std::size_t block_size_;
  struct AlignedDelete {
    void operator()(std::uint8_t* p) const;
  };
  std::unique_ptr<std::uint8_t[], AlignedDelete> block_;  // made by the first read
  std::size_t available_ = 0;                             // valid bytes in the block
  std::size_t offset_ = 0;                                // next unread byte in the block
  std::array<std::uint8_t, kRecordSize> own_{};  // a record the reader owns (short or kept)
  const std::uint8_t* current_;
  std::int64_t position_ = 0;
  std::int64_t expected_length_ = 0;
  bool shrunk_ = false;
  bool released_ = false;
  struct PendingChange {
    Change change = nullptr;
    std::size_t offset = 0;
    std::size_t size = 0;
  };
  PendingChange pending_;  // for the current record while it still lies in the block
};

}  // namespace tarvex
