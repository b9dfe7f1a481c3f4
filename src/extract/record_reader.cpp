#include "extract/record_reader.h"

#include <algorithm>
#include <cstring>

namespace tarvex {

RecordReader::RecordReader(File& file, std::size_t block_size)
    : file_(file),
      block_(std::max(kRecordSize, block_size / kRecordSize * kRecordSize)),
      short_record_(kRecordSize, 0),
      current_(short_record_.data()) {
  Rewind();
}

RecordReader::~RecordReader() {
  if (!released_) file_.Seek(position_);
}

void RecordReader::Release() {
  if (!released_) file_.Seek(position_);
  released_ = true;
}

void RecordReader::Rewind() {
  file_.Seek(0);
  position_ = 0;
  block_used_ = 0;
  block_offset_ = 0;
  at_end_ = false;
}

bool RecordReader::FillBlock() {
  if (at_end_) return false;
  // The block is about to be overwritten: keep the current record, which a short read
  // would leave behind its own bytes.
  if (current_ != short_record_.data()) {
    std::memcpy(short_record_.data(), current_, kRecordSize);
    current_ = short_record_.data();
  }
  block_offset_ = 0;
  block_used_ = file_.Read(block_.data(), block_.size());
  // File::Read only stops short at the end of the file.
  if (block_used_ < block_.size()) at_end_ = true;
  return block_used_ > 0;
}

std::size_t RecordReader::Next() {
  if (block_offset_ >= block_used_ && !FillBlock()) return 0;
  std::size_t got = std::min(kRecordSize, block_used_ - block_offset_);
  std::uint8_t* src = block_.data() + block_offset_;
  if (got == kRecordSize) {
    current_ = src;
  } else {
    if (current_ != short_record_.data()) {
      std::memcpy(short_record_.data(), current_, kRecordSize);
    }
    std::memcpy(short_record_.data(), src, got);
    current_ = short_record_.data();
  }
  block_offset_ += got;
  position_ += static_cast<std::int64_t>(got);
  return got;
}

}  // namespace tarvex
