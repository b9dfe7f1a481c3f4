#include "disc/findings.h"

#include <stdexcept>

namespace tarvex {

namespace {

constexpr Severity E = Severity::kError;
constexpr Severity W = Severity::kWarning;
constexpr Severity I = Severity::kInfo;

constexpr CheckInfo kChecks[] = {
    // The file set.
    {"file.missing", E, "a file the IFOs call for is not in VIDEO_TS"},
    {"file.extra", E, "a title set file beyond the title sets the video manager counts"},
    {"file.unknown", I, "a file in VIDEO_TS whose name is not a DVD-Video file name"},
    {"file.size", E, "a file whose size is not a multiple of 2048 bytes"},
    {"file.vob-size", E, "a VOB file larger than 1 GiB"},
    {"file.vob-numbering", E, "title VOB files not numbered 1, 2, ... without a gap (at most 9)"},
    {"file.bup-missing", W, "an IFO without its backup copy (BUP)"},
    {"file.bup-differs", W, "a backup copy (BUP) that differs from its IFO"},
    {"file.read", E, "a file that cannot be read"},
    // IFO structure.
    {"ifo.identifier", E, "an IFO whose identifier is not DVDVIDEO-VMG / DVDVIDEO-VTS"},
    {"ifo.end-address", E,
     "end addresses and VOB start sectors of the information table against the files: an "
     "information part that ends past its IFO or short of its tables, an area too small for "
     "its files"},
    {"ifo.backup-address", W,
     "an area end address less the information part's (VMG_EA - VMGI_EA, VTS_EA - VTSI_EA) "
     "that is not where the backup (BUP) starts"},
    {"ifo.table-address", E,
     "a table missing, outside the IFO, overlapping another, or with an end address that does "
     "not fit its entries"},
    {"ifo.title-set-count", E,
     "the video manager's title set count against the title sets on the disc and in VTS_ATRT"},
    {"vts_atrt.attributes", E, "a title set's attributes in VTS_ATRT differ from its VTSI_MAT"},
    // Titles and parts of titles.
    {"tt_srpt.title-set", E, "a title search pointer to a title set that does not exist"},
    {"tt_srpt.title", E, "a title search pointer to a title its title set does not have"},
    {"tt_srpt.start-sector", E,
     "a title search pointer whose start sector is not where its title set starts"},
    {"tt_srpt.chapters", E, "a title's chapter count against its parts of title in VTS_PTT_SRPT"},
    {"ptt.target", E, "a part of title pointing to a program chain or program that does not exist"},
    // Program chains.
    {"pgc.structure", E,
     "program chain counts and sub-tables: programs <= cells, tables present and complete, at "
     "most 128 commands"},
    {"pgc.program-map", E, "program entry cells that are not 1, increasing, up to the cell count"},
    {"pgc.cell-sectors", E,
     "cell playback sectors out of order, beyond the VOBs, or not at VOBU starts"},
    {"pgc.cell-position", E,
     "a cell position missing from the cell address table or with other sectors there"},
    {"pgc.links", E, "next, previous or go-up program chain numbers that do not exist"},
    {"pgc.command", E,
     "a navigation command that links, jumps, calls or goes (always, on a comparison or after "
     "a set) to a title, part, chain, program, cell, menu, command or button that does not "
     "exist"},
    {"pgc.time", W, "a program chain's playback time differs from the sum of its cells"},
    {"pgc.stream-control", E,
     "an audio or sub-picture stream control for a stream the title set does not declare"},
    // Cell address tables, VOBU address maps, time maps.
    {"c_adt.order", E,
     "cell address entries out of order, overlapping, beyond the VOBs, or a wrong VOB count"},
    {"vobu_admap.order", E, "VOBU addresses not increasing or beyond the VOBs"},
    {"vobu_admap.navpacks", E,
     "the VOBU address map differs from the navigation packs actually in the VOBs"},
    {"tmapt.entry", E, "a time map entry that is not the start of a VOBU"},
    // Navigation packs.
    {"nav.lbn", E, "a navigation pack whose PCI or DSI gives another sector than its own"},
    {"nav.vobu-end", E, "a navigation pack whose VOBU end address is not its VOBU's last pack"},
    {"nav.next-vobu", E, "a navigation pack whose next VOBU pointer is wrong"},
    {"nav.previous-vobu", E, "a navigation pack whose previous VOBU pointer is wrong"},
    {"nav.cell", E,
     "a navigation pack whose VOB and cell ids are not the cell that the cell address table "
     "puts there"},
    {"nav.button-command", E,
     "a button command of a navigation pack that links, jumps or calls (always, on a comparison "
     "or after a set) to a title, part, chain, program, cell, menu or button that does not "
     "exist"},
    {"nav.vobu-length", W, "a VOBU shorter than 0.4 s or longer than 1.0 s (stills excepted)"},
    // Navigation: where a player can go.
    {"nav.unreachable", I,
     "a title or menu chain that no path reaches from first play or an entry menu, through "
     "every command (each comparison either way) and every button"},
    {"nav.loop", E,
     "a reachable cycle of chains that plays no cell and waits for no key, so a player hangs "
     "(a warning when the cycle depends on a comparison)"},
    // Packs.
    {"vob.pack", E, "a record that is not an MPEG-2 pack of a DVD-Video stream"},
    {"vob.first-pack", E, "a VOB set that does not begin with a navigation pack"},
    {"vob.mux-rate", W, "a pack whose program_mux_rate is above 10.08 Mbit/s"},
    {"vob.scr-order", W, "a pack whose SCR is lower than the one before it in the same VOB"},
    {"vob.unplayed", I,
     "records of a VOB set that no cell of any program chain of its domain plays (their "
     "streams are not checked)"},
    // Streams.
    {"stream.missing", E,
     "a declared stream that its program chain's control maps to an id found in none of the "
     "chain's cells"},
    {"stream.undeclared", E, "a stream in the VOBs that no declaration and control maps to"},
    {"stream.video-attributes", E,
     "declared video (MPEG version, resolution, the frame rate of its TV standard, aspect "
     "ratio) that differs from the first sequence header of its VOBs"},
    {"stream.audio-attributes", E,
     "a declared audio stream whose sampling frequency (for LPCM also quantization and "
     "channels) differs from the first header of the stream it plays as"},
    {"stream.audio-channels", W,
     "a declared AC-3, DTS or MPEG-1 audio stream whose channel count differs from the first "
     "header of the stream it plays as"},
    {"stream.count", E,
     "stream counts: at most 8 audio and 32 sub-picture streams, one video stream"},
    // Images.
    {"image.truncated", E, "an ISO image shorter than the volume size its file system declares"},
    {"image.damaged", E,
     "a range of the image that a GNU ddrescue mapfile (verify --mapfile) gives as not "
     "recovered, with the file, title sets, titles, cells and title times it hits"},
};

}  // namespace

const char* SeverityName(Severity severity) {
  switch (severity) {
    case Severity::kError:
      return "error";
    case Severity::kWarning:
      return "warning";
    case Severity::kInfo:
      return "info";
  }
  return "error";
}

std::span<const CheckInfo> AllChecks() {
  return kChecks;
}

const CheckInfo& FindCheck(std::string_view id) {
  for (const CheckInfo& check : kChecks) {
    if (id == check.id) return check;
  }
  throw std::logic_error("unknown check " + std::string(id));
}

void Findings::Add(Finding finding) {
  for (auto& [check, count] : counts_) {
    if (check == finding.check) {
      if (++count > kPerCheckLimit) return;
      findings_.push_back(std::move(finding));
      return;
    }
  }
  counts_.emplace_back(finding.check, 1);
  findings_.push_back(std::move(finding));
}

void Findings::AtTable(std::string_view check, std::string_view file, std::string_view table,
                       std::uint32_t entry, std::string message) {
  AtTable(check, file, table, entry, std::move(message), FindCheck(check).severity);
}

void Findings::AtTable(std::string_view check, std::string_view file, std::string_view table,
                       std::uint32_t entry, std::string message, Severity severity) {
  Finding f;
  f.severity = severity;
  f.check = check;
  f.file = file;
  f.table = std::string(table);
  if (entry != 0) f.entry = entry;
  f.message = std::move(message);
  Add(std::move(f));
}

void Findings::AtFile(std::string_view check, std::string_view file, std::string message) {
  Finding f;
  f.severity = FindCheck(check).severity;
  f.check = check;
  f.file = file;
  f.message = std::move(message);
  Add(std::move(f));
}

void Findings::AtRecord(std::string_view check, std::string_view file, std::uint64_t record,
                        std::string message) {
  Finding f;
  f.severity = FindCheck(check).severity;
  f.check = check;
  f.file = file;
  f.sector = record;
  f.message = std::move(message);
  Add(std::move(f));
}

void Findings::AtImage(std::string_view check, std::uint64_t sector, std::string message) {
  Finding f;
  f.severity = FindCheck(check).severity;
  f.check = check;
  f.sector = sector;
  f.message = std::move(message);
  Add(std::move(f));
}

void Findings::Finish() {
  for (const auto& [check, count] : counts_) {
    if (count <= kPerCheckLimit) continue;
    for (auto it = findings_.rbegin(); it != findings_.rend(); ++it) {
      if (it->check == check) {
        it->message += " (and " + std::to_string(count - kPerCheckLimit) +
                       " more findings of this check, not listed)";
        break;
      }
    }
  }
}

std::size_t Findings::Count(Severity severity) const {
  std::size_t n = 0;
  for (const auto& [check, count] : counts_) {
    if (FindCheck(check).severity == severity) n += count;
  }
  return n;
}

std::string FindingLine(const Finding& f) {
  std::string line = SeverityName(f.severity);
  line += ' ';
  line += f.file.empty() ? std::string("(image)") : f.file;
  if (f.table) {
    line += ':' + *f.table;
    if (f.entry) line += '#' + std::to_string(*f.entry);
  } else if (f.sector) {
    line += '@' + std::to_string(*f.sector);
  }
  line += ' ' + f.check + ": " + f.message;
  return line;
}

}  // namespace tarvex
