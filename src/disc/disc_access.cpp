#include "disc/disc_access.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <udfread/blockinput.h>
#include <udfread/udfread.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string_view>

namespace tarvex {

namespace {

std::string Upper(std::string text) {
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return text;
}

bool SameName(const std::string& a, const std::string& b) {
  return Upper(a) == Upper(b);
}

void SortByName(std::vector<DiscFileEntry>& files) {
  std::sort(files.begin(), files.end(), [](const DiscFileEntry& a, const DiscFileEntry& b) {
    return Upper(a.name) < Upper(b.name);
  });
}

// ---- a folder ---------------------------------------------------------------------------

// copy_file_range from one file to another, nothing when the kernel cannot copy between them.
std::optional<std::size_t> CopyRange(int from, std::uint64_t offset, std::size_t length, int to) {
  std::size_t done = 0;
  while (done < length) {
    auto in = static_cast<off_t>(offset + done);
    ssize_t n = copy_file_range(from, &in, to, nullptr, length - done, 0);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0 && done == 0 &&
        (errno == EXDEV || errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP)) {
      return std::nullopt;
    }
    if (n <= 0) break;
    done += static_cast<std::size_t>(n);
  }
  return done;
}

class PosixFile final : public DiscFile {
 public:
  PosixFile(int fd, std::uint64_t size) : fd_(fd), size_(size) {
#ifdef POSIX_FADV_SEQUENTIAL
    posix_fadvise(fd_, 0, 0, POSIX_FADV_SEQUENTIAL);
#endif
  }
  ~PosixFile() override {
    close(fd_);
  }
  std::uint64_t size() const override {
    return size_;
  }
  std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> out) override {
    std::size_t done = 0;
    while (done < out.size()) {
      ssize_t n =
          pread(fd_, out.data() + done, out.size() - done, static_cast<off_t>(offset + done));
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) break;
      done += static_cast<std::size_t>(n);
    }
    return done;
  }
  std::optional<std::size_t> CopyTo(std::uint64_t offset, std::size_t length, int fd) override {
    return CopyRange(fd_, offset, length, fd);
  }

 private:
  int fd_;
  std::uint64_t size_;
};

class FolderDisc final : public DiscAccess {
 public:
  explicit FolderDisc(std::filesystem::path folder) : folder_(std::move(folder)) {
    std::error_code ec;
    for (const auto& entry : std::filesystem::directory_iterator(folder_, ec)) {
      std::error_code ec2;
      if (!entry.is_regular_file(ec2)) continue;
      files_.push_back({entry.path().filename().string(), entry.file_size(ec2), std::nullopt, {}});
    }
    SortByName(files_);
  }
  const char* kind() const override { return "folder"; }
  const std::vector<DiscFileEntry>& files() const override { return files_; }
  std::unique_ptr<DiscFile> Open(const std::string& name) override {
    const DiscFileEntry* entry = Find(name);
    if (entry == nullptr) return nullptr;
    int fd = open((folder_ / entry->name).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) return nullptr;
    struct stat st {};
    if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
      close(fd);
      return nullptr;
    }
    return std::make_unique<PosixFile>(fd, static_cast<std::uint64_t>(st.st_size));
  }

 private:
  std::filesystem::path folder_;
  std::vector<DiscFileEntry> files_;
};

// The VIDEO_TS folder of path: path itself when it is named so, else its VIDEO_TS child.
std::optional<std::filesystem::path> FindVideoTs(const std::filesystem::path& path) {
  if (SameName(path.filename().string(), "VIDEO_TS")) return path;
  std::error_code ec;
  for (const auto& entry : std::filesystem::directory_iterator(path, ec)) {
    std::error_code ec2;
    if (entry.is_directory(ec2) && SameName(entry.path().filename().string(), "VIDEO_TS")) {
      return entry.path();
    }
  }
  return std::nullopt;
}

// ---- an ISO image -----------------------------------------------------------------------

// The block input libudfread reads the image through: a file descriptor or bytes in memory.
struct ImageInput {
  udfread_block_input base;  // first member: libudfread hands this pointer back
  int fd = -1;
  std::vector<std::uint8_t> memory;
  std::uint32_t blocks = 0;
  std::uint64_t bytes = 0;
};

