// Sectors of a VOB set read as one sector space through the disc's files (a folder or an ISO
// image alike), across the boundaries of its VOB files.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "disc/model.h"

namespace tarvex {

inline constexpr std::size_t kSectorSize = 2048;

class VobSetReader {
 public:
  VobSetReader(DiscAccess& access, const VobSet& set);
  // Reads out.size() / 2048 sectors of the set from sector on. False when a sector cannot be
  // read (a file missing, shorter than it was, a read error): error then names the VOB file
  // and its record, and read says how many whole sectors were read before it.
  bool Read(std::uint64_t sector, std::span<std::uint8_t> out, std::string& error,
            std::size_t& read);
  bool Read(std::uint64_t sector, std::span<std::uint8_t> out, std::string& error) {
    std::size_t read = 0;
    return Read(sector, out, error, read);
  }
  // Copies count sectors from sector on into fd in the kernel. Nothing when the files cannot be
  // copied so (nothing was copied); false (with error, and copied the whole sectors copied)
  // when a sector cannot be read.
  std::optional<bool> CopyTo(int fd, std::uint64_t sector, std::uint64_t count, std::string& error,
                             std::uint64_t& copied);

 private:
  DiscFile* File(std::size_t part);
  // The part holding sector, or parts.size().
  std::size_t PartOf(std::uint64_t sector) const;
  std::string PastEnd(std::uint64_t sector) const;
  DiscAccess& access_;
  const VobSet& set_;
  std::vector<std::unique_ptr<DiscFile>> files_;
};

}  // namespace tarvex
