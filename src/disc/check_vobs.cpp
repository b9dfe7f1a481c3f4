// One sequential pass over the VOB files of a set. Memory stays constant whatever the size of
// the set: one read block, the navigation pack before the current one, the streams per cell.
#include <algorithm>
#include <iterator>
#include <memory>

#include "disc/checks.h"
#include "platform/format.h"
#include "stream/nav_fields.h"
#include "stream/sector_type.h"

namespace tarvex {

namespace {

constexpr std::size_t kRecordBytes = 2048;
constexpr std::size_t kBlockRecords = 512;      // 1 MiB reads
constexpr std::uint32_t kMaxMuxRate = 25200;    // 10.08 Mbit/s in units of 50 bytes/s
constexpr std::uint32_t kMinVobuTicks = 36000;  // 0.4 s at 90 kHz
constexpr std::uint32_t kMaxVobuTicks = 90000;  // 1.0 s
constexpr std::uint32_t kMaxButtons = 36;       // button entries of a PCI
constexpr std::size_t kMaxCells = 65536;        // VOB id and cell id pairs kept
constexpr std::uint8_t kCodingTries = 64;       // packs searched for a stream's coding header
constexpr std::size_t kUnplayedRuns = 10;       // record ranges a vob.unplayed finding names

std::uint64_t ScrTicks(ByteView pack) {
  std::uint64_t b4 = pack.u8(4), b5 = pack.u8(5), b6 = pack.u8(6), b7 = pack.u8(7), b8 = pack.u8(8),
                b9 = pack.u8(9);
  std::uint64_t base = (((b4 >> 3) & 7) << 30) | ((b4 & 3) << 28) | (b5 << 20) | ((b6 >> 3) << 15) |
                       ((b6 & 3) << 13) | (b7 << 5) | (b8 >> 3);
  std::uint64_t ext = ((b8 & 3) << 7) | (b9 >> 1);
  return base * 300 + ext;
}

// The sub-stream id of the private stream 1 packet that starts a pack (behind its system header
// when it has one), from its MPEG-2 PES header; nothing for a pack of another stream.
std::optional<std::uint8_t> PrivateStreamOneId(ByteView pack) {
  std::size_t at = 14;
  if (pack.be32(at) == 0x1BB) at += 6 + std::size_t{pack.be16(at + 4)};
  if (pack.be32(at) != 0x1BD) return std::nullopt;
  return pack.u8(at + 9 + std::size_t{pack.u8(at + 8)});
}

// The private stream 1 sub-streams of DVD-Video: sub-pictures 0x20-0x3F (32 streams), AC-3
// 0x80-0x87, DTS 0x88-0x8F, SDDS 0x90-0x97 and LPCM 0xA0-0xA7. The listing's classification
// names only the first stream number of DTS and SDDS and the first 16 sub-pictures.
bool IsDvdSubstream(std::uint8_t id) {
  return (id >= 0x20 && id <= 0x3F) || (id >= 0x80 && id <= 0x97) || (id >= 0xA0 && id <= 0xA7);
}

std::string Seconds(std::uint32_t ticks) {
  return Format("%d.%03d s", {ticks / 90000, ticks % 90000 / 90});
}

struct NavSeen {
  std::uint64_t sector = 0;
  std::string file;
  std::uint64_t record = 0;
  NavPackFields fields;
};

class VobSetScanner {
 public:
  VobSetScanner(const Disc& disc, const VobSet& set, const VobSetNames& names,
                const PlayedSectors& played, Findings& out)
      : disc_(disc), set_(set), names_(names), played_(played), out_(out) {
    for (const CellAddress& c : set_.cells) by_sector_.push_back(&c);
    std::sort(by_sector_.begin(), by_sector_.end(),
              [](const CellAddress* a, const CellAddress* b) { return a->first < b->first; });
  }

