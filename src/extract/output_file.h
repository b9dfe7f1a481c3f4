// An extracted stream's output file with a write buffer. The file is made as the extraction
// has always made it: created (or truncated), closed, then opened again for reading and
// writing. Writes are collected and handed to the system in large blocks; Flush() and Close()
// (also run by the destructor) write out everything collected, so the file always ends up
// with every byte written to it, whichever way the extraction ends.
//
// A block goes out when the buffer reaches the last multiple of kWriteAlignment in the file
// that its size allows: the system takes whole, aligned pages faster than pages cut anywhere.
// The bytes of the last write that reach past that point (fewer than that write's own) are
// carried to the start of the next block.
//
// Given a WriteBehind, the file hands its blocks to the writer's thread and goes on collecting
// in a block from the writer's pool. Everything the file does besides collecting (creating,
// patching, closing, a write larger than the buffer) waits until the writer has written every
// block handed to it, so the files change in the same order as without a writer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "extract/write_behind.h"
#include "platform/bytes.h"
#include "platform/file_io.h"

namespace tarvex {

class OutputFile {
 public:
  static constexpr std::size_t kDefaultBufferSize = 256 * 1024;  // bytes
  static constexpr std::size_t kWriteAlignment = 64 * 1024;      // bytes
  // Room behind the buffer for the write that crosses a block's end (records are 2048 bytes).
  static constexpr std::size_t kCarryRoom = 4096;  // bytes

  // Writes through the writer's thread when one is given (it must outlive the file).
  explicit OutputFile(WriteBehind* writer = nullptr) : writer_(writer) {}
  ~OutputFile() { Close(); }
  OutputFile(OutputFile&& other) noexcept { *this = std::move(other); }
  OutputFile& operator=(OutputFile&& other) noexcept;
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  // Creates path (create-or-truncate), closes it and reopens it read-write. Returns false
  // when the creation fails; the reopening is not checked (writes then go nowhere). With a
  // writer the buffer is one of its blocks, kCarryRoom less than the block size.
  bool Create(const std::string& path, std::size_t buffer_size = kDefaultBufferSize);
  // True from a successful Create() until Close().
  bool is_open() const { return created_; }

  void Write(ByteView bytes);
  // Room for the next n bytes of the file, for the caller to fill at once: bytes that are made
  // on their way out need no copy of their own. Null when no file was created.
  std::uint8_t* Extend(std::size_t n);
  // Writes a 32-bit little-endian number at an absolute file offset (after the buffered bytes).
  void PatchLe32(std::int64_t offset, std::uint32_t value);
  void Flush();
  void Close();

 private:
  // Writes the block that reached its end, and carries the bytes past it.
  void WriteBlock();
  // Where the block that starts at the current file offset ends, in bytes from its start.
  void SetBlockEnd();
  // A buffer with room for n bytes: a block from the writer's pool, or one of the file's own.
  void MakeBuffer(std::size_t n);
  // Returns once the writer has written every block handed to it.
  void WaitForWriter();

  File file_;
  bool created_ = false;
  std::unique_ptr<std::uint8_t[]> buffer_;  // the block being filled (made by the first write)
  std::size_t capacity_ = 0;                // bytes allocated at buffer_
  std::size_t used_ = 0;                    // bytes collected in buffer_
  std::size_t block_end_ = 0;               // a block goes out once used_ reaches this
  std::size_t buffer_size_ = kDefaultBufferSize;
  std::uint64_t written_ = 0;  // bytes written into the file so far, from its start
  WriteBehind* writer_ = nullptr;
  bool behind_ = false;  // blocks go to writer_ (from Create() on, while they fit its blocks)
};

}  // namespace tarvex
