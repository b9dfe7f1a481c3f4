#include "extract/output_file.h"

#include <cstring>
#include <utility>

namespace tarvex {

OutputFile& OutputFile::operator=(OutputFile&& other) noexcept {
  if (this != &other) {
    Close();
    file_ = std::move(other.file_);
    created_ = std::exchange(other.created_, false);
    buffer_ = std::move(other.buffer_);
    used_ = std::exchange(other.used_, 0);
    buffer_size_ = other.buffer_size_;
    written_ = std::exchange(other.written_, 0);
  }
  return *this;
}

bool OutputFile::Create(const std::string& path, std::size_t buffer_size) {
  Close();
  File created = File::Create(path);
  if (!created.is_open()) return false;
  created.Close();
  file_ = File::OpenReadWrite(path);
  created_ = true;
  written_ = 0;
  if (buffer_size != buffer_size_) buffer_.reset();
  buffer_size_ = buffer_size == 0 ? 1 : buffer_size;
  used_ = 0;
  return true;
}

void OutputFile::Write(ByteView bytes) {
  if (!created_ || bytes.size() == 0) return;
  if (bytes.size() >= buffer_size_) {
    Flush();
    file_.Write(bytes.data(), bytes.size());
    written_ += bytes.size();
    return;
  }
  std::memcpy(Extend(bytes.size()), bytes.data(), bytes.size());
}

std::uint8_t* OutputFile::Extend(std::size_t n) {
  if (!created_) return nullptr;
  if (used_ + n > buffer_size_) WriteFullBuffer();
  if (used_ + n > buffer_size_) Flush();
  if (n > buffer_size_) {  // a block larger than the buffer: the buffer grows to hold it
    buffer_size_ = n;
    buffer_.reset();
  }
  if (!buffer_) buffer_ = std::make_unique_for_overwrite<std::uint8_t[]>(buffer_size_);
  std::uint8_t* room = buffer_.get() + used_;
  used_ += n;
  return room;
}

void OutputFile::PatchLe32(std::int64_t offset, std::uint32_t value) {
  if (!created_) return;
  Flush();
  std::uint8_t bytes[4];
  ByteWriter(bytes, sizeof bytes).put_le32(0, value);
  file_.Seek(offset);
  file_.Write(bytes, sizeof bytes);
}

void OutputFile::WriteFullBuffer() {
  std::uint64_t aligned_end = (written_ + used_) / kWriteAlignment * kWriteAlignment;
  if (aligned_end <= written_) return;
  auto n = static_cast<std::size_t>(aligned_end - written_);
  file_.Write(buffer_.get(), n);
  written_ += n;
  used_ -= n;
  std::memmove(buffer_.get(), buffer_.get() + n, used_);
}

void OutputFile::Flush() {
  if (used_ != 0) file_.Write(buffer_.get(), used_);
  written_ += used_;
  used_ = 0;
}

void OutputFile::Close() {
  if (!created_) return;
  Flush();
  file_.Close();
  created_ = false;
}

}  // namespace tarvex
