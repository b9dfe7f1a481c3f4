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

struct DiscFileEntry {
  std::string name;  // as the disc spells it (DVD-Video names are upper case)
  std::uint64_t size = 0;
  // The file's first sector counted from the start of the disc, when the disc kind knows it
  // (an ISO image); a folder has no sectors.
  std::optional<std::uint32_t> disc_sector;
};

// One open file of the disc.
class DiscFile {
 public:
  virtual ~DiscFile() = default;
  virtual std::uint64_t size() const = 0;
  // Reads up to out.size() bytes at offset; returns the number read (short at the end of the
  // file, 0 beyond it or on a read error).
  virtual std::size_t ReadAt(std::uint64_t offset, std::span<std::uint8_t> out) = 0;
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
