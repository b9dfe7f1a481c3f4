#include "archive/damage.h"

#include <algorithm>

#include "archive/chapters.h"
#include "disc/title_cells.h"

namespace tarvex {

namespace {

constexpr std::uint64_t kSector = 2048;

// Records first to last of one file hit by a range.
struct Hit {
  const DiscFileEntry* file = nullptr;
  std::uint64_t first = 0, last = 0;
};

std::vector<Hit> FilesHit(const Disc& disc, std::uint64_t first, std::uint64_t last) {
  std::vector<Hit> hits;
  for (const DiscFileEntry& file : disc.access->files()) {
    for (const FileExtent& e : file.extents) {
      std::uint64_t from = std::max(first, e.image_sector);
      std::uint64_t to = std::min(last, e.image_sector + e.sectors - 1);
      if (e.sectors == 0 || from > to) continue;
      std::uint64_t r0 = from - e.image_sector + e.file_sector,
                    r1 = to - e.image_sector + e.file_sector;
      auto it =
          std::find_if(hits.begin(), hits.end(), [&](const Hit& h) { return h.file == &file; });
      if (it == hits.end()) {
        hits.push_back({&file, r0, r1});
      } else {
        it->first = std::min(it->first, r0);
        it->last = std::max(it->last, r1);
      }
    }
  }
  std::sort(hits.begin(), hits.end(), [](const Hit& a, const Hit& b) {
    return a.file->extents.front().image_sector < b.file->extents.front().image_sector;
  });
  return hits;
}

const char* StatusText(char status) {
  switch (status) {
    case '?':
      return "not tried";
    case '*':
      return "not trimmed";
    case '/':
      return "not scraped";
    default:
      return "bad sector";
  }
}

std::string Records(const Hit& hit) {
  return hit.first == hit.last
             ? "record " + std::to_string(hit.first)
             : "records " + std::to_string(hit.first) + "-" + std::to_string(hit.last);
}

// "title 1 cell 2 (00:00:01.001-00:00:02.002)" for each cell of the set's titles whose sectors
// meet the set's sectors a..b, every angle's cells included.
std::string TitleCellsHit(const Disc& disc, const TitleSet& ts, std::uint64_t a, std::uint64_t b) {
  std::string text;
  for (const TitleEntry& t : DiscTitles(disc)) {
    if (t.title_set != ts.number) continue;
    std::vector<const Cell*> named;
    for (std::uint32_t angle = 1; angle <= std::max<std::uint32_t>(1, t.angles); ++angle) {
      for (const PlayedCell& p : PlanTitleCells(disc, t, angle).cells) {
        if (p.cell->last_sector < a || p.cell->first_sector > b) continue;
        if (std::find(named.begin(), named.end(), p.cell) != named.end()) continue;
        named.push_back(p.cell);
        text += (text.empty() ? "" : ", ") + std::string("title ") + std::to_string(t.number) +
                " cell " + std::to_string(p.cell->number) + " (" + ChapterClock(p.start_ticks) +
                "-" + ChapterClock(p.start_ticks + p.cell->time.Ticks()) + ")";
      }
    }
  }
  return text;
}

// What a damaged VOB file's records a..b (of the file) hold.
std::string VobContents(const Disc& disc, const std::string& name, const Hit& hit) {
  for (const TitleSet& ts : disc.title_sets) {
    std::string set = "title set " + std::to_string(ts.number);
    for (const VobSet::Part& part : ts.menu_vobs.parts) {
      if (part.name == name) return set + " menus";
    }
    for (const VobSet::Part& part : ts.title_vobs.parts) {
      if (part.name != name) continue;
      std::string cells =
          TitleCellsHit(disc, ts, part.first_sector + hit.first, part.first_sector + hit.last);
      return set + (cells.empty() ? ", no title's cells" : ": " + cells);
    }
  }
  return name == "VIDEO_TS.VOB" ? "the video manager's menus" : "no title set";
}

std::string FileContents(const Disc& disc, const Hit& hit) {
  const std::string& name = hit.file->name;
  std::string upper = name;
  for (char& c : upper) c = static_cast<char>(c >= 'a' && c <= 'z' ? c - 32 : c);
  if (upper.size() > 4 && upper.substr(upper.size() - 4) == ".VOB") {
    return VobContents(disc, name, hit);
  }
  if (upper.rfind("VIDEO_TS.", 0) == 0) return "the video manager's information file itself";
  return "the title set information file itself";
}

}  // namespace

void AddDamageFindings(const Disc& disc, const std::vector<MapBlock>& damaged, Findings& out) {
  if (!disc.access) return;
  for (const MapBlock& block : damaged) {
    std::uint64_t first = block.pos / kSector, last = (block.pos + block.size - 1) / kSector;
    std::string range = std::to_string(block.size) + " bytes from image byte " +
                        std::to_string(block.pos) + " (" + StatusText(block.status) + ")";
    std::vector<Hit> hits = FilesHit(disc, first, last);
    if (hits.empty()) {
      out.AtImage("image.damaged", first,
                  range + " in image sectors " + std::to_string(first) + "-" +
                      std::to_string(last) + ", outside every file of VIDEO_TS");
      continue;
    }
    for (const Hit& hit : hits) {
      out.AtRecord("image.damaged", hit.file->name, hit.first,
                   range + ": " + Records(hit) + ", " + FileContents(disc, hit));
    }
  }
}

}  // namespace tarvex