int ImageRead(udfread_block_input* input, std::uint32_t lba, void* buf, std::uint32_t nblocks,
              int) {
  auto* self = reinterpret_cast<ImageInput*>(input);
  if (lba >= self->blocks) return 0;
  std::uint32_t n = std::min(nblocks, self->blocks - lba);
  std::uint64_t offset = std::uint64_t{lba} * UDF_BLOCK_SIZE;
  std::uint64_t bytes = std::uint64_t{n} * UDF_BLOCK_SIZE;
  if (self->fd < 0) {
    std::memcpy(buf, self->memory.data() + offset, bytes);
    return static_cast<int>(n);
  }
  std::uint64_t done = 0;
  auto* out = static_cast<std::uint8_t*>(buf);
  while (done < bytes) {
    ssize_t r = pread(self->fd, out + done, bytes - done, static_cast<off_t>(offset + done));
    if (r < 0 && errno == EINTR) continue;
    if (r <= 0) break;
    done += static_cast<std::uint64_t>(r);
  }
  return static_cast<int>(done / UDF_BLOCK_SIZE);
}

std::uint32_t ImageSize(udfread_block_input* input) {
  return reinterpret_cast<ImageInput*>(input)->blocks;
}

int ImageClose(udfread_block_input*) {
  return 0;  // the ImageDisc owns the input and closes it
}

// Whether the image's volume recognition sequence (from sector 16 on) announces a UDF
// file system (an NSR02 or NSR03 descriptor). Checked before libudfread opens the image, so
// that an image without UDF gets our one-line reason instead of the library's own messages.
bool AnnouncesUdf(ImageInput& input) {
  static constexpr std::string_view kKnown[] = {"BEA01", "TEA01", "CD001", "CDW02", "BOOT2"};
  std::uint8_t sector[UDF_BLOCK_SIZE];
  for (std::uint32_t lba = 16; lba < 16 + 64; ++lba) {
    if (ImageRead(&input.base, lba, sector, 1, 0) != 1) return false;
    std::string_view id(reinterpret_cast<const char*>(sector + 1), 5);
    if (id == "NSR02" || id == "NSR03") return true;
    if (std::find(std::begin(kKnown), std::end(kKnown), id) == std::end(kKnown)) return false;
  }
  return false;
}

// The ISO 9660 volume space size (primary volume descriptor, sector 16, bytes 80-83 little
// endian), or nothing without one.
std::optional<std::uint64_t> VolumeSectors(ImageInput& input) {
  std::uint8_t sector[UDF_BLOCK_SIZE];
  if (ImageRead(&input.base, 16, sector, 1, 0) != 1) return std::nullopt;
  if (sector[0] != 1 || std::string_view(reinterpret_cast<const char*>(sector + 1), 5) != "CD001")
    return std::nullopt;
  return std::uint64_t{sector[80]} | (std::uint64_t{sector[81]} << 8) |
         (std::uint64_t{sector[82]} << 16) | (std::uint64_t{sector[83]} << 24);
}

// The runs of a file of `blocks` records: from each run's first record, the last record
// whose image sector follows on one to one is found by bisection.
std::vector<FileExtent> FileExtents(UDFFILE* file, std::uint64_t blocks) {
  std::vector<FileExtent> extents;
  std::uint64_t at = 0;
  while (at < blocks && extents.size() < 4096) {
    std::uint32_t start = udfread_file_lba(file, static_cast<std::uint32_t>(at));
    if (start == 0) break;
    auto follows = [&](std::uint64_t r) {
      return udfread_file_lba(file, static_cast<std::uint32_t>(r)) == start + (r - at);
    };
    std::uint64_t lo = at, hi = blocks - 1;  // lo follows on; the answer lies in [lo, hi]
    while (lo < hi) {
      std::uint64_t mid = lo + (hi - lo + 1) / 2;
      if (follows(mid)) {
        lo = mid;
      } else {
        hi = mid - 1;
      }
    }
    extents.push_back({at, start, lo - at + 1});
    at = lo + 1;
  }
  return extents;
}

