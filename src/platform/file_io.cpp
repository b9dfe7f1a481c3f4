#include "platform/file_io.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace tarvex {

namespace {

int OpenRegular(const std::string& path, int flags) {
  // The mode applies only when O_CREAT creates the file: owner read/write, others read.
  // O_NONBLOCK keeps a FIFO from blocking the open; only regular files are accepted.
  int fd = ::open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK, 0644);
  if (fd < 0) return -1;
  struct stat st {};
  if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
    ::close(fd);
    return -1;
  }
  int fl = ::fcntl(fd, F_GETFL);
  if (fl >= 0) ::fcntl(fd, F_SETFL, fl & ~O_NONBLOCK);
  return fd;
}

}  // namespace

File::~File() {
  Close();
}

File::File(File&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}

File& File::operator=(File&& other) noexcept {
  if (this != &other) {
    Close();
    fd_ = std::exchange(other.fd_, -1);
  }
  return *this;
}

File File::OpenRead(const std::string& path) {
  return File(OpenRegular(path, O_RDONLY));
}
File File::OpenReadWrite(const std::string& path) {
  return File(OpenRegular(path, O_RDWR));
}
File File::OpenWrite(const std::string& path) {
  return File(OpenRegular(path, O_WRONLY));
}
File File::Create(const std::string& path) {
  return File(OpenRegular(path, O_RDWR | O_CREAT | O_TRUNC));
}

std::size_t File::Read(void* buf, std::size_t n) {
  if (fd_ < 0) return 0;
  std::size_t done = 0;
  auto* p = static_cast<char*>(buf);
  while (done < n) {
    ssize_t got = ::read(fd_, p + done, n - done);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    done += static_cast<std::size_t>(got);
  }
  return done;
}

std::size_t File::Write(const void* buf, std::size_t n) {
  if (fd_ < 0) return 0;
  std::size_t done = 0;
  const auto* p = static_cast<const char*>(buf);
  while (done < n) {
    ssize_t put = ::write(fd_, p + done, n - done);
    if (put < 0 && errno == EINTR) continue;
    if (put <= 0) break;
    done += static_cast<std::size_t>(put);
  }
  return done;
}

std::int64_t File::Seek(std::int64_t pos) {
  if (fd_ < 0 || pos < 0) return -1;
  return ::lseek(fd_, static_cast<off_t>(pos), SEEK_SET);
}

std::int64_t File::Tell() const {
  return fd_ < 0 ? -1 : ::lseek(fd_, 0, SEEK_CUR);
}

std::int64_t File::Length() const {
  if (fd_ < 0) return -1;
  struct stat st {};
  return ::fstat(fd_, &st) == 0 ? static_cast<std::int64_t>(st.st_size) : -1;
}

std::size_t File::ReadAt(std::int64_t pos, void* buf, std::size_t n) const {
  if (fd_ < 0 || pos < 0) return 0;
  std::size_t done = 0;
  auto* p = static_cast<char*>(buf);
  while (done < n) {
    ssize_t got =
        ::pread(fd_, p + done, n - done, static_cast<off_t>(pos + static_cast<std::int64_t>(done)));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    done += static_cast<std::size_t>(got);
  }
  return done;
}

void File::Close() {
  if (fd_ >= 0) ::close(fd_);
  fd_ = -1;
}

bool File::Exists(const std::string& path) {
  return ::access(path.c_str(), F_OK) == 0;
}

bool File::IsDirectory(const std::string& path) {
  struct stat st {};
  return ::stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool File::Unlink(const std::string& path) {
  return ::unlink(path.c_str()) == 0;
}

}  // namespace tarvex
