#include "picture/bitrate.h"

#include <cmath>
#include <cstdio>

#include "picture/packets.h"
#include "picture/subpictures.h"
#include "picture/title_cells.h"
#include "picture/vob_reader.h"
#include "platform/json_writer.h"

namespace tarvex::picture {

namespace {

constexpr std::uint64_t kClockHz = 27000000;
constexpr std::uint64_t kTicksToClock = 300;  // 27 MHz / 90 kHz

std::string Hex(std::uint8_t id) {
  char text[8];
  std::snprintf(text, sizeof text, "0x%02x", id);
  return text;
}

}  // namespace

void BitrateInterval::Add(std::uint16_t key, std::uint64_t n) {
  for (auto& [k, bytes] : counts) {
    if (k == key) {
      bytes += n;
      return;
    }
  }
  counts.emplace_back(key, n);
}

std::map<std::string, std::uint64_t> BitrateInterval::bytes() const {
  std::map<std::string, std::uint64_t> named;
  for (const auto& [key, n] : counts) named[PackKeyName(key)] += n;
  return named;
}

std::uint64_t BitrateInterval::total() const {
  std::uint64_t sum = 0;
  for (const auto& [key, n] : counts) sum += n;
  return sum;
}

std::uint64_t BitrateInterval::video() const {
  for (const auto& [key, n] : counts) {
    if (key == kVideoKey) return n;
  }
  return 0;
}

std::string PackKeyName(std::uint16_t key) {
  if (key == kVideoKey) return "video";
  if (key == kPrivateStream2) return "nav";
  if (key == kPaddingStream) return "padding";
  return Hex(static_cast<std::uint8_t>(key));
}

std::uint64_t IntervalOf(std::int64_t scr_since_cell, std::uint64_t start_ticks,
                         std::uint64_t interval_27mhz) {
  std::int64_t t = scr_since_cell + static_cast<std::int64_t>(start_ticks * kTicksToClock);
  return t <= 0 ? 0 : static_cast<std::uint64_t>(t) / interval_27mhz;
}

double Mbps(std::uint64_t bytes, double interval) {
  return static_cast<double>(bytes) * 8.0 / interval / 1e6;
}

std::optional<BitrateReport> MeasureBitrate(const Disc& disc, std::uint32_t title, double interval,
                                            std::string& error) {
  std::optional<TitleCells> cells = FindTitleCells(disc, title, error);
  if (!cells) return std::nullopt;
  BitrateReport report{disc.path, title, interval, {}, cells->chapter_starts, cells->total_ticks};
  auto step = static_cast<std::uint64_t>(std::llround(interval * kClockHz));
  if (step == 0) step = 1;
  VobReader reader(disc, cells->title_set->title_vobs);
  for (const PlayedCell& pc : cells->cells) {
    std::optional<PackClock> first;
    bool read = reader.ForEach(
        pc.cell->first_sector, pc.cell->last_sector,
        [&](std::uint32_t, ByteView record) {
          PackClock scr = PackScr(record);
          if (!first) first = scr;
          std::uint64_t k = IntervalOf(ClockDifference(scr, *first), pc.start_ticks, step);
          if (k >= report.intervals.size()) report.intervals.resize(k + 1);
          report.intervals[k].Add(FirstPacketKey(record), kSectorSize);
        },
        error);
    if (!read) return std::nullopt;
  }
  return report;
}

namespace {

double Start(const BitrateReport& r, std::size_t k) {
  return static_cast<double>(k) * r.interval;
}

}  // namespace

std::string BitrateJson(const BitrateReport& r) {
  JsonWriter j;
  j.set_compact_depth(2);
  j.BeginObject()
      .Member("disc", r.disc)
      .MemberUint("title", r.title)
      .Key("interval")
      .Decimal(r.interval, 3);
  j.Key("intervals").BeginArray();
  for (std::size_t k = 0; k < r.intervals.size(); ++k) {
    const BitrateInterval& i = r.intervals[k];
    j.BeginObject().Key("start").Decimal(Start(r, k), 3).Key("bytes").BeginObject();
    for (const auto& [key, n] : i.bytes()) j.MemberUint(key, n);
    j.EndObject().Key("mux_mbps").Decimal(Mbps(i.total(), r.interval), 3);
    j.Key("video_mbps").Decimal(Mbps(i.video(), r.interval), 3).EndObject();
  }
  j.EndArray().Key("over_limit").BeginArray();
  for (std::size_t k = 0; k < r.intervals.size(); ++k) {
    const BitrateInterval& i = r.intervals[k];
    double mux = Mbps(i.total(), r.interval), video = Mbps(i.video(), r.interval);
    if (mux > kMuxLimitMbps)
      j.BeginObject()
          .Key("start")
          .Decimal(Start(r, k), 3)
          .Member("kind", "mux")
          .Key("mbps")
          .Decimal(mux, 3)
          .EndObject();
    if (video > kVideoLimitMbps)
      j.BeginObject()
          .Key("start")
          .Decimal(Start(r, k), 3)
          .Member("kind", "video")
          .Key("mbps")
          .Decimal(video, 3)
          .EndObject();
  }
  j.EndArray().EndObject();
  return j.text() + "\n";
}

std::string BitrateText(const BitrateReport& r) {
  std::string text = "Title " + std::to_string(r.title) + ": " +
                     std::to_string(r.intervals.size()) +
                     " intervals\n     start      mux    video\n";
  for (std::size_t k = 0; k < r.intervals.size(); ++k) {
    const BitrateInterval& i = r.intervals[k];
    double mux = Mbps(i.total(), r.interval), video = Mbps(i.video(), r.interval);
    char line[128];
    std::snprintf(line, sizeof line, "%10.3f  %7.3f  %7.3f%s%s\n", Start(r, k), mux, video,
                  mux > kMuxLimitMbps ? "  over the mux limit" : "",
                  video > kVideoLimitMbps ? "  over the video limit" : "");
    text += line;
  }
  return text;
}

}  // namespace tarvex::picture