  StreamPresence Run() {
    presence_.scanned = true;
    std::vector<std::uint8_t> block(kBlockRecords * kRecordBytes);
    for (const VobSet::Part& part : set_.parts) {
      std::unique_ptr<DiscFile> file = disc_.access->Open(part.name);
      if (!file) {
        out_.AtFile("file.read", part.name, "cannot be opened");
        continue;
      }
      last_scr_.reset();
      high_mux_packs_ = 0;
      std::uint64_t records = part.size / kRecordBytes;
      for (std::uint64_t r = 0; r < records;) {
        std::size_t want =
            static_cast<std::size_t>(std::min<std::uint64_t>(kBlockRecords, records - r));
        std::size_t got =
            file->ReadAt(r * kRecordBytes, std::span(block.data(), want * kRecordBytes));
        std::size_t whole = got / kRecordBytes;
        for (std::size_t k = 0; k < whole; ++k) {
          Record(part.first_sector + r + k, part.name, r + k,
                 ByteView(block.data() + k * kRecordBytes, kRecordBytes));
        }
        if (whole < want) {
          ReportNoHeader();
          out_.AtRecord("file.read", part.name, r + whole, "the file cannot be read from here on");
          break;
        }
        r += whole;
      }
      ReportNoHeader();
      ReportMuxRate(part.name);
    }
    FinishVobu(set_.sectors, nullptr);
    for (; admap_next_ < set_.vobu_starts.size(); ++admap_next_) MissingNavPack(admap_next_);
    ReportUnplayed();
    return std::move(presence_);
  }

 private:
  void Record(std::uint64_t sector, const std::string& file, std::uint64_t record, ByteView pack) {
    played_now_ = played_.Contains(sector);
    if (!played_now_) NoteUnplayed(file, record);
    if (pack.be32(0) != 0x1BA || (pack.u8(4) & 0xC0) != 0x40) {
      if (no_header_.count != 0 && no_header_.file == file &&
          no_header_.first + no_header_.count == record) {
        ++no_header_.count;
      } else {
        ReportNoHeader();
        no_header_ = {file, record, 1, pack.be32(0)};
      }
      return;
    }
    ReportNoHeader();
    std::uint32_t mux =
        (std::uint32_t{pack.u8(10)} << 14) | (std::uint32_t{pack.u8(11)} << 6) | (pack.u8(12) >> 2);
    if (mux > kMaxMuxRate) {
      if (high_mux_packs_++ == 0) high_mux_ = {record, mux};
    }
    std::uint32_t stream = 0;
    std::int32_t type = GetSectorType(pack, stream);
    std::optional<NavPackFields> nav;
    if (type == kSectorNavigation) {
      nav = DecodeNavPack(pack);
      // The clock starts again with each VOB.
      if (previous_ && previous_->fields.vob_id != nav->vob_id) last_scr_.reset();
    }
    std::uint64_t scr = ScrTicks(pack);
    if (last_scr_ && scr < *last_scr_) {
      out_.AtRecord("vob.scr-order", file, record,
                    Format("SCR %s (27 MHz ticks) is lower than the pack before (%s)",
                           {std::to_string(scr), std::to_string(*last_scr_)}));
    }
    last_scr_ = scr;
    if (sector == 0 && type != kSectorNavigation) {
      out_.AtRecord("vob.first-pack", file, record,
                    "the VOB set does not begin with a navigation pack");
    }
    if (nav) {
      NavPack(sector, file, record, *nav);
      Buttons(file, record, *nav, pack);
    } else if (type == kSectorIllegal) {
      std::optional<std::uint8_t> sub = PrivateStreamOneId(pack);
      if (sub && IsDvdSubstream(*sub)) {
        Present(*sub, file, record);
        NoteCoding(*sub, pack, file, record);
      } else {
        out_.AtRecord("vob.pack", file, record,
                      Format("a pack of no DVD-Video stream (start code %08x)", {pack.be32(14)}));
      }
    } else if (type != kSectorPadding) {
      Present(stream & 0xFF, file, record);
      NoteCoding(stream & 0xFF, pack, file, record);
    }
  }

  // The coding of each video and audio stream, from the first of its packs that holds a
  // complete header; a stream without one in its first kCodingTries packs is left uncompared.
  void NoteCoding(std::uint32_t id, ByteView pack, const std::string& file, std::uint64_t record) {
    if (!played_now_) return;
    bool coded = (id >= 0xE0 && id <= 0xEF) || (id >= 0xC0 && id <= 0xDF) ||
                 (id >= 0x80 && id <= 0x8F) || (id >= 0xA0 && id <= 0xA7);
    if (!coded || coding_tries_[id] >= kCodingTries) return;
    ++coding_tries_[id];
    std::optional<StreamCoding> c = FindStreamCoding(pack);
    if (!c || c->stream != id) return;
    coding_tries_[id] = kCodingTries;
    presence_.codings[static_cast<std::uint8_t>(id)] = {*c, {file, record}};
  }

