// An extracted stream's output file with a write buffer. The file is made as the extraction
// has always made it: created (or truncated), closed, then opened again for reading and
// writing. Writes are collected and handed to the system in large blocks; Flush() and Close()
// (also run by the destructor) write out everything collected, so the file always ends up
// with every byte written to it, whichever way the extraction ends.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "platform/bytes.h"
#include "platform/file_io.h"

namespace tarvex {

class OutputFile {
 public:
  static constexpr std::size_t kDefaultBufferSize = 256 * 1024;  // bytes
  // A full buffer is written up to the last multiple of this in the file, the rest kept for
  // the next write: the system takes whole, aligned pages faster than pages cut anywhere.
  static constexpr std::size_t kWriteAlignment = 64 * 1024;  // bytes

  OutputFile() = default;
  ~OutputFile() { Close(); }
  OutputFile(OutputFile&&) = default;
  OutputFile& operator=(OutputFile&& other) noexcept;
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  // Creates path (create-or-truncate), closes it and reopens it read-write. Returns false
  // when the creation fails; the reopening is not checked (writes then go nowhere).
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
  // Makes room in a full buffer.
  void WriteFullBuffer();

  File file_;
  bool created_ = false;
  std::unique_ptr<std::uint8_t[]> buffer_;  // made by the first write, kept until destruction
  std::size_t used_ = 0;                    // bytes collected in buffer_
  std::size_t buffer_size_ = kDefaultBufferSize;
  std::uint64_t written_ = 0;  // bytes written into the file so far, from its start
};

}  // namespace tarvex
