// The one wrapper over the operating system's handle-based file functions (open, creat, read,
// positioned read, write, lseek, tell, file length, access, unlink, close). A File owns its
// descriptor.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace tarvex {

// A read-only, private view of part of a file mapped into memory; unmapped when destroyed.
// Another program that shortens the file while a view of it is alive makes the pages beyond the
// new end inaccessible, so views are kept small and short-lived.
class MappedRegion {
 public:
  MappedRegion() = default;
  ~MappedRegion();
  MappedRegion(MappedRegion&& other) noexcept;
  MappedRegion& operator=(MappedRegion&& other) noexcept;
  MappedRegion(const MappedRegion&) = delete;
  MappedRegion& operator=(const MappedRegion&) = delete;

  const std::uint8_t* data() const { return data_; }
  std::size_t size() const { return size_; }
  void Reset();

 private:
  friend class File;
  void* mapping_ = nullptr;  // page-aligned start of the mapping
  std::size_t mapping_size_ = 0;
  const std::uint8_t* data_ = nullptr;
  std::size_t size_ = 0;
};

class File {
 public:
  File() = default;
  ~File();
  File(File&& other) noexcept;
  File& operator=(File&& other) noexcept;
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  // Opens an existing regular file read-only (binary). A directory, a FIFO, a device or an
  // unreadable file gives a closed File (and opening never blocks).
  static File OpenRead(const std::string& path);
  // Opens an existing file for reading and writing (binary).
  static File OpenReadWrite(const std::string& path);
  // Opens an existing file write-only (binary), keeping its contents.
  static File OpenWrite(const std::string& path);
  // Creates the file or truncates an existing one, with owner read/write permission (0644).
  static File Create(const std::string& path);

  bool is_open() const { return fd_ >= 0; }
  // Reads up to n bytes, retrying short reads until n or the end of the file.
  // Returns the number of bytes read (0 at the end or on error).
  std::size_t Read(void* buf, std::size_t n);
  // Writes n bytes; returns the number written.
  std::size_t Write(const void* buf, std::size_t n);
  // Moves to an absolute position; returns the new position or -1.
  std::int64_t Seek(std::int64_t pos);
  std::int64_t Tell() const;
  // Length of the file in bytes (-1 when closed).
  std::int64_t Length() const;
  // Maps up to n bytes from pos, cut at the file's current length. An empty region when there
  // is nothing there or the file cannot be mapped (the caller then reads instead).
  MappedRegion MapForReading(std::int64_t pos, std::size_t n) const;
  // Reads up to n bytes from the absolute position pos without moving the file position,
  // retrying short reads until n or the end of the file as it is now. Returns the number of
  // bytes read: fewer than n at the end, or when the system reports an error (a file on a
  // medium that went away, say): unlike a mapped view, a file shortened by another program
  // only gives less.
  std::size_t ReadAt(std::int64_t pos, void* buf, std::size_t n) const;
  void Close();

  // access(): does a file of that name exist?
  static bool Exists(const std::string& path);
  static bool IsDirectory(const std::string& path);
  static bool Unlink(const std::string& path);

 private:
  explicit File(int fd) : fd_(fd) {}
  int fd_ = -1;
};

}  // namespace tarvex