  // The distinct button commands of each cell, for the checks of their targets.
  void Buttons(const std::string& file, std::uint64_t record, const NavPackFields& f,
               ByteView pack) {
    std::uint32_t count = std::min<std::uint32_t>(f.buttons, kMaxButtons);
    for (std::uint32_t b = 0; b < count; ++b) {
      if (presence_.buttons.size() >= StreamPresence::kMaxButtonCommands) return;
      ByteView bytes = NavButtonCommand(pack, b);
      NavCommand command{};
      for (std::size_t k = 0; k < command.size(); ++k) command[k] = bytes.u8(k);
      std::pair<std::uint16_t, std::uint8_t> cell{f.vob_id, f.cell_id};
      if (!seen_buttons_.insert({cell, command}).second) continue;
      presence_.buttons.push_back({cell, file, record, b + 1, f.buttons, command});
    }
  }

  // One finding per run of records without a pack header: a damaged stretch of a file is
  // one line, not one per record.
  void ReportNoHeader() {
    if (no_header_.count == 0) return;
    const NoHeaderRun& run = no_header_;
    out_.AtRecord("vob.pack", run.file, run.first,
                  run.count == 1
                      ? Format("no MPEG-2 pack header (the record starts %08x)", {run.word})
                      : Format("no MPEG-2 pack header in %s, %s to %s (the first starts %08x)",
                               {Counted(run.count, "record"), std::to_string(run.first),
                                std::to_string(run.first + run.count - 1), run.word}));
    no_header_.count = 0;
  }

  // Records that no cell plays, as runs of neighbouring records of a file (the first
  // kUnplayedRuns kept, the others only counted).
  void NoteUnplayed(const std::string& file, std::uint64_t record) {
    ++unplayed_records_;
    bool continues =
        unplayed_runs_ != 0 && last_unplayed_.file == file && last_unplayed_.last + 1 == record;
    last_unplayed_ = {file, record, record};
    if (continues) {
      if (unplayed_runs_ <= kUnplayedRuns) unplayed_.back().last = record;
      return;
    }
    if (++unplayed_runs_ <= kUnplayedRuns) unplayed_.push_back(last_unplayed_);
  }

  // One finding per VOB set, at its first record that no cell plays, naming the record ranges
  // file by file: "VTS_01_1.VOB records 0 to 9, 18 to 27; VTS_01_2.VOB record 4".
  void ReportUnplayed() {
    if (unplayed_.empty()) return;
    std::string ranges;
    for (std::size_t i = 0; i < unplayed_.size();) {
      const std::string& file = unplayed_[i].file;
      std::size_t end = i;
      while (end < unplayed_.size() && unplayed_[end].file == file) ++end;
      bool one = end == i + 1 && unplayed_[i].first == unplayed_[i].last;
      ranges += (i == 0 ? "" : "; ") + file + (one ? " record " : " records ");
      for (std::size_t k = i; k < end; ++k) {
        const UnplayedRun& run = unplayed_[k];
        ranges += k == i ? "" : ", ";
        ranges += run.first == run.last
                      ? std::to_string(run.first)
                      : std::to_string(run.first) + " to " + std::to_string(run.last);
      }
      i = end;
    }
    std::uint64_t more = unplayed_runs_ - unplayed_.size();
    if (more != 0) ranges += Format(" and %s more", {Counted(more, "range")});
    out_.AtRecord("vob.unplayed", unplayed_.front().file, unplayed_.front().first,
                  Format("%s that no cell of any %s chain plays: %s",
                         {Counted(unplayed_records_, "record"), names_.domain, ranges}));
  }

  // One finding per file: its first pack above the limit, and how many there are.
  void ReportMuxRate(const std::string& file) {
    if (high_mux_packs_ == 0) return;
    out_.AtRecord("vob.mux-rate", file, high_mux_.first,
                  Format("program_mux_rate %d (%s bit/s), above 25200 (10.08 Mbit/s), in %s "
                         "of this file from here on",
                         {high_mux_.second, std::to_string(std::uint64_t{high_mux_.second} * 400),
                          Counted(high_mux_packs_, "pack")}));
  }

  void Present(std::uint32_t id, const std::string& file, std::uint64_t record) {
    if (!played_now_) return;  // no player shows it: its streams are not compared
    // A damaged stream can name a new cell in every pack: the cells kept are bounded, so is
    // the memory (streams of further cells still count for the whole set).
    if (cell_ && (presence_.cells.size() < kMaxCells || presence_.cells.count(*cell_) != 0)) {
      presence_.cells[*cell_].set(id);
    }
    presence_.all.set(id);
    if (!presence_.first_seen[id]) presence_.first_seen[id] = StreamPresence::Where{file, record};
  }

