#include "picture/vob_reader.h"

#include <algorithm>

#include "picture/packets.h"

namespace tarvex::picture {

namespace {

// 128 KiB a read: the block stays in the processor's cache while its packs are looked at.
constexpr std::uint64_t kBlockSectors = 64;

}  // namespace

DiscFile* VobReader::Open(const std::string& name) {
  std::unique_ptr<DiscFile>& file = files_[name];
  if (!file && disc_.access) file = disc_.access->Open(name);
  return file.get();
}

bool VobReader::ForEach(std::uint32_t first, std::uint32_t last,
                        const std::function<void(std::uint32_t, ByteView)>& visit,
                        std::string& error) {
  std::uint64_t sector = first;
  while (sector <= last) {
    auto where = vobs_.Locate(sector);
    DiscFile* file = where ? Open(where->first) : nullptr;
    if (!file) {
      error = "sector " + std::to_string(sector) + " of the VOB set lies in no readable file";
      return false;
    }
    const VobSet::Part* part = nullptr;
    for (const VobSet::Part& p : vobs_.parts) {
      if (p.name == where->first) part = &p;
    }
    std::uint64_t in_file = part ? part->size / kSectorSize - where->second : 1;
    std::uint64_t count = std::min({kBlockSectors, in_file, std::uint64_t{last} - sector + 1});
    if (!block_) {
      block_.reset(static_cast<std::uint8_t*>(
          ::operator new[](kBlockSectors* kSectorSize, std::align_val_t{4096})));
    }
    std::size_t got = file->ReadAt(where->second * kSectorSize,
                                   std::span<std::uint8_t>(block_.get(), count * kSectorSize));
    for (std::uint64_t i = 0; i < got / kSectorSize; ++i) {
      visit(static_cast<std::uint32_t>(sector + i),
            ByteView(block_.get() + i * kSectorSize, kSectorSize));
    }
    if (got < count * kSectorSize) {
      error = where->first + ": cannot read sector " +
              std::to_string(where->second + got / kSectorSize);
      return false;
    }
    sector += count;
  }
  return true;
}

bool VobReader::Read(std::uint32_t sector, std::vector<std::uint8_t>& record, std::string& error) {
  bool read = false;
  bool ok = ForEach(
      sector, sector,
      [&](std::uint32_t, ByteView r) {
        record.assign(r.data(), r.data() + r.size());
        read = true;
      },
      error);
  return ok && read;
}

}  // namespace tarvex::picture
