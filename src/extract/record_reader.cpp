#include "extract/record_reader.h"

#include <algorithm>
#include <cstring>

namespace tarvex {

RecordReader::RecordReader(File& file, std::size_t block_size)
    : file_(file),
      block_size_(std::max(kRecordSize, block_size / kRecordSize * kRecordSize)),
      current_(own_.data()) {
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
  position_ = 0;
  DropReadAhead();
}

void RecordReader::KeepCurrent() {
  if (current_ != own_.data()) {
    std::memcpy(own_.data(), current_, kRecordSize);
    current_ = own_.data();
    if (pending_.change) pending_.change(own_, pending_.offset, pending_.size);
  }
  pending_ = {};
}

void RecordReader::ChangeWhenKept(Change change, std::size_t offset, std::size_t size) {
  if (current_ == own_.data()) {
    change(own_, offset, size);
    return;
  }
  pending_ = {change, offset, size};
}

void RecordReader::DropReadAhead() {
  KeepCurrent();
  mapping_.Reset();
  base_ = nullptr;
  available_ = 0;
  offset_ = 0;
}

bool RecordReader::Refill() {
  // The block is about to be replaced: keep the current record, which a short read would
  // leave behind its own bytes.
  DropReadAhead();
  return MapBlock() || ReadBlock();
}

// The window is cut at the file's length as it is now, like a read would be.
bool RecordReader::MapBlock() {
  mapping_ = file_.MapForReading(position_, block_size_);
  base_ = mapping_.data();
  available_ = mapping_.size();
  return available_ > 0;
}

bool RecordReader::ReadBlock() {
  block_.resize(block_size_);
  file_.Seek(position_);
  available_ = file_.Read(block_.data(), block_.size());
  base_ = block_.data();
  return available_ > 0;
}

std::size_t RecordReader::Next() {
  if (offset_ >= available_ && !Refill()) return 0;
  std::size_t got = std::min(kRecordSize, available_ - offset_);
  const std::uint8_t* src = base_ + offset_;
  if (got == kRecordSize) {
    current_ = src;
    pending_ = {};  // the record it was meant for is no longer visible anywhere
  } else {
    KeepCurrent();
    std::memcpy(own_.data(), src, got);
  }
  offset_ += got;
  position_ += static_cast<std::int64_t>(got);
  return got;
}

}  // namespace tarvex