  void MissingNavPack(std::size_t index) {
    std::uint32_t s = set_.vobu_starts[index];
    auto where = set_.Locate(s);
    out_.AtTable("vobu_admap.navpacks", names_.ifo, names_.admap,
                 static_cast<std::uint32_t>(index + 1),
                 where ? Format("VOBU at sector %d, but record %s of %s is no navigation pack",
                                {s, std::to_string(where->second), where->first})
                       : Format("VOBU at sector %d, beyond the VOB files", {s}));
  }

  bool Interleaved(const NavPackFields& f) const {
    return names_.interleaved.count({f.vob_id, f.cell_id}) != 0;
  }

  static bool SameCell(const NavPackFields& a, const NavPackFields& b) {
    return a.vob_id == b.vob_id && a.cell_id == b.cell_id;
  }

  // The checks of the VOBU before: now that the next one (or the end of the set) is known.
  void FinishVobu(std::uint64_t next_sector, const NavPackFields* next) {
    if (!previous_) return;
    const NavSeen& p = *previous_;
    std::uint64_t distance = next_sector - p.sector;
    bool same_cell = next != nullptr && SameCell(p.fields, *next);
    if (!Interleaved(p.fields)) {
      if (p.fields.vobu_ea != distance - 1) {
        out_.AtRecord("nav.vobu-end", p.file, p.record,
                      Format("VOBU end address %d, the VOBU ends %s sectors on",
                             {p.fields.vobu_ea, std::to_string(distance - 1)}));
      }
      std::uint32_t addr = p.fields.next_vobu & kVobuSearchAddress;
      bool right = same_cell ? addr == distance
                             : addr == kVobuSearchAddress || (next != nullptr && addr == distance);
      if (!right) {
        out_.AtRecord(
            "nav.next-vobu", p.file, p.record,
            same_cell
                ? Format("next VOBU %d sectors on, it is %s", {addr, std::to_string(distance)})
                : Format("next VOBU %d sectors on, this is the cell's last VOBU", {addr}));
      }
    }
    std::uint32_t s = p.fields.vobu_s_ptm, e = p.fields.vobu_e_ptm;
    if (e > s && p.fields.vobu_se_e_ptm == 0) {
      std::uint32_t ticks = e - s;
      if (ticks > kMaxVobuTicks || (ticks < kMinVobuTicks && same_cell)) {
        out_.AtRecord("nav.vobu-length", p.file, p.record,
                      "the VOBU lasts " + Seconds(ticks) + ", outside 0.4 to 1.0 s");
      }
    }
  }

  void NavPack(std::uint64_t sector, const std::string& file, std::uint64_t record,
               const NavPackFields& f) {
    if (f.pci_lbn != sector || f.dsi_lbn != sector) {
      out_.AtRecord("nav.lbn", file, record,
                    Format("at sector %s, PCI says %d and DSI says %d",
                           {std::to_string(sector), f.pci_lbn, f.dsi_lbn}));
    }
    while (admap_next_ < set_.vobu_starts.size() && set_.vobu_starts[admap_next_] < sector) {
      MissingNavPack(admap_next_++);
    }
    if (admap_next_ < set_.vobu_starts.size() && set_.vobu_starts[admap_next_] == sector) {
      ++admap_next_;
    } else if (set_.has_admap) {
      out_.AtRecord("vobu_admap.navpacks", file, record,
                    Format("navigation pack at sector %s is not in %s",
                           {std::to_string(sector), names_.admap}));
    }
    FinishVobu(sector, &f);
    std::uint32_t back = f.previous_vobu & kVobuSearchAddress;
    if (!Interleaved(f)) {
      bool same_cell = previous_ && SameCell(previous_->fields, f);
      std::uint64_t distance = previous_ ? sector - previous_->sector : 0;
      bool right = same_cell ? back == distance
                             : back == kVobuSearchAddress || (previous_ && back == distance);
      if (!right) {
        out_.AtRecord(
            "nav.previous-vobu", file, record,
            same_cell
                ? Format("previous VOBU %d sectors back, it is %s",
                         {back, std::to_string(distance)})
                : Format("previous VOBU %d sectors back, this is the cell's first VOBU", {back}));
      }
    }
    const CellAddress* a = set_.FindCell(f.vob_id, f.cell_id);
    if (set_.has_cell_table) {
      if (a == nullptr) {
        out_.AtRecord("nav.cell", file, record,
                      Format("VOB %d cell %d is not in %s", {f.vob_id, f.cell_id, names_.c_adt}));
      } else if (sector < a->first || sector > a->last) {
        out_.AtRecord(
            "nav.cell", file, record,
            Format("VOB %d cell %d, which %s puts at sectors %d to %d, not at %s",
                   {f.vob_id, f.cell_id, names_.c_adt, a->first, a->last, std::to_string(sector)}));
      }
    }
    cell_ = PlayingCell(sector, f, a);
    previous_ = NavSeen{sector, file, record, f};
    Present(0xBF, file, record);
  }

