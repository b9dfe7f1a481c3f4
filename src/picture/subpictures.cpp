#include "picture/subpictures.h"

#include <cstdio>
#include <filesystem>

#include "picture/packets.h"
#include "picture/png_file.h"
#include "picture/title_cells.h"
#include "picture/vob_reader.h"
#include "platform/json_writer.h"
#include "stream/nav_fields.h"

namespace tarvex::picture {

namespace {

constexpr std::int64_t kDelayTicks = 1024;

// The stream id (0x20-0x3F) the chain gives declared stream number, for the display asked for.
std::optional<std::uint32_t> StreamId(const TitleSet& ts, const Pgc& pgc,
                                      const SubpictureRequest& r, std::string& error) {
  std::string name = "sub-picture stream " + std::to_string(r.stream);
  if (r.stream < 1 || r.stream > 32 || r.stream > ts.title.subpicture_count) {
    error = name + " is not declared for title " + std::to_string(r.title);
    return std::nullopt;
  }
  SubpictureControl control = DecodeSubpictureControl(pgc.subpicture_control[r.stream - 1]);
  std::string display = ts.title.video.wide() ? r.display : "4:3";
  for (const SubpictureStream& s : SubpictureStreamIds(ts.title.video, control)) {
    if (display == s.display) return s.id;
  }
  error = name + " is not available in title " + std::to_string(r.title) + "'s chain" +
          (ts.title.video.wide() ? " for the " + r.display + " display" : std::string());
  return std::nullopt;
}

// Gathers the units of one sub-stream from packs, a unit at a time.
class UnitCollector {
 public:
  UnitCollector(std::uint8_t substream, SubpictureTrack& track)
      : substream_(substream), track_(track) {}

  void StartCell(std::int64_t cell_start_ticks) {
    cell_start_ = cell_start_ticks;
    first_ptm_.reset();
  }
  void Pack(ByteView record) {
    for (const PesPacket& p : PackPackets(record)) {
      if (p.stream_id == kPrivateStream2 && !first_ptm_)
        first_ptm_ = DecodeNavPack(record).vobu_s_ptm;
      if (p.stream_id != kPrivateStream1 || p.substream != substream_) continue;
      if (p.pts) Begin(*p.pts);
      if (!pending_) continue;
      pending_->bytes.insert(pending_->bytes.end(), p.payload.data(),
                             p.payload.data() + p.payload.size());
      if (pending_->bytes.size() >= 2 &&
          pending_->bytes.size() >= ByteView(pending_->bytes).be16(0))
        Finish();
    }
  }

 private:
  void Begin(std::uint32_t pts) {
    pending_.emplace();
    auto since_cell = static_cast<std::int32_t>(pts - first_ptm_.value_or(pts));
    pending_->pts_ticks = cell_start_ + since_cell;
  }
  void Finish() {
    SubpictureUnitFound unit = std::move(*pending_);
    pending_.reset();
    unit.bytes.resize(ByteView(unit.bytes).be16(0));
    if (unit.bytes.size() < 4) return;
    unit.control = DecodeSpuControl(unit.bytes);
    unit.index = static_cast<std::uint32_t>(track_.units.size() + 1);
    unit.start_ticks = unit.pts_ticks + kDelayTicks * unit.control.start_delay.value_or(0);
    if (unit.control.stop_delay)
      unit.end_ticks = unit.pts_ticks + kDelayTicks * *unit.control.stop_delay;
    track_.units.push_back(std::move(unit));
  }

