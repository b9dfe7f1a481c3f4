#include "extract/record_reader.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace tarvex {

RecordReader::RecordReader(File& file, std::size_t block_size)
    : file_(file),
      block_size_(std::max(kRecordSize, block_size / kRecordSize * kRecordSize)),
      current_(own_.data()),
      expected_length_(file.Length()) {
  Rewind();
}

void RecordReader::AlignedDelete::operator()(std::uint8_t* p) const {
  ::operator delete[](p, std::align_val_t{kBlockAlignment});
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
  shrunk_ = false;
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
  available_ = 0;
  offset_ = 0;
}

// The block is cut at the file's length as it is now, like a record-by-record read would be.
void RecordReader::Refill() {
  // The block is about to be overwritten: keep the current record, which a short read would
  // leave behind its own bytes.
  DropReadAhead();
  if (!block_) {
    block_.reset(static_cast<std::uint8_t*>(
        ::operator new[](block_size_, std::align_val_t{kBlockAlignment})));
  }
  available_ = file_.ReadAt(position_, block_.get(), block_size_);
}

std::size_t RecordReader::Expected() const {
  if (expected_length_ <= position_) return 0;
  return static_cast<std::size_t>(
      std::min<std::int64_t>(kRecordSize, expected_length_ - position_));
}

std::size_t RecordReader::Next() {
  if (shrunk_) return 0;
  if (offset_ >= available_) Refill();
  std::size_t got = std::min(kRecordSize, available_ - offset_);
  if (got < Expected()) {
    // The stream no longer holds this record: the walk ends before it, the file position
    // stays behind the last record yielded.
    shrunk_ = true;
    return 0;
  }
  if (got == 0) return 0;
  const std::uint8_t* src = block_.get() + offset_;
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
