// Bounds-checked access to binary data. All DVD and MPEG fields are big-endian; the names say
// the byte order (be16, be32) and the few deliberately raw little-endian reads say le16/le32.
// A byte outside the data reads as 0 and a write outside the buffer is dropped, so no decoder
// can read or write past its buffer whatever offsets a damaged file holds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace tarvex {

class ByteView {
 public:
  ByteView() = default;
  ByteView(const std::uint8_t* data, std::size_t size) : data_(data), size_(data ? size : 0) {}
  ByteView(std::span<const std::uint8_t> s) : ByteView(s.data(), s.size()) {}     // NOLINT
  ByteView(const std::vector<std::uint8_t>& v) : ByteView(v.data(), v.size()) {}  // NOLINT

  const std::uint8_t* data() const { return data_; }
  std::size_t size() const { return size_; }
  bool contains(std::size_t off, std::size_t len = 1) const {
    return off < size_ && len <= size_ - off;
  }

  // Byte i after off; 0 when outside the data.
  std::uint8_t u8(std::size_t off, std::size_t i = 0) const {
    return off < size_ && i < size_ - off ? data_[off + i] : 0;
  }
  std::int8_t s8(std::size_t off) const { return static_cast<std::int8_t>(u8(off)); }
  std::uint16_t be16(std::size_t off) const {
    return static_cast<std::uint16_t>((u8(off, 0) << 8) | u8(off, 1));
  }
  std::uint32_t be24(std::size_t off) const {
    return (std::uint32_t{u8(off, 0)} << 16) | (std::uint32_t{u8(off, 1)} << 8) | u8(off, 2);
  }
  std::uint32_t be32(std::size_t off) const {
    return (std::uint32_t{u8(off, 0)} << 24) | (std::uint32_t{u8(off, 1)} << 16) |
           (std::uint32_t{u8(off, 2)} << 8) | u8(off, 3);
  }
  std::uint16_t le16(std::size_t off) const {
    return static_cast<std::uint16_t>(u8(off, 0) | (u8(off, 1) << 8));
  }
  std::uint32_t le32(std::size_t off) const {
    return std::uint32_t{u8(off, 0)} | (std::uint32_t{u8(off, 1)} << 8) |
           (std::uint32_t{u8(off, 2)} << 16) | (std::uint32_t{u8(off, 3)} << 24);
  }

  // The part from off on (at most len bytes); empty when off lies outside.
  ByteView sub(std::size_t off, std::size_t len = SIZE_MAX) const {
    if (off >= size_) return {};
    std::size_t n = size_ - off;
    return {data_ + off, len < n ? len : n};
  }
  // Bytes from off up to the first zero byte or the end, as text (like "%s" of a buffer).
  std::string_view cstr(std::size_t off, std::size_t max_len = SIZE_MAX) const;

 private:
  const std::uint8_t* data_ = nullptr;
  std::size_t size_ = 0;
};

inline std::string_view ByteView::cstr(std::size_t off, std::size_t max_len) const {
  ByteView rest = sub(off, max_len);
  std::size_t n = 0;
  while (n < rest.size() && rest.data()[n] != 0) ++n;
  return {reinterpret_cast<const char*>(rest.data()), n};
}

// Writes fields into a fixed buffer; writes outside the buffer are dropped.
class ByteWriter {
 public:
  ByteWriter(std::uint8_t* data, std::size_t size) : data_(data), size_(data ? size : 0) {}
  ByteWriter(std::span<std::uint8_t> s) : ByteWriter(s.data(), s.size()) {}     // NOLINT
  ByteWriter(std::vector<std::uint8_t>& v) : ByteWriter(v.data(), v.size()) {}  // NOLINT

  std::size_t size() const { return size_; }
  void put_u8(std::size_t off, std::uint8_t v) {
    if (off < size_) data_[off] = v;
  }
  void put_be16(std::size_t off, std::uint32_t v) {
    put_u8(off, static_cast<std::uint8_t>(v >> 8));
    if (off + 1 > off) put_u8(off + 1, static_cast<std::uint8_t>(v));
  }
  void put_be32(std::size_t off, std::uint32_t v) {
    put_be16(off, v >> 16);
    if (off + 2 > off) put_be16(off + 2, v);
  }
  void put_le16(std::size_t off, std::uint32_t v) {
    put_u8(off, static_cast<std::uint8_t>(v));
    if (off + 1 > off) put_u8(off + 1, static_cast<std::uint8_t>(v >> 8));
  }
  void put_le32(std::size_t off, std::uint32_t v) {
    put_le16(off, v);
    if (off + 2 > off) put_le16(off + 2, v >> 16);
  }
  void put_bytes(std::size_t off, ByteView bytes) {
    for (std::size_t i = 0; i < bytes.size() && off + i >= off; ++i) put_u8(off + i, bytes.u8(i));
  }

 private:
  std::uint8_t* data_;
  std::size_t size_;
};

// Appends big-endian fields to a growing byte vector (for building tables to write out).
class ByteAppender {
 public:
  explicit ByteAppender(std::vector<std::uint8_t>& out) : out_(out) {}
  void u8(std::uint32_t v) { out_.push_back(static_cast<std::uint8_t>(v)); }
  void be16(std::uint32_t v) {
    u8(v >> 8);
    u8(v);
  }
  void be32(std::uint32_t v) {
    be16(v >> 16);
    be16(v);
  }
  void le16(std::uint32_t v) {
    u8(v);
    u8(v >> 8);
  }
  void le32(std::uint32_t v) {
    le16(v);
    le16(v >> 16);
  }
  void bytes(ByteView b) { out_.insert(out_.end(), b.data(), b.data() + b.size()); }
  void zeros(std::size_t n) { out_.insert(out_.end(), n, 0); }

 private:
  std::vector<std::uint8_t>& out_;
};

}  // namespace tarvex