  std::uint8_t substream_;
  SubpictureTrack& track_;
  std::int64_t cell_start_ = 0;
  std::optional<std::uint32_t> first_ptm_;
  std::optional<SubpictureUnitFound> pending_;
};

}  // namespace

std::optional<SubpictureTrack> ReadSubpictures(const Disc& disc, const SubpictureRequest& request,
                                               std::string& error) {
  std::optional<TitleCells> title = FindTitleCells(disc, request.title, error);
  if (!title) return std::nullopt;
  const TitleSet& ts = *title->title_set;
  std::optional<std::uint32_t> id = StreamId(ts, *title->pgc, request, error);
  if (!id) return std::nullopt;
  SubpictureTrack track;
  track.disc = disc.path;
  track.title = request.title;
  track.stream = request.stream;
  track.stream_id = *id;
  if (request.stream <= ts.title.subpictures.size())
    track.language = ts.title.subpictures[request.stream - 1].language;
  if (ts.title.video.width) track.video_width = ts.title.video.width;
  if (ts.title.video.height) track.video_height = ts.title.video.height;
  track.palette = title->pgc->palette;
  track.rgb = PaletteToRgb(track.palette);
  UnitCollector collector(static_cast<std::uint8_t>(track.stream_id), track);
  VobReader reader(disc, ts.title_vobs);
  for (const PlayedCell& pc : title->cells) {
    collector.StartCell(static_cast<std::int64_t>(pc.start_ticks));
    bool read = reader.ForEach(
        pc.cell->first_sector, pc.cell->last_sector,
        [&](std::uint32_t, ByteView record) { collector.Pack(record); }, error);
    if (!read) return std::nullopt;
  }
  return track;
}

std::string UnitFileName(std::uint32_t index) {
  char name[24];
  std::snprintf(name, sizeof name, "%04u.png", index);
  return name;
}

double TicksToSeconds(std::int64_t ticks) {
  // Rounded to the nearest millisecond (halves away from zero) before the division.
  std::int64_t ms = (ticks >= 0 ? ticks * 1000 + 45000 : ticks * 1000 - 45000) / 90000;
  return static_cast<double>(ms) / 1000.0;
}

namespace {

void CodesJson(JsonWriter& j, const char* key, const SpuCodes& codes) {
  j.Key(key).BeginArray();
  for (std::uint8_t c : codes) j.Uint(c);
  j.EndArray();
}

void UnitJson(JsonWriter& j, const SubpictureUnitFound& u) {
  j.BeginObject().MemberUint("index", u.index);
  j.Key("start").Decimal(TicksToSeconds(u.start_ticks), 3);
  j.Key("end");
  if (u.end_ticks) {
    j.Decimal(TicksToSeconds(*u.end_ticks), 3);
  } else {
    j.Null();
  }
  j.Key("forced").Bool(u.control.forced);
  j.MemberUint("x", u.control.x0).MemberUint("y", u.control.y0);
  j.MemberUint("width", u.control.width()).MemberUint("height", u.control.height());
  CodesJson(j, "colors", u.control.colors);
  CodesJson(j, "contrast", u.control.contrast);
  j.Member("file", UnitFileName(u.index)).EndObject();
}

}  // namespace

std::string SubpictureJson(const SubpictureTrack& track) {
  JsonWriter j;
  j.set_compact_depth(2);
  j.BeginObject().Member("disc", track.disc).MemberUint("title", track.title);
  j.MemberUint("stream", track.stream).Member("stream_id", StreamIdText(track.stream_id));
  j.Key("palette").BeginArray();
  for (Rgb c : track.rgb) j.String(RgbHex(c));
  j.EndArray().Key("units").BeginArray();
  for (const SubpictureUnitFound& u : track.units) UnitJson(j, u);
  j.EndArray().EndObject();
  return j.text() + "\n";
}

namespace {

std::string SecondsText(std::int64_t ticks) {
  char text[32];
  std::snprintf(text, sizeof text, "%.3f", TicksToSeconds(ticks));
  return text;
}

}  // namespace

std::string SubpictureText(const SubpictureTrack& track) {
  std::string text = "Title " + std::to_string(track.title) + ", sub-picture stream " +
                     std::to_string(track.stream) + " (" + StreamIdText(track.stream_id) +
                     "): " + std::to_string(track.units.size()) + " units\n";
  for (const SubpictureUnitFound& u : track.units) {
    const SpuControl& c = u.control;
    char line[200];
    std::snprintf(line, sizeof line,
                  "%s  %10.3f  %10s  %ux%u at %u,%u  colors %u %u %u %u  contrast %u %u %u %u%s\n",
                  UnitFileName(u.index).c_str(), TicksToSeconds(u.start_ticks),
                  u.end_ticks ? SecondsText(*u.end_ticks).c_str() : "-", c.width(), c.height(),
                  c.x0, c.y0, c.colors[0], c.colors[1], c.colors[2], c.colors[3], c.contrast[0],
                  c.contrast[1], c.contrast[2], c.contrast[3], c.forced ? "  forced" : "");
    text += line;
  }
  return text;
}

bool WriteSubpicturePngs(const SubpictureTrack& track, const std::string& dir, std::string& error) {
  std::error_code ec;
  std::filesystem::create_directories(dir, ec);
  for (const SubpictureUnitFound& u : track.units) {
    RgbaImage image = RenderSpu(u.bytes, u.control, track.rgb);
    if (!WritePng(dir + "/" + UnitFileName(u.index), image.width, image.height, 4, image.rgba,
                  error))
      return false;
  }
  std::string json = SubpictureJson(track);
  std::FILE* f = std::fopen((dir + "/index.json").c_str(), "wb");
  bool ok = f && std::fwrite(json.data(), 1, json.size(), f) == json.size();
  if (f && std::fclose(f) != 0) ok = false;
  if (!ok) error = dir + "/index.json: cannot be written";
  return ok;
}

}  // namespace tarvex::picture