  // The cell whose streams a VOBU's packs are: the one its navigation pack names when the cell
  // address table puts that cell at its sector, else the one the table puts there (a damaged
  // navigation pack must not take its streams away from the chain that plays them).
  std::pair<std::uint16_t, std::uint8_t> PlayingCell(std::uint64_t sector, const NavPackFields& f,
                                                     const CellAddress* a) const {
    std::pair<std::uint16_t, std::uint8_t> named{f.vob_id, f.cell_id};
    if (by_sector_.empty() || (a != nullptr && sector >= a->first && sector <= a->last)) {
      return named;
    }
    auto it = std::upper_bound(
        by_sector_.begin(), by_sector_.end(), sector,
        [](std::uint64_t s, const CellAddress* c) { return s < std::uint64_t{c->first}; });
    if (it == by_sector_.begin() || sector > (*std::prev(it))->last) return named;
    return {(*std::prev(it))->vob_id, (*std::prev(it))->cell_id};
  }

  const Disc& disc_;
  const VobSet& set_;
  const VobSetNames& names_;
  const PlayedSectors& played_;
  Findings& out_;
  StreamPresence presence_;
  std::size_t admap_next_ = 0;
  std::optional<NavSeen> previous_;
  std::optional<std::pair<std::uint16_t, std::uint8_t>> cell_;
  std::optional<std::uint64_t> last_scr_;
  std::uint64_t high_mux_packs_ = 0;
  std::pair<std::uint64_t, std::uint32_t> high_mux_;  // the first such pack: record, rate
  struct NoHeaderRun {
    std::string file;
    std::uint64_t first = 0, count = 0;  // records first .. first + count - 1
    std::uint32_t word = 0;              // the first record's first four bytes
  } no_header_;
  std::set<std::pair<std::pair<std::uint16_t, std::uint8_t>, NavCommand>> seen_buttons_;
  std::vector<const CellAddress*> by_sector_;     // the cell address table by first sector
  std::array<std::uint8_t, 256> coding_tries_{};  // packs read for each stream's coding
  bool played_now_ = false;                       // whether a cell plays the current record
  struct UnplayedRun {
    std::string file;
    std::uint64_t first = 0, last = 0;
  };
  std::vector<UnplayedRun> unplayed_;  // the first kUnplayedRuns runs
  UnplayedRun last_unplayed_;          // the run the last unplayed record belongs to
  std::uint64_t unplayed_records_ = 0, unplayed_runs_ = 0;
};

}  // namespace

PlayedSectors::PlayedSectors(const std::vector<DomainChain>& chains) {
  std::vector<std::pair<std::uint64_t, std::uint64_t>> cells;
  for (const DomainChain& chain : chains) {
    for (const Cell& c : chain.pgc->cells) {
      if (c.first_sector <= c.last_sector) cells.emplace_back(c.first_sector, c.last_sector);
    }
  }
  std::sort(cells.begin(), cells.end());
  for (const auto& [first, last] : cells) {
    if (!ranges_.empty() && first <= ranges_.back().second + 1) {
      ranges_.back().second = std::max(ranges_.back().second, last);
    } else {
      ranges_.emplace_back(first, last);
    }
  }
}

bool PlayedSectors::Contains(std::uint64_t sector) const {
  auto it = std::upper_bound(ranges_.begin(), ranges_.end(), sector,
                             [](std::uint64_t s, const auto& range) { return s < range.first; });
  return it != ranges_.begin() && sector <= std::prev(it)->second;
}

StreamPresence ScanVobSet(const Disc& disc, const VobSet& set, const VobSetNames& names,
                          const PlayedSectors& played, Findings& out) {
  return VobSetScanner(disc, set, names, played, out).Run();
}

}  // namespace tarvex
