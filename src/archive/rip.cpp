#include "archive/rip.h"

#include <algorithm>

#include "stream/nav_fields.h"

namespace tarvex {

namespace {

constexpr std::size_t kBlockSectors = 512;  // 1 MiB a read
constexpr std::uint32_t kNoUnit = 0x7FFFFFFF;

// Whether a record is a navigation pack: a pack header, then the PCI packet where the layout
// puts it (private stream 2, sub-stream 0).
bool IsNavPack(ByteView record) {
  return record.be32(0) == 0x000001BA && record.be32(38) == 0x000001BF && record.u8(44) == 0;
}

bool InterleavedRuns(VobSetReader& reader, const Cell& cell,
                     const std::function<bool(const SectorRun&)>& on_run, std::string& error) {
  std::vector<std::uint8_t> record(kSectorSize);
  std::uint64_t unit = cell.first_sector;
  while (unit <= cell.last_sector) {
    if (!reader.Read(unit, record, error)) return false;
    if (!IsNavPack(record)) {
      error = "no navigation pack at sector " + std::to_string(unit) +
              " of the title VOBs, where an interleaved unit of cell " +
              std::to_string(cell.number) + " starts";
      return false;
    }
    NavPackFields nav = DecodeNavPack(record);
    std::uint64_t end = nav.ilvu_ea == 0 ? cell.last_sector : unit + nav.ilvu_ea;
    end = std::min<std::uint64_t>(end, cell.last_sector);
    if (!on_run({unit, end})) return false;
    if (end >= cell.last_sector) return true;
    std::uint32_t next = nav.next_ilvu_sa;
    if (next == 0 || next >= kNoUnit || unit + next <= end) {
      error = "the navigation pack at sector " + std::to_string(unit) +
              " of the title VOBs links to no later interleaved unit of cell " +
              std::to_string(cell.number);
      return false;
    }
    unit += next;
  }
  return true;
}

std::uint64_t ExpectedBytes(const TitleCells& plan) {
  std::uint64_t bytes = 0;
  for (const PlayedCell& p : plan.cells) {
    if (p.cell->last_sector >= p.cell->first_sector)
      bytes += std::uint64_t{p.cell->last_sector - p.cell->first_sector + 1} * kSectorSize;
  }
  return bytes;
}

// Copies a run into options.direct_fd in the kernel; nothing when the files or the descriptor
// do not allow it (nothing was copied then).
std::optional<bool> CopyRunDirect(VobSetReader& reader, const SectorRun& run,
                                  const RipOptions& options, RipResult& result,
                                  std::uint64_t expected) {
  constexpr std::uint64_t kDirectSectors = 32768;  // 64 MiB a call, for the progress
  for (std::uint64_t at = run.first; at <= run.last;) {
    std::uint64_t n = std::min(run.last - at + 1, kDirectSectors), copied = 0;
    std::optional<bool> ok = reader.CopyTo(options.direct_fd, at, n, result.error, copied);
    result.bytes += copied * kSectorSize;
    if (!ok) {
      if (at == run.first) return std::nullopt;
      return false;
    }
    if (!*ok) return false;
    at += n;
    if (options.progress) options.progress(result.bytes, expected);
  }
  return true;
}

// Copies a run of sectors to the writer a block at a time.
bool CopyRun(VobSetReader& reader, const SectorRun& run, std::vector<std::uint8_t>& buffer,
             const RipOptions& options, RipResult& result, std::uint64_t expected) {
  if (options.direct_fd >= 0) {
    if (std::optional<bool> ok = CopyRunDirect(reader, run, options, result, expected)) return *ok;
  }
  for (std::uint64_t at = run.first; at <= run.last;) {
    std::size_t n =
        static_cast<std::size_t>(std::min<std::uint64_t>(run.last - at + 1, kBlockSectors));
    std::span<std::uint8_t> block(buffer.data(), n * kSectorSize);
    std::size_t read = 0;
    if (!reader.Read(at, block, result.error, read)) {
      // What could be read before the failure is written too.
      std::string ignored;
      if (read > 0 && options.write(block.first(read * kSectorSize), ignored)) {
        result.bytes += read * kSectorSize;
      }
      return false;
    }
    if (!options.write(block, result.error)) return false;
    result.bytes += block.size();
    at += n;
    if (options.progress) options.progress(result.bytes, expected);
  }
  return true;
}

}  // namespace

bool ForEachCellRun(VobSetReader& reader, const Cell& cell,
                    const std::function<bool(const SectorRun&)>& on_run, std::string& error) {
  if (cell.last_sector < cell.first_sector) {
    error = "cell " + std::to_string(cell.number) + " ends (sector " +
            std::to_string(cell.last_sector) + ") before it starts (sector " +
            std::to_string(cell.first_sector) + ")";
    return false;
  }
  if (cell.interleaved()) return InterleavedRuns(reader, cell, on_run, error);
  return on_run({cell.first_sector, cell.last_sector});
}

RipResult RipTitle(const Disc& disc, const TitleCells& plan, const RipOptions& options) {
  RipResult result;
  if (plan.title_set == nullptr || !disc.access) {
    result.ok = false;
    result.error = "the title's title set cannot be read";
    return result;
  }
  VobSetReader reader(*disc.access, plan.title_set->title_vobs);
  std::vector<std::uint8_t> buffer(kBlockSectors * kSectorSize);
  std::uint64_t expected = ExpectedBytes(plan);
  for (const PlayedCell& p : plan.cells) {
    std::string error;
    bool copied = ForEachCellRun(
        reader, *p.cell,
        [&](const SectorRun& run) {
          return CopyRun(reader, run, buffer, options, result, expected);
        },
        error);
    if (!copied) {
      result.ok = false;
      if (result.error.empty()) result.error = error;
      return result;
    }
  }
  return result;
}

std::optional<std::uint64_t> RipSize(const Disc& disc, const TitleCells& plan, std::string& error) {
  if (plan.title_set == nullptr || !disc.access) return std::nullopt;
  VobSetReader reader(*disc.access, plan.title_set->title_vobs);
  std::uint64_t bytes = 0;
  for (const PlayedCell& p : plan.cells) {
    auto add = [&bytes](const SectorRun& run) {
      bytes += run.count() * kSectorSize;
      return true;
    };
    if (!ForEachCellRun(reader, *p.cell, add, error)) return std::nullopt;
  }
  return bytes;
}

std::vector<std::optional<std::uint64_t>> RipSizesOfTitles(const Disc& disc) {
  std::vector<std::optional<std::uint64_t>> sizes;
  for (const TitleEntry& entry : DiscTitles(disc)) {
    std::string error;
    sizes.push_back(RipSize(disc, PlanTitleCells(disc, entry, 1), error));
  }
  return sizes;
}

}  // namespace tarvex
