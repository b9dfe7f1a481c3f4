#include "disc/info.h"

#include <cstdio>
#include <set>

#include "disc/title_cells.h"
#include "platform/format.h"
#include "platform/json_writer.h"

namespace tarvex {

namespace {

double Seconds(std::uint64_t ms) {
  return static_cast<double>(ms) / 1000.0;
}

std::string MsText(std::uint64_t ms) {
  return MillisecondsText(ms);
}

std::string PaletteEntry(std::uint32_t colour) {
  char buf[8];
  std::snprintf(buf, sizeof buf, "%02x%02x%02x", (colour >> 16) & 0xFF, (colour >> 8) & 0xFF,
                colour & 0xFF);
  return buf;
}

// A span of a chain's cells: a chapter (a part of title) or a program.
struct CellSpan {
  std::uint32_t number = 0;
  const Pgc* pgc = nullptr;
  std::uint32_t first_cell = 0, end_cell = 0;  // cells first_cell .. end_cell - 1 (1-based)
  std::uint64_t ms = 0;
  std::uint64_t ticks = 0;  // exact cell times, angle blocks counting angle 1 only
};

// Whether a cell plays with angle 1: outside an angle block, or its block's first cell.
bool PlaysFirstAngle(int angle_index) {
  return angle_index <= 0;
}

void AddCellTimes(CellSpan& span) {
  std::vector<int> angles = AngleIndices(*span.pgc);
  for (std::uint32_t k = span.first_cell; k < span.end_cell && k <= span.pgc->cells.size(); ++k) {
    if (k < 1) continue;
    span.ms += span.pgc->cells[k - 1].time.Milliseconds();
    if (PlaysFirstAngle(angles[k - 1])) span.ticks += span.pgc->cells[k - 1].time.Ticks();
  }
}

void WriteDuration(JsonWriter& j, std::uint64_t ticks) {
  j.Key("duration").Decimal(Seconds(TicksToMilliseconds(ticks)), 3);
}

// The chapters: each part of title from its program's entry cell up to the entry cell of the
// next part in the same chain, or to the chain's end (a program that starts no part, a cell
// marked as a program but not as a chapter, belongs to the chapter before it).
std::vector<CellSpan> Chapters(const TitleView& view) {
  std::vector<CellSpan> chapters;
  if (view.parts == nullptr) return chapters;
  for (std::size_t i = 0; i < view.parts->size(); ++i) {
    const PartOfTitle& part = (*view.parts)[i];
    CellSpan& c = chapters.emplace_back();
    c.number = static_cast<std::uint32_t>(i + 1);
    if (part.pgcn < 1 || part.pgcn > view.title_set->pgcs.size()) continue;
    c.pgc = &view.title_set->pgcs[part.pgcn - 1];
    const auto& map = c.pgc->program_map;
    if (part.pgn >= 1 && part.pgn <= map.size()) c.first_cell = map[part.pgn - 1];
  }
  for (CellSpan& c : chapters) {
    if (c.first_cell == 0) continue;
    c.end_cell = static_cast<std::uint32_t>(c.pgc->cells.size() + 1);
    for (const CellSpan& other : chapters) {
      if (other.pgc == c.pgc && other.first_cell > c.first_cell) {
        c.end_cell = std::min(c.end_cell, other.first_cell);
      }
    }
    AddCellTimes(c);
  }
  return chapters;
}

// The programs of a chain, each from its entry cell up to the next one's.
std::vector<CellSpan> Programs(const Pgc& pgc) {
  std::vector<CellSpan> programs;
  const auto& map = pgc.program_map;
  for (std::size_t p = 0; p < map.size(); ++p) {
    CellSpan& span = programs.emplace_back();
    span.number = static_cast<std::uint32_t>(p + 1);
    span.pgc = &pgc;
    span.first_cell = map[p];
    span.end_cell =
        p + 1 < map.size() ? map[p + 1] : static_cast<std::uint32_t>(pgc.cells.size() + 1);
    AddCellTimes(span);
  }
  return programs;
}

std::uint64_t ChainsMs(const std::vector<const Pgc*>& chains) {
  std::uint64_t ms = 0;
  for (const Pgc* pgc : chains) ms += pgc->time.Milliseconds();
  return ms;
}

std::optional<std::uint32_t> AudioId(const AudioAttributes& a, const Pgc* pgc, std::size_t i) {
  if (pgc == nullptr) return std::nullopt;
  auto n = AudioControlNumber(pgc->audio_control[i]);
  if (!n) return std::nullopt;
  auto id = AudioStreamId(a.coding, *n);
  if (!id) return std::nullopt;
  return *id;
}

std::optional<std::uint32_t> SubpictureId(const VideoAttributes& video, const Pgc* pgc,
                                          std::size_t i) {
  if (pgc == nullptr) return std::nullopt;
  SubpictureControl c = DecodeSubpictureControl(pgc->subpicture_control[i]);
  if (!c.available) return std::nullopt;
  return 0x20 + (video.wide() ? c.wide : c.standard);
}

const char* MenuName(std::uint32_t id) {
  switch (id) {
    case 2:
      return "title";
    case 3:
      return "root";
    case 4:
      return "subpicture";
    case 5:
      return "audio";
    case 6:
      return "angle";
    case 7:
      return "chapter";
    default:
      return nullptr;
  }
}

// ---- JSON -------------------------------------------------------------------------------

void WriteVideo(JsonWriter& j, const VideoAttributes& v) {
  j.Key("video").BeginObject();
  j.Member("standard", v.standard).Member("aspect", v.aspect);
  j.MemberUint("width", v.width).MemberUint("height", v.height);
  j.Key("frame_rate").Decimal(v.frame_rate, 2);
  j.Key("letterboxed").Bool(v.letterboxed);
  // The display formats a 16:9 picture permits on a 4:3 screen.
  static constexpr const char* kDisplay[] = {"pan-scan+letterbox", "pan-scan", "letterbox"};
  j.Key("display_format");
  if (v.permitted_display < 3) {
    j.String(kDisplay[v.permitted_display]);
  } else {
    j.Null();
  }
  j.Key("mpeg").Uint(v.mpeg2 ? 2 : 1);
  j.EndObject();
}

void WriteOptionalText(JsonWriter& j, std::string_view key, const std::optional<std::string>& t) {
  j.Key(key);
  if (t) {
    j.String(*t);
  } else {
    j.Null();
  }
}

void WriteStreamId(JsonWriter& j, std::optional<std::uint32_t> id) {
  j.Key("stream_id");
  if (id) {
    j.String(StreamIdText(*id));
  } else {
    j.Null();
  }
}

// Whether a title or menu lists declared stream i: the streams its chain makes available, or
// every declared stream when the chain cannot be read.
bool ListsAudio(const Pgc* pgc, std::size_t i) {
  return pgc == nullptr || AudioControlNumber(pgc->audio_control[i]).has_value();
}
bool ListsSubpicture(const Pgc* pgc, std::size_t i) {
  return pgc == nullptr || DecodeSubpictureControl(pgc->subpicture_control[i]).available;
}

void WriteAudio(JsonWriter& j, const StreamDeclarations& s, const Pgc* pgc) {
  j.Key("audio").BeginArray();
  for (std::size_t i = 0; i < s.audio.size(); ++i) {
    if (!ListsAudio(pgc, i)) continue;
    const AudioAttributes& a = s.audio[i];
    j.BeginObject().MemberUint("number", i + 1);
    WriteStreamId(j, AudioId(a, pgc, i));
    WriteOptionalText(j, "language", a.language);
    j.Member("format", a.format).MemberUint("frequency", a.frequency);
    j.MemberUint("channels", a.channels).MemberUint("quantization", a.quantization);
    j.MemberUint("application_mode", a.application_mode);
    j.MemberUint("code_extension", a.code_extension);
    j.EndObject();
  }
  j.EndArray();
}

void WriteSubpictures(JsonWriter& j, const StreamDeclarations& s, const Pgc* pgc) {
  static constexpr std::pair<std::string_view, std::string_view> kKeys[] = {
      {"wide", "wide_id"}, {"letterbox", "letterbox_id"}, {"pan-scan", "pan_scan_id"}};
  j.Key("subpictures").BeginArray();
  for (std::size_t i = 0; i < s.subpictures.size(); ++i) {
    if (!ListsSubpicture(pgc, i)) continue;
    const SubpictureAttributes& sp = s.subpictures[i];
    j.BeginObject().MemberUint("number", i + 1);
    WriteStreamId(j, SubpictureId(s.video, pgc, i));
    WriteOptionalText(j, "language", sp.language);
    j.MemberUint("code_extension", sp.code_extension);
    if (pgc != nullptr && s.video.wide()) {
      SubpictureControl c = DecodeSubpictureControl(pgc->subpicture_control[i]);
      for (const SubpictureStream& stream : SubpictureStreamIds(s.video, c)) {
        for (const auto& [display, key] : kKeys) {
          if (display == stream.display) j.Member(key, StreamIdText(stream.id));
        }
      }
    }
    j.EndObject();
  }
  j.EndArray();
}

void WriteSpans(JsonWriter& j, std::string_view key, const std::vector<CellSpan>& spans,
                bool with_chain) {
  j.Key(key).BeginArray();
  for (const CellSpan& c : spans) {
    j.BeginObject().MemberUint("number", c.number);
    j.Key("length").Decimal(Seconds(c.ms), 3);
    WriteDuration(j, c.ticks);
    j.MemberUint("first_cell", c.first_cell);
    if (c.pgc && with_chain) j.MemberUint("pgc", c.pgc->number);
    j.EndObject();
  }
  j.EndArray();
}

void WriteCells(JsonWriter& j, const std::vector<const Pgc*>& chains, bool with_chain) {
  j.Key("cells").BeginArray();
  for (const Pgc* pgc : chains) {
    for (const Cell& c : pgc->cells) {
      j.BeginObject().MemberUint("number", c.number);
      if (with_chain) j.MemberUint("pgc", pgc->number);
      j.Key("length").Decimal(Seconds(c.time.Milliseconds()), 3);
      WriteDuration(j, c.time.Ticks());
      j.MemberUint("first_sector", c.first_sector).MemberUint("last_sector", c.last_sector);
      j.MemberUint("vob_id", c.vob_id).MemberUint("cell_id", c.cell_id);
      j.MemberUint("still_time", c.still_time());
      j.EndObject();
    }
  }
  j.EndArray();
}

void WritePalette(JsonWriter& j, const Pgc* pgc) {
  j.Key("palette").BeginArray();
  if (pgc != nullptr) {
    for (std::uint32_t colour : pgc->palette) j.String(PaletteEntry(colour));
  }
  j.EndArray();
}

void WriteTitle(JsonWriter& j, const Disc& disc, const TitleEntry& t,
                const TitleNavigation* navigation) {
  TitleView view = ViewTitle(disc, t);
  std::vector<const Pgc*> chains = TitleChains(view);
  j.BeginObject();
  j.MemberUint("number", t.number).MemberUint("title_set", t.title_set);
  j.MemberUint("title_in_set", t.title_in_set);
  if (navigation && t.number >= 1 && t.number <= navigation->reachable.size()) {
    j.Key("reachable").Bool(navigation->reachable[t.number - 1]);
  }
  j.Key("length").Decimal(Seconds(ChainsMs(chains)), 3);
  WriteDuration(j, PlanTitleCells(disc, t, 1).total_ticks);
  j.MemberUint("angles", t.angles);
  j.Key("pgcs").BeginArray();
  for (const Pgc* pgc : chains) j.Uint(pgc->number);
  j.EndArray();
  static const StreamDeclarations kNone;
  const StreamDeclarations& streams = view.title_set ? view.title_set->title : kNone;
  WriteVideo(j, streams.video);
  WriteAudio(j, streams, view.pgc);
  WriteSubpictures(j, streams, view.pgc);
  WriteSpans(j, "chapters", Chapters(view), true);
  std::vector<CellSpan> programs;
  for (const Pgc* pgc : chains) {
    for (const CellSpan& p : Programs(*pgc)) programs.push_back(p);
  }
  WriteSpans(j, "programs", programs, chains.size() > 1);
  WriteCells(j, chains, chains.size() > 1);
  WritePalette(j, view.pgc);
  j.EndObject();
}

void WriteMenus(JsonWriter& j, const std::vector<LanguageUnit>& units, const char* domain,
                std::optional<std::uint32_t> title_set, const StreamDeclarations& streams) {
  for (const LanguageUnit& unit : units) {
    for (const Pgc& pgc : unit.pgcs) {
      j.BeginObject();
      j.Member("domain", domain);
      j.Key("title_set");
      if (title_set) {
        j.Uint(*title_set);
      } else {
        j.Null();
      }
      WriteOptionalText(j, "language", unit.code());
      j.MemberUint("number", pgc.number);
      const char* menu = pgc.entry() ? MenuName(pgc.menu_id()) : nullptr;
      j.Key("entry");
      if (menu) {
        j.String(menu);
      } else {
        j.Null();
      }
      j.Key("length").Decimal(Seconds(pgc.time.Milliseconds()), 3);
      WriteVideo(j, streams.video);
      WriteAudio(j, streams, &pgc);
      WriteSubpictures(j, streams, &pgc);
      WriteCells(j, {&pgc}, false);
      WritePalette(j, &pgc);
      j.EndObject();
    }
  }
}

// ---- text -------------------------------------------------------------------------------

std::string Language(const std::optional<std::string>& language) {
  return language ? *language : std::string("--");
}

std::string IdText(std::optional<std::uint32_t> id) {
  return id ? "stream " + StreamIdText(*id) : std::string("not available");
}

// "1.5 GiB", "12.3 MiB", "512 KiB": a size for people, to one decimal.
std::string SizeText(std::uint64_t bytes) {
  const char* units[] = {"KiB", "MiB", "GiB"};
  double value = static_cast<double>(bytes) / 1024.0;
  std::size_t u = 0;
  while (value >= 1024.0 && u + 1 < 3) {
    value /= 1024.0;
    ++u;
  }
  return Format("%.1f %s", {value, units[u]});
}

void RipText(std::string& out, const std::optional<std::uint64_t>& bytes) {
  if (!bytes) {
    out += "  Rip: size unknown (its interleaved units cannot be followed)\n";
    return;
  }
  out += "  Rip: " + std::to_string(*bytes) + " bytes (" + SizeText(*bytes) + "), angle 1\n";
}

void TitleText(std::string& out, const Disc& disc, const TitleEntry& t,
               const std::optional<std::uint64_t>* rip_bytes) {
  TitleView view = ViewTitle(disc, t);
  std::vector<const Pgc*> chains = TitleChains(view);
  std::size_t cells = 0;
  for (const Pgc* p : chains) cells += p->cells.size();
  std::vector<CellSpan> chapters = Chapters(view);
  out += Format(
      "Title %d: title set %d, title %d, %s, %s, %s, %s\n",
      {t.number, t.title_set, t.title_in_set, MsText(ChainsMs(chains)),
       Counted(chapters.size(), "chapter"), Counted(cells, "cell"), Counted(t.angles, "angle")});
  if (rip_bytes != nullptr) RipText(out, *rip_bytes);
  if (view.title_set == nullptr) {
    out += "  (its title set cannot be read)\n";
    return;
  }
  const StreamDeclarations& s = view.title_set->title;
  out += Format("  Video: %s %dx%d %s, %s fps\n",
                {s.video.standard, s.video.width, s.video.height, s.video.aspect,
                 s.video.frame_rate == 25.0 ? "25" : "29.97"});
  for (std::size_t i = 0; i < s.audio.size(); ++i) {
    if (!ListsAudio(view.pgc, i)) continue;
    const AudioAttributes& a = s.audio[i];
    out += Format("  Audio %d: %s %s, %d Hz, %s, %s\n",
                  {i + 1, Language(a.language), a.format, a.frequency,
                   Counted(a.channels, "channel"), IdText(AudioId(a, view.pgc, i))});
  }
  for (std::size_t i = 0; i < s.subpictures.size(); ++i) {
    if (!ListsSubpicture(view.pgc, i)) continue;
    out += Format("  Subpicture %d: %s, %s\n", {i + 1, Language(s.subpictures[i].language),
                                                IdText(SubpictureId(s.video, view.pgc, i))});
  }
  for (const CellSpan& c : chapters) {
    out += Format("  Chapter %d: %s, first cell %d\n", {c.number, MsText(c.ms), c.first_cell});
  }
  for (const Pgc* pgc : chains) {
    for (const Cell& c : pgc->cells) {
      out += Format("  Cell %d: %s, sectors %d-%d, VOB %d cell %d\n",
                    {c.number, c.time.Text(), c.first_sector, c.last_sector, c.vob_id, c.cell_id});
    }
  }
  if (view.pgc) {
    out += "  Palette:";
    for (std::uint32_t colour : view.pgc->palette) {
      out += ' ';
      out += PaletteEntry(colour);
    }
    out += "\n";
  }
}

void MenuText(std::string& out, const std::vector<LanguageUnit>& units, const std::string& where) {
  for (const LanguageUnit& unit : units) {
    for (const Pgc& pgc : unit.pgcs) {
      const char* menu = pgc.entry() ? MenuName(pgc.menu_id()) : nullptr;
      out += Format("  %s, language %s, PGC %d%s: %s, %s\n",
                    {where, Language(unit.code()), pgc.number,
                     menu ? std::string(" (") + menu + " menu)" : std::string(), pgc.time.Text(),
                     Counted(pgc.cells.size(), "cell")});
    }
  }
}

// The number of the longest title (the first of equally long ones), 0 for a disc without one
// or without a video manager (whose titles have no numbers on the disc).
std::uint32_t LongestTitle(const Disc& disc) {
  std::uint32_t longest = 0;
  std::uint64_t longest_ms = 0;
  if (!disc.vmg.ifo_found) return 0;
  for (const TitleEntry& t : disc.vmg.titles) {
    std::uint64_t ms = ChainsMs(TitleChains(ViewTitle(disc, t)));
    if (longest == 0 || ms > longest_ms) {
      longest = t.number;
      longest_ms = ms;
    }
  }
  return longest;
}

}  // namespace

std::string DiscInfoJson(const Disc& disc, const TitleNavigation* navigation) {
  JsonWriter j;
  j.BeginObject();
  j.Member("disc", disc.path);
  j.Key("vmg");
  if (disc.vmg.ifo_found) {
    j.BeginObject();
    j.Member("id", disc.vmg.id).Member("provider_id", disc.vmg.provider);
    j.MemberUint("title_sets", disc.vmg.title_set_count);
    j.Member("version", Format("%d.%d", {disc.vmg.version >> 4, disc.vmg.version & 15}));
    j.MemberUint("titles", disc.vmg.titles.size());
    j.EndObject();
  } else {
    j.Null();
  }
  j.Key("titles").BeginArray();
  for (const TitleEntry& t : DiscTitles(disc)) WriteTitle(j, disc, t, navigation);
  j.EndArray();
  j.Key("longest_title");
  if (std::uint32_t longest = LongestTitle(disc)) {
    j.Uint(longest);
  } else {
    j.Null();
  }
  if (navigation) {
    j.Key("first_title");
    navigation->first_title ? j.Uint(*navigation->first_title) : j.Null();
  }
  j.Key("menus").BeginArray();
  WriteMenus(j, disc.vmg.menus, "vmgm", std::nullopt, disc.vmg.menu);
  for (const TitleSet& ts : disc.title_sets) {
    if (ts.present) WriteMenus(j, ts.menus, "vtsm", ts.number, ts.menu);
  }
  j.EndArray();
  j.EndObject();
  return j.text();
}

namespace {

// "First title played: 2" and the titles no path reaches.
void NavigationText(std::string& out, const TitleNavigation& navigation) {
  out += navigation.first_title ? Format("First title played: %d\n", {*navigation.first_title})
                                : std::string("First title played: none\n");
  std::string unreachable;
  for (std::size_t t = 0; t < navigation.reachable.size(); ++t) {
    if (!navigation.reachable[t])
      unreachable += (unreachable.empty() ? "" : ", ") + std::to_string(t + 1);
  }
  if (!unreachable.empty()) out += "Titles no path reaches: " + unreachable + "\n";
}

}  // namespace

std::string DiscInfoText(const Disc& disc, const TitleNavigation* navigation,
                         const TitleRipSizes* rip_sizes) {
  std::string out;
  out += Format("Disc: %s (%s)\n", {disc.path, disc.kind});
  if (disc.vmg.ifo_found) {
    out += Format(
        "Video manager: %s, provider \"%s\", version %d.%d, %s, %s\n",
        {disc.vmg.id, disc.vmg.provider, disc.vmg.version >> 4, disc.vmg.version & 15,
         Counted(disc.vmg.title_set_count, "title set"), Counted(disc.vmg.titles.size(), "title")});
  } else {
    out += "Video manager: none (no VIDEO_TS.IFO); titles numbered within their title sets\n";
  }
  std::vector<TitleEntry> titles = DiscTitles(disc);
  for (std::size_t i = 0; i < titles.size(); ++i) {
    bool known = rip_sizes != nullptr && i < rip_sizes->bytes.size();
    TitleText(out, disc, titles[i], known ? &rip_sizes->bytes[i] : nullptr);
  }
  if (std::uint32_t longest = LongestTitle(disc)) out += Format("Longest title: %d\n", {longest});
  if (navigation) NavigationText(out, *navigation);
  out += "Menus:\n";
  MenuText(out, disc.vmg.menus, "Video manager");
  for (const TitleSet& ts : disc.title_sets) {
    if (ts.present) MenuText(out, ts.menus, Format("Title set %d", {ts.number}));
  }
  return out;
}

}  // namespace tarvex