class UdfFile final : public DiscFile {
 public:
  // image_fd: the image file, for copies in the kernel (-1 for an image in memory).
  UdfFile(UDFFILE* file, int image_fd) : file_(file), image_fd_(image_fd) {
    std::int64_t n = udfread_file_size(file_);
    size_ = n > 0 ? static_cast<std::uint64_t>(n) : 0;
  }
  ~UdfFile() override { udfread_file_close(file_); }
  std::uint64_t size() const override { return size_; }
  std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> out) override {
    if (offset >= size_) return 0;
    std::size_t want =
        static_cast<std::size_t>(std::min<std::uint64_t>(out.size(), size_ - offset));
    std::size_t done = 0;
    // Whole blocks straight into the caller's buffer, the rest through a block of our own.
    while (done < want) {
      std::uint64_t pos = offset + done;
      auto block = static_cast<std::uint32_t>(pos / UDF_BLOCK_SIZE);
      std::size_t in_block = pos % UDF_BLOCK_SIZE;
      std::size_t left = want - done;
      if (in_block == 0 && left >= UDF_BLOCK_SIZE) {
        auto blocks =
            static_cast<std::uint32_t>(std::min<std::size_t>(left / UDF_BLOCK_SIZE, 1u << 20));
        std::uint32_t got = udfread_read_blocks(file_, out.data() + done, block, blocks, 0);
        if (got == 0) break;
        done += std::size_t{got} * UDF_BLOCK_SIZE;
        continue;
      }
      std::uint8_t tmp[UDF_BLOCK_SIZE];
      if (udfread_read_blocks(file_, tmp, block, 1, 0) != 1) break;
      std::size_t n = std::min(left, UDF_BLOCK_SIZE - in_block);
      std::memcpy(out.data() + done, tmp + in_block, n);
      done += n;
    }
    return done;
  }
  // Whole records of one run of the image are copied from the image file itself.
  std::optional<std::size_t> CopyTo(std::uint64_t offset, std::size_t length, int fd) override {
    if (image_fd_ < 0 || length == 0 || offset % UDF_BLOCK_SIZE != 0 ||
        length % UDF_BLOCK_SIZE != 0 || offset + length > size_) {
      return std::nullopt;
    }
    auto first = static_cast<std::uint32_t>(offset / UDF_BLOCK_SIZE);
    auto last = static_cast<std::uint32_t>((offset + length) / UDF_BLOCK_SIZE - 1);
    std::uint32_t lba = udfread_file_lba(file_, first);
    if (lba == 0 || udfread_file_lba(file_, last) != lba + (last - first)) return std::nullopt;
    return CopyRange(image_fd_, std::uint64_t{lba} * UDF_BLOCK_SIZE, length, fd);
  }

 private:
  UDFFILE* file_;
  int image_fd_;
  std::uint64_t size_ = 0;
};

class ImageDisc final : public DiscAccess {
 public:
  ImageDisc() = default;
  ~ImageDisc() override {
    if (udf_ != nullptr) udfread_close(udf_);
    if (input_ && input_->fd >= 0) close(input_->fd);
  }

  bool Start(std::unique_ptr<ImageInput> input, std::string& error) {
    input_ = std::move(input);
    input_->base.read = ImageRead;
    input_->base.size = ImageSize;
    input_->base.close = ImageClose;
    if (!AnnouncesUdf(*input_)) {
      error = "no UDF file system in the image";
      return false;
    }
    udf_ = udfread_init();
    if (udf_ == nullptr || udfread_open_input(udf_, &input_->base) < 0) {
      error = "no UDF file system in the image";
      return false;
    }
    UDFDIR* root = udfread_opendir(udf_, "/");
    if (root == nullptr) {
      error = "the image's root folder cannot be read";
      return false;
    }
    udfread_dirent entry{};
    while (udfread_readdir(root, &entry) != nullptr) {
      if (entry.d_type == UDF_DT_DIR && entry.d_name && SameName(entry.d_name, "VIDEO_TS")) {
        folder_ = std::string("/") + entry.d_name + "/";
        break;
      }
    }
    udfread_closedir(root);
    if (folder_.empty()) {
      error = "no VIDEO_TS folder in the image";
      return false;
    }
    ListFiles();
    sizes_ = {input_->bytes, VolumeSectors(*input_)};
    return true;
  }

  const char* kind() const override { return "iso"; }
  std::optional<ImageSizes> image_sizes() const override { return sizes_; }
  const std::vector<DiscFileEntry>& files() const override { return files_; }
  std::unique_ptr<DiscFile> Open(const std::string& name) override {
    const DiscFileEntry* entry = Find(name);
    if (entry == nullptr) return nullptr;
    UDFFILE* file = udfread_file_open(udf_, (folder_ + entry->name).c_str());
    if (file == nullptr) return nullptr;
    return std::make_unique<UdfFile>(file, input_->fd);
  }

 private:
  void ListFiles() {
    UDFDIR* dir = udfread_opendir(udf_, folder_.c_str());
    if (dir == nullptr) return;
    udfread_dirent entry{};
    std::vector<std::string> names;
    while (udfread_readdir(dir, &entry) != nullptr) {
      if (entry.d_type == UDF_DT_REG && entry.d_name != nullptr) names.emplace_back(entry.d_name);
      if (names.size() > 4096) break;  // a damaged directory does not list forever
    }
    udfread_closedir(dir);
    for (const std::string& name : names) {
      UDFFILE* file = udfread_file_open(udf_, (folder_ + name).c_str());
      if (file == nullptr) continue;
      std::int64_t size = udfread_file_size(file);
      std::uint32_t lba = udfread_file_lba(file, 0);
      std::uint64_t bytes = size > 0 ? static_cast<std::uint64_t>(size) : 0;
      files_.push_back({name, bytes, lba != 0 ? std::optional<std::uint32_t>(lba) : std::nullopt,
                        FileExtents(file, (bytes + UDF_BLOCK_SIZE - 1) / UDF_BLOCK_SIZE)});
      udfread_file_close(file);
    }
    SortByName(files_);
  }

