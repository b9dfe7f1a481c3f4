#include "archive/vob_reader.h"

#include <algorithm>

namespace tarvex {

VobSetReader::VobSetReader(DiscAccess& access, const VobSet& set)
    : access_(access), set_(set), files_(set.parts.size()) {}

DiscFile* VobSetReader::File(std::size_t part) {
  if (!files_[part]) files_[part] = access_.Open(set_.parts[part].name);
  return files_[part].get();
}

// A sector past the set's last file: named as a record of that file (a file that shrank, or
// that the tables reach beyond).
std::string VobSetReader::PastEnd(std::uint64_t sector) const {
  if (set_.parts.empty()) return "the VOB set has no files";
  const VobSet::Part& last = set_.parts.back();
  if (sector < last.first_sector)
    return "sector " + std::to_string(sector) + " lies in no VOB file";
  return last.name + ": sector " + std::to_string(sector - last.first_sector) +
         " lies past the end of the file (" + std::to_string(last.size / kSectorSize) + " sectors)";
}

std::size_t VobSetReader::PartOf(std::uint64_t sector) const {
  std::size_t part = 0;
  while (part < set_.parts.size() &&
         sector >= set_.parts[part].first_sector + set_.parts[part].size / kSectorSize) {
    ++part;
  }
  if (part < set_.parts.size() && sector < set_.parts[part].first_sector) return set_.parts.size();
  return part;
}

std::optional<bool> VobSetReader::CopyTo(int fd, std::uint64_t sector, std::uint64_t count,
                                         std::string& error, std::uint64_t& copied) {
  copied = 0;
  while (copied < count) {
    std::uint64_t at = sector + copied;
    std::size_t part = PartOf(at);
    if (part == set_.parts.size()) {
      error = PastEnd(at);
      return false;
    }
    const VobSet::Part& p = set_.parts[part];
    std::uint64_t record = at - p.first_sector;
    std::uint64_t n = std::min(count - copied, p.size / kSectorSize - record);
    DiscFile* file = File(part);
    std::optional<std::size_t> got =
        file ? file->CopyTo(record * kSectorSize, n * kSectorSize, fd) : std::size_t{0};
    if (!got) {
      if (copied == 0) return std::nullopt;
      error = p.name + ": sector " + std::to_string(record) + " cannot be copied";
      return false;
    }
    copied += *got / kSectorSize;
    if (*got < n * kSectorSize) {
      error =
          p.name + ": sector " + std::to_string(record + *got / kSectorSize) + " cannot be read";
      return false;
    }
  }
  return true;
}

bool VobSetReader::Read(std::uint64_t sector, std::span<std::uint8_t> out, std::string& error,
                        std::size_t& read) {
  std::size_t done = 0;
  read = 0;
  while (done < out.size()) {
    std::uint64_t at = sector + done / kSectorSize;
    std::size_t part = PartOf(at);
    if (part == set_.parts.size()) {
      error = PastEnd(at);
      return false;
    }
    const VobSet::Part& p = set_.parts[part];
    std::uint64_t record = at - p.first_sector;
    std::uint64_t in_file = p.size / kSectorSize - record;
    std::size_t n =
        static_cast<std::size_t>(std::min<std::uint64_t>(out.size() - done, in_file * kSectorSize));
    DiscFile* file = File(part);
    std::size_t got = file ? file->ReadAt(record * kSectorSize, out.subspan(done, n)) : 0;
    read = (done + got) / kSectorSize;
    if (got < n) {
      error = p.name + ": sector " + std::to_string(record + got / kSectorSize) + " cannot be read";
      return false;
    }
    done += n;
  }
  return true;
}

}  // namespace tarvex
