#include "extract/output_file.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace tarvex {

OutputFile& OutputFile::operator=(OutputFile&& other) noexcept {
  if (this != &other) {
    Close();
    other.WaitForWriter();  // the writer holds the address of other's file
    file_ = std::move(other.file_);
    created_ = std::exchange(other.created_, false);
    buffer_ = std::move(other.buffer_);
    capacity_ = std::exchange(other.capacity_, 0);
    used_ = std::exchange(other.used_, 0);
    block_end_ = other.block_end_;
    buffer_size_ = other.buffer_size_;
    written_ = std::exchange(other.written_, 0);
    writer_ = other.writer_;
    behind_ = std::exchange(other.behind_, false);
  }
  return *this;
}

bool OutputFile::Create(const std::string& path, std::size_t buffer_size) {
  Close();
  WaitForWriter();  // earlier files are written before this one is made
  File created = File::Create(path);
  if (!created.is_open()) return false;
  created.Close();
  file_ = File::OpenReadWrite(path);
  created_ = true;
  written_ = 0;
  used_ = 0;
  behind_ = writer_ != nullptr && writer_->block_size() > kCarryRoom;
  buffer_size_ =
      behind_ ? writer_->block_size() - kCarryRoom : std::max<std::size_t>(buffer_size, 1);
  if (capacity_ < buffer_size_ + kCarryRoom) {  // the buffer of the previous file is kept
    buffer_.reset();
    capacity_ = 0;
  }
  SetBlockEnd();
  return true;
}

void OutputFile::SetBlockEnd() {
  std::uint64_t end = (written_ + buffer_size_) / kWriteAlignment * kWriteAlignment;
  block_end_ = end > written_ ? static_cast<std::size_t>(end - written_) : buffer_size_;
}

void OutputFile::Write(ByteView bytes) {
  if (!created_ || bytes.size() == 0) return;
  if (bytes.size() >= buffer_size_) {
    Flush();
    WaitForWriter();
    file_.Write(bytes.data(), bytes.size());
    written_ += bytes.size();
    SetBlockEnd();
    return;
  }
  std::memcpy(Extend(bytes.size()), bytes.data(), bytes.size());
}

std::uint8_t* OutputFile::Extend(std::size_t n) {
  if (!created_) return nullptr;
  if (used_ >= block_end_) WriteBlock();
  if (buffer_ && used_ + n > capacity_) Flush();
  if (!buffer_ || used_ + n > capacity_) MakeBuffer(n);
  std::uint8_t* room = buffer_.get() + used_;
  used_ += n;
  return room;
}

void OutputFile::MakeBuffer(std::size_t n) {
  if (behind_ && n <= writer_->block_size()) {
    buffer_ = writer_->Take();
    capacity_ = writer_->block_size();
    return;
  }
  if (behind_) {  // a room larger than the writer's blocks: this file is written directly
    WaitForWriter();
    behind_ = false;
  }
  capacity_ = std::max(n, buffer_size_) + kCarryRoom;
  buffer_ = std::make_unique_for_overwrite<std::uint8_t[]>(capacity_);
}

void OutputFile::PatchLe32(std::int64_t offset, std::uint32_t value) {
  if (!created_) return;
  Flush();
  WaitForWriter();
  std::uint8_t bytes[4];
  ByteWriter(bytes, sizeof bytes).put_le32(0, value);
  file_.Seek(offset);
  file_.Write(bytes, sizeof bytes);
}

void OutputFile::WriteBlock() {
  std::size_t carried = used_ - block_end_;
  if (behind_) {
    WriteBehind::Block next = writer_->Take();
    std::memcpy(next.get(), buffer_.get() + block_end_, carried);
    writer_->Write(file_, std::exchange(buffer_, std::move(next)), block_end_);
  } else {
    file_.Write(buffer_.get(), block_end_);
    std::memmove(buffer_.get(), buffer_.get() + block_end_, carried);
  }
  written_ += block_end_;
  used_ = carried;
  SetBlockEnd();
}

void OutputFile::Flush() {
  if (used_ != 0) {
    if (behind_) {
      writer_->Write(file_, std::move(buffer_), used_);
    } else {
      file_.Write(buffer_.get(), used_);
    }
  }
  written_ += used_;
  used_ = 0;
  SetBlockEnd();
}

void OutputFile::WaitForWriter() {
  if (writer_ != nullptr) writer_->Drain();
}

void OutputFile::Close() {
  if (!created_) return;
  Flush();
  WaitForWriter();
  file_.Close();
  created_ = false;
}

}  // namespace tarvex
