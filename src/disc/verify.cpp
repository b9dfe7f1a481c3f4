#include "disc/verify.h"

#include "disc/checks.h"
#include "platform/format.h"
#include "platform/json_writer.h"

namespace tarvex {

namespace {

void CheckStreamCounts(const std::string& file, const char* table, const StreamDeclarations& s,
                       std::uint32_t max_audio, std::uint32_t max_subpictures, Findings& out) {
  if (s.audio_count > max_audio) {
    out.AtTable("stream.count", file, table, 0,
                Format("%d audio streams declared, at most %d", {s.audio_count, max_audio}));
  }
  if (s.subpicture_count > max_subpictures) {
    out.AtTable("stream.count", file, table, 0,
                Format("%d sub-picture streams declared, at most %d",
                       {s.subpicture_count, max_subpictures}));
  }
}

std::set<std::pair<std::uint16_t, std::uint8_t>> InterleavedCells(
    const std::vector<DomainChain>& chains) {
  std::set<std::pair<std::uint16_t, std::uint8_t>> cells;
  for (const DomainChain& chain : chains) {
    for (const Cell& c : chain.pgc->cells) {
      if (c.block_type() != 0 || c.interleaved()) cells.insert({c.vob_id, c.cell_id});
    }
  }
  return cells;
}

std::vector<DomainChain> MenuChains(const std::vector<LanguageUnit>& units) {
  std::vector<DomainChain> chains;
  for (std::size_t u = 0; u < units.size(); ++u) {
    for (const Pgc& pgc : units[u].pgcs) {
      chains.push_back({&pgc, units[u].pgcs.size(), LanguageUnitPrefix(units, u)});
    }
  }
  return chains;
}

// Button commands against what their chain's domain holds: one finding per distinct command
// of a cell, at the record where it was first seen.
void CheckButtons(const Disc& disc, const std::vector<DomainChain>& chains, const TitleSet* ts,
                  bool titles, const StreamPresence& found, Findings& out) {
  for (const ButtonCommand& button : found.buttons) {
    for (const DomainChain& chain : chains) {
      bool plays = false;
      for (const Cell& c : chain.pgc->cells)
        plays = plays || (c.vob_id == button.cell.first && c.cell_id == button.cell.second);
      if (!plays) continue;
      CommandPlace place{.buttons = button.buttons, .button_command = true};
      auto problem = CommandTargetProblem({disc, chain.chains_in_block, ts, titles}, *chain.pgc,
                                          button.command, place);
      if (problem) {
        out.AtRecord("nav.button-command", button.file, button.record,
                     Format("button %d: ", {button.button}) + *problem);
      }
      break;
    }
  }
}

void ScanSet(const Disc& disc, const VobSet& set, VobSetNames names,
             const std::vector<DomainChain>& chains, const TitleSet* ts,
             const StreamDeclarations& declared, Findings& out, bool titles = false) {
  if (set.parts.empty()) return;
  names.interleaved = InterleavedCells(chains);
  StreamPresence found = ScanVobSet(disc, set, names, PlayedSectors(chains), out);
  CheckButtons(disc, chains, ts, titles, found, out);
  CheckStreams(disc, chains, declared, found, names, out);
}

// An image shorter than its volume: the sectors past its end are lost.
void CheckImageSize(const Disc& disc, Findings& out) {
  std::optional<ImageSizes> sizes = disc.access ? disc.access->image_sizes() : std::nullopt;
  if (!sizes || !sizes->volume_sectors) return;
  std::uint64_t volume_bytes = *sizes->volume_sectors * 2048;
  if (sizes->bytes >= volume_bytes) return;
  out.AtImage("image.truncated", sizes->bytes / 2048,
              "the image holds " + std::to_string(sizes->bytes) + " bytes (" +
                  std::to_string(sizes->bytes / 2048) + " whole sectors), its volume " +
                  std::to_string(*sizes->volume_sectors) + " sectors (" +
                  std::to_string(volume_bytes) + " bytes)");
}

}  // namespace

VerifyResult VerifyDisc(const Disc& disc, const VerifyOptions& options) {
  Findings out = disc.load_findings;
  CheckImageSize(disc, out);
  CheckFiles(disc, out);
  CheckInformationTables(disc, out);
  CheckStreamCounts("VIDEO_TS.IFO", "VMGI_MAT", disc.vmg.menu, 1, 1, out);
  for (const TitleSet& ts : disc.title_sets) {
    if (!ts.present) continue;
    CheckStreamCounts(ts.ifo_name, "VTSI_MAT", ts.menu, 1, 1, out);
    CheckStreamCounts(ts.ifo_name, "VTSI_MAT", ts.title, 8, 32, out);
  }
  CheckTitles(disc, out);
  CheckAddressTables(disc, out);
  CheckChains(disc, out);
  if (options.more_checks) options.more_checks(disc, out);
  if (!options.ifo_only) {
    std::vector<DomainChain> vmgm = MenuChains(disc.vmg.menus);
    if (disc.vmg.first_play) {
      vmgm.push_back({&*disc.vmg.first_play,
                      disc.vmg.menus.empty() ? 0 : disc.vmg.menus.front().pgcs.size(), ""});
    }
    ScanSet(
        disc, disc.vmg.menu_vobs,
        {"VIDEO_TS.IFO", "VMGM_C_ADT", "VMGM_VOBU_ADMAP", "VMGM_PGCI_UT", "VMGI_MAT", "menu", {}},
        vmgm, nullptr, disc.vmg.menu, out);
    for (const TitleSet& ts : disc.title_sets) {
      if (!ts.present) continue;
      ScanSet(
          disc, ts.menu_vobs,
          {ts.ifo_name, "VTSM_C_ADT", "VTSM_VOBU_ADMAP", "VTSM_PGCI_UT", "VTSI_MAT", "menu", {}},
          MenuChains(ts.menus), &ts, ts.menu, out);
      std::vector<DomainChain> titles;
      for (const Pgc& pgc : ts.pgcs) titles.push_back({&pgc, ts.pgcs.size(), ""});
      ScanSet(disc, ts.title_vobs,
              {ts.ifo_name, "VTS_C_ADT", "VTS_VOBU_ADMAP", "VTS_PGCIT", "VTSI_MAT", "title", {}},
              titles, &ts, ts.title, out, true);
    }
  }
  out.Finish();
  VerifyResult result;
  result.findings = out.all();
  result.errors = out.Count(Severity::kError);
  result.warnings = out.Count(Severity::kWarning);
  result.infos = out.Count(Severity::kInfo);
  return result;
}

std::string VerifyText(const VerifyResult& result) {
  std::string text;
  for (const Finding& f : result.findings) text += FindingLine(f) + "\n";
  return text;
}

std::string VerifyJson(const std::string& disc_path, const VerifyResult& result) {
  JsonWriter j;
  j.set_compact_depth(2);
  j.BeginObject();
  j.Member("disc", disc_path);
  j.Key("findings").BeginArray();
  for (const Finding& f : result.findings) {
    j.BeginObject();
    j.Member("severity", SeverityName(f.severity)).Member("check", f.check).Key("file");
    f.file.empty() ? j.Null() : j.String(f.file);
    j.Key("table");
    f.table ? j.String(*f.table) : j.Null();
    j.Key("entry");
    f.entry ? j.Uint(*f.entry) : j.Null();
    j.Key("sector");
    f.sector ? j.Uint(*f.sector) : j.Null();
    j.Member("message", f.message);
    j.EndObject();
  }
  j.EndArray();
  j.MemberUint("errors", result.errors).MemberUint("warnings", result.warnings);
  j.MemberUint("infos", result.infos);
  j.EndObject();
  return j.text();
}

std::string ListChecksText() {
  std::string text;
  for (const CheckInfo& c : AllChecks()) {
    text += Format("%-22s %-8s %s\n", {c.id, SeverityName(c.severity), c.explanation});
  }
  return text;
}

std::string ListChecksJson() {
  JsonWriter j;
  j.set_compact_depth(2);
  j.BeginObject().Key("checks").BeginArray();
  for (const CheckInfo& c : AllChecks()) {
    j.BeginObject().Member("check", c.id).Member("severity", SeverityName(c.severity));
    j.Member("explanation", c.explanation).EndObject();
  }
  j.EndArray().EndObject();
  return j.text();
}

}  // namespace tarvex
