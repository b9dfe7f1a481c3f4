// The one wrapper over the operating system's handle-based file functions (open, creat, read,
// positioned read, write, lseek, tell, file length, access, unlink, close). A File owns its
// descriptor.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace tarvex {

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
  // Reads up to n bytes from the absolute position pos without moving the file position,
  // retrying short reads until n or the end of the file as it is now. Returns the number of
  // bytes read: fewer than n at the end, or when the system reports an error (a file on a
  // medium that went away, say). Files are never mapped into memory: a mapped file that
  // another program shortens stops the process with a bus error where a read just gets less.
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
