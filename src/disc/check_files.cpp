// The file set: names, sizes, numbering, backups.
#include <algorithm>
#include <cctype>

#include "disc/checks.h"
#include "platform/format.h"

namespace tarvex {

namespace {

constexpr std::uint64_t kMaxVobBytes = 1ull << 30;

std::string Upper(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

// A DVD-Video file name: VIDEO_TS.IFO/BUP/VOB or VTS_nn_p.IFO/BUP/VOB. Sets the title set
// number (0 for the video manager) and the part.
struct FileName {
  bool valid = false;
  std::uint32_t title_set = 0, part = 0;
  std::string extension;
};

FileName ParseName(const std::string& name) {
  FileName f;
  std::string n = Upper(name);
  if (n.size() != 12 || n[8] != '.') return f;
  f.extension = n.substr(9);
  if (f.extension != "IFO" && f.extension != "BUP" && f.extension != "VOB") return f;
  if (n.rfind("VIDEO_TS", 0) == 0) {
    f.valid = true;
    return f;
  }
  if (n.rfind("VTS_", 0) != 0 || n[6] != '_' || !std::isdigit(static_cast<unsigned char>(n[4])) ||
      !std::isdigit(static_cast<unsigned char>(n[5])) ||
      !std::isdigit(static_cast<unsigned char>(n[7]))) {
    return f;
  }
  f.title_set = static_cast<std::uint32_t>((n[4] - '0') * 10 + (n[5] - '0'));
  f.part = static_cast<std::uint32_t>(n[7] - '0');
  f.valid = f.title_set >= 1 && (f.part == 0 || f.extension == "VOB");
  return f;
}

void CheckBackup(const Disc& disc, const std::string& ifo_name, const std::string& bup_name,
                 const std::vector<std::uint8_t>& ifo, Findings& out) {
  if (disc.access->Find(ifo_name) == nullptr) return;
  if (disc.access->Find(bup_name) == nullptr) {
    out.AtFile("file.bup-missing", bup_name, "the backup of " + ifo_name + " is missing");
    return;
  }
  auto bup = disc.access->ReadWhole(bup_name, 64ull << 20);
  if (!bup) {
    out.AtFile("file.read", bup_name, "cannot be read");
    return;
  }
  if (*bup == ifo) return;
  std::size_t at = 0;
  while (at < bup->size() && at < ifo.size() && (*bup)[at] == ifo[at]) ++at;
  out.AtFile("file.bup-differs", bup_name,
             Format("differs from %s from byte %d on (sizes %d and %d)",
                    {ifo_name, at, bup->size(), ifo.size()}));
}

}  // namespace

void CheckFiles(const Disc& disc, Findings& out) {
  std::map<std::uint32_t, std::vector<std::uint32_t>> title_vobs;
  for (const DiscFileEntry& file : disc.files) {
    FileName name = ParseName(file.name);
    if (!name.valid) {
      out.AtFile("file.unknown", file.name, "not a DVD-Video file name");
      continue;
    }
    if (file.size % 2048 != 0) {
      out.AtFile("file.size", file.name,
                 Format("%s bytes, not a multiple of 2048", {std::to_string(file.size)}));
    }
    if (name.extension == "VOB" && file.size > kMaxVobBytes) {
      out.AtFile("file.vob-size", file.name,
                 Format("%s bytes, more than 1 GiB (1073741824)", {std::to_string(file.size)}));
    }
    if (disc.vmg.ifo_found && name.title_set > disc.vmg.title_set_count) {
      out.AtFile("file.extra", file.name,
                 Format("title set %d, but the video manager counts %d title sets",
                        {name.title_set, disc.vmg.title_set_count}));
    }
    if (name.extension == "VOB" && name.part >= 1) title_vobs[name.title_set].push_back(name.part);
  }
  for (auto& [set, parts] : title_vobs) {
    std::sort(parts.begin(), parts.end());
    for (std::size_t i = 0; i < parts.size(); ++i) {
      if (parts[i] != i + 1) {
        std::string name = Format("VTS_%02d_%d.VOB", {set, parts[i]});
        out.AtFile("file.vob-numbering", name,
                   i == 0 ? Format("title VOB part %d comes first: part 1 is missing", {parts[i]})
                          : Format("title VOB part %d follows part %d: part %d is missing",
                                   {parts[i], parts[i - 1], parts[i - 1] + 1}));
        break;
      }
    }
  }

  if (!disc.vmg.ifo_found) {
    out.AtFile("file.missing", "VIDEO_TS.IFO",
               "the video manager's IFO is missing: each title set is checked on its own");
  }
  if (disc.vmg.menu_vobs.missing_files) {
    out.AtFile("file.missing", "VIDEO_TS.VOB", "VMGI_MAT gives a menu VOB start sector, no file");
  }
  CheckBackup(disc, "VIDEO_TS.IFO", "VIDEO_TS.BUP", disc.vmg.ifo, out);
  for (const TitleSet& ts : disc.title_sets) {
    if (ts.number <= disc.vmg.title_set_count && disc.access->Find(ts.ifo_name) == nullptr) {
      out.AtFile(
          "file.missing", ts.ifo_name,
          Format("title set %d is counted by the video manager, its IFO is missing", {ts.number}));
      continue;
    }
    // Without a video manager the title sets are those whose files are there.
    if (!disc.vmg.ifo_found && disc.access->Find(ts.ifo_name) == nullptr &&
        (!ts.menu_vobs.parts.empty() || !ts.title_vobs.parts.empty())) {
      out.AtFile("file.missing", ts.ifo_name,
                 Format("title set %d has VOB files, but its IFO is missing", {ts.number}));
      continue;
    }
    if (!ts.present) continue;
    CheckBackup(disc, ts.ifo_name, ts.bup_name, ts.ifo, out);
    if (ts.menu_vobs.missing_files) {
      out.AtFile("file.missing", Format("VTS_%02d_0.VOB", {ts.number}),
                 "VTSI_MAT gives a menu VOB start sector, no file");
    }
    // A gap in the numbering is reported above; this is a set without any title VOB.
    if (ts.title_vobs.missing_files && title_vobs[ts.number].empty()) {
      out.AtFile("file.missing", Format("VTS_%02d_1.VOB", {ts.number}),
                 "the title set has program chains but no title VOB file");
    }
  }
}

}  // namespace tarvex