  std::unique_ptr<ImageInput> input_;
  std::optional<ImageSizes> sizes_;
  udfread* udf_ = nullptr;
  std::string folder_;
  std::vector<DiscFileEntry> files_;
};

// ---- files in memory ----------------------------------------------------------------------

class MemoryFile final : public DiscFile {
 public:
  explicit MemoryFile(const std::vector<std::uint8_t>& bytes) : bytes_(bytes) {}
  std::uint64_t size() const override { return bytes_.size(); }
  std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> out) override {
    if (offset >= bytes_.size()) return 0;
    std::size_t n = std::min<std::size_t>(out.size(), bytes_.size() - offset);
    std::memcpy(out.data(), bytes_.data() + offset, n);
    return n;
  }

 private:
  const std::vector<std::uint8_t>& bytes_;
};

class MemoryDisc final : public DiscAccess {
 public:
  explicit MemoryDisc(std::vector<std::pair<std::string, std::vector<std::uint8_t>>> files)
      : contents_(std::move(files)) {
    for (const auto& [name, bytes] : contents_)
      files_.push_back({name, bytes.size(), std::nullopt, {}});
    SortByName(files_);
  }
  const char* kind() const override { return "memory"; }
  const std::vector<DiscFileEntry>& files() const override { return files_; }
  std::unique_ptr<DiscFile> Open(const std::string& name) override {
    for (const auto& [n, bytes] : contents_) {
      if (SameName(n, name)) return std::make_unique<MemoryFile>(bytes);
    }
    return nullptr;
  }

 private:
  std::vector<std::pair<std::string, std::vector<std::uint8_t>>> contents_;
  std::vector<DiscFileEntry> files_;
};

}  // namespace

const DiscFileEntry* DiscAccess::Find(const std::string& name) const {
  for (const DiscFileEntry& entry : files()) {
    if (SameName(entry.name, name)) return &entry;
  }
  return nullptr;
}

std::optional<std::vector<std::uint8_t>> DiscAccess::ReadWhole(const std::string& name,
                                                               std::uint64_t max_bytes) {
  std::unique_ptr<DiscFile> file = Open(name);
  if (!file) return std::nullopt;
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(std::min(file->size(), max_bytes)));
  bytes.resize(file->ReadAt(0, bytes));
  return bytes;
}

std::unique_ptr<DiscAccess> OpenDisc(const std::string& path, std::string& error) {
  std::error_code ec;
  std::filesystem::path p(path);
  auto status = std::filesystem::status(p, ec);
  if (ec || !std::filesystem::exists(status)) {
    error = "no such file or folder";
    return nullptr;
  }
  if (std::filesystem::is_directory(status)) {
    std::optional<std::filesystem::path> folder = FindVideoTs(p);
    if (!folder) {
      error = "not a VIDEO_TS folder and holds none";
      return nullptr;
    }
    return std::make_unique<FolderDisc>(*folder);
  }
  int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (fd < 0) {
    error = std::strerror(errno);
    return nullptr;
  }
  struct stat st {};
  if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
    close(fd);
    error = "not a folder or an image file";
    return nullptr;
  }
#ifdef POSIX_FADV_SEQUENTIAL
  posix_fadvise(fd, 0, 0, POSIX_FADV_SEQUENTIAL);  // the VOBs are read from start to end
#endif
  auto input = std::make_unique<ImageInput>();
  input->fd = fd;
  input->blocks = static_cast<std::uint32_t>(
      std::min<std::uint64_t>(static_cast<std::uint64_t>(st.st_size) / UDF_BLOCK_SIZE, UINT32_MAX));
  input->bytes = static_cast<std::uint64_t>(st.st_size);
  auto disc = std::make_unique<ImageDisc>();
  if (!disc->Start(std::move(input), error)) return nullptr;
  return disc;
}

std::unique_ptr<DiscAccess> OpenMemoryDisc(
    std::vector<std::pair<std::string, std::vector<std::uint8_t>>> files) {
  return std::make_unique<MemoryDisc>(std::move(files));
}

std::unique_ptr<DiscAccess> OpenDiscImage(std::vector<std::uint8_t> image, std::string& error) {
  auto input = std::make_unique<ImageInput>();
  input->blocks = static_cast<std::uint32_t>(image.size() / UDF_BLOCK_SIZE);
  input->bytes = image.size();
  input->memory = std::move(image);
  auto disc = std::make_unique<ImageDisc>();
  if (!disc->Start(std::move(input), error)) return nullptr;
  return disc;
}

}  // namespace tarvex
