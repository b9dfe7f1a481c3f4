// Access to the files of one DVD-Video disc, wherever they lie: a VIDEO_TS folder, the folder
// that holds one, or an ISO image read directly (UDF, through libudfread; nothing is mounted).
// Every kind offers the same three things: the list of the VIDEO_TS files with their sizes, and
// reading a file at an offset.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tarvex {

// A run of sectors of an image that holds consecutive bytes of a file.
struct FileExtent {
  std::uint64_t file_sector = 0;   // the file's record the run starts with
  std::uint64_t image_sector = 0;  // where it lies in the image
  std::uint64_t sectors = 0;
};

struct DiscFileEntry {
  std::string name;  // as the disc spells it (DVD-Video names are upper case)
  std::uint64_t size = 0;
  // The file's first sector counted from the start of the disc, when the disc kind knows it
  // (an ISO image); a folder has no sectors.
  std::optional<std::uint32_t> disc_sector;
  // Where the file's records lie in an image, in file order (empty for a folder). Found by
  // asking the UDF file system for the image sector of file records: a file is taken to be
  // made of runs in which the image sectors follow the records one to one, and the runs
  // are found by bisection (DVD-Video files are written as one run each).
  std::vector<FileExtent> extents;
};

// What an image holds against what its file system says it should.
struct ImageSizes {
  std::uint64_t bytes = 0;                      // the image file's size
  std::optional<std::uint64_t> volume_sectors;  // the ISO 9660 volume space size
};

// One open file of the disc.
class DiscFile {
 public:
  virtual ~DiscFile() = default;
  virtual std::uint64_t size() const = 0;
  // Reads up to out.size() bytes at offset; returns the number read (short at the end of the
  // file, 0 beyond it or on a read error).
  virtual std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> out) = 0;
  // Copies length bytes at offset into the open file fd at its position, in the kernel
  // (copy_file_range: no buffer of ours in between); returns the bytes copied (short at the end
  // of the file or on a read error), or nothing when this file and fd cannot be copied so and
  // nothing was copied (the caller then reads and writes).
  virtual std::optional<std::size_t> CopyTo(std::uint64_t offset, std::size_t length, int fd) {
    (void)offset, (void)length, (void)fd;
    return std::nullopt;
  }
};

class DiscAccess {
 public:
  virtual ~DiscAccess() = default;
  // "folder" or "iso".
  virtual const char* kind() const = 0;
  // The regular files of the VIDEO_TS folder, sorted by name.
  virtual const std::vector<DiscFileEntry>& files() const = 0;
  // Opens a file of the list by its name (case-insensitive); nullptr when it cannot be opened.
  virtual std::unique_ptr<DiscFile> Open(const std::string& name) = 0;

  // An image's size and its volume's; nothing for a folder.
  virtual std::optional<ImageSizes> image_sizes() const { return std::nullopt; }

  // The entry of a file by name (case-insensitive), or nullptr.
  const DiscFileEntry* Find(const std::string& name) const;
  // The whole file (at most max_bytes) or nothing when it cannot be opened.
  std::optional<std::vector<std::uint8_t>> ReadWhole(const std::string& name,
                                                     std::uint64_t max_bytes);
};

// Opens path as a disc: a folder named VIDEO_TS (any case), a folder holding one, or an image
// file. On failure returns nullptr and sets error to a one-line reason.
std::unique_ptr<DiscAccess> OpenDisc(const std::string& path, std::string& error);

// An ISO image held in memory (for tests and fuzzing). nullptr when it holds no UDF file
// system with a VIDEO_TS folder.
std::unique_ptr<DiscAccess> OpenDiscImage(std::vector<std::uint8_t> image, std::string& error);

// Files held in memory, as if they were a VIDEO_TS folder (for tests and fuzzing).
std::unique_ptr<DiscAccess> OpenMemoryDisc(
    std::vector<std::pair<std::string, std::vector<std::uint8_t>>> files);

}  // namespace tarvex
