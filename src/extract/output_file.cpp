#include "extract/output_file.h"

#include <utility>

namespace tarvex {

OutputFile& OutputFile::operator=(OutputFile&& other) noexcept {
  if (this != &other) {
    Close();
    file_ = std::move(other.file_);
    created_ = std::exchange(other.created_, false);
    buffer_ = std::move(other.buffer_);
    buffer_size_ = other.buffer_size_;
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
  buffer_size_ = buffer_size;
  buffer_.clear();
  return true;
}

void OutputFile::Write(ByteView bytes) {
  if (!created_ || bytes.size() == 0) return;
  if (buffer_.size() + bytes.size() > buffer_size_) {
    Flush();
    if (bytes.size() >= buffer_size_) {
      file_.Write(bytes.data(), bytes.size());
      return;
    }
  }
  if (buffer_.capacity() < buffer_size_) buffer_.reserve(buffer_size_);
  buffer_.insert(buffer_.end(), bytes.data(), bytes.data() + bytes.size());
}

void OutputFile::PatchLe32(std::int64_t offset, std::uint32_t value) {
  if (!created_) return;
  Flush();
  std::uint8_t bytes[4];
  ByteWriter(bytes, sizeof bytes).put_le32(0, value);
  file_.Seek(offset);
  file_.Write(bytes, sizeof bytes);
}

void OutputFile::Flush() {
  if (!buffer_.empty()) file_.Write(buffer_.data(), buffer_.size());
  buffer_.clear();
}

void OutputFile::Close() {
  if (!created_) return;
  Flush();
  file_.Close();
  created_ = false;
  std::vector<std::uint8_t>().swap(buffer_);
}

}  // namespace tarvex
