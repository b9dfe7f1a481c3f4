// A title's bitrate: the bytes of its packs per stream per interval of title time, across its
// cells and VOB files, against the DVD-Video limits.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "disc/model.h"

namespace tarvex::picture {

inline constexpr double kMuxLimitMbps = 10.08;
inline constexpr double kVideoLimitMbps = 9.8;

struct BitrateInterval {
  // Bytes per pack key (picture/packets.h FirstPacketKey), in the order first met.
  std::vector<std::pair<std::uint16_t, std::uint64_t>> counts;
  void Add(std::uint16_t key, std::uint64_t bytes);
  // By name: "video", "0x80", "nav", "padding", ...
  std::map<std::string, std::uint64_t> bytes() const;
  std::uint64_t total() const;
  std::uint64_t video() const;
};

struct BitrateReport {
  std::string disc;
  std::uint32_t title = 0;
  double interval = 1;  // seconds
  std::vector<BitrateInterval> intervals;
  std::vector<std::uint64_t> chapter_starts;  // 90 kHz ticks
  std::uint64_t total_ticks = 0;
};

// The name a pack key counts under: "video", the stream id ("0x80" for a private stream 1
// sub-stream, "0xc0"...), "nav" or "padding".
std::string PackKeyName(std::uint16_t key);

// The interval a pack lies in: floor(t / S) of its title time t = (SCR - the SCR of its cell's
// first pack) / 27 MHz + start_ticks / 90 kHz, compared exactly in 27 MHz units (0 for a pack
// before its cell's first one).
std::uint64_t IntervalOf(std::int64_t scr_since_cell, std::uint64_t start_ticks,
                         std::uint64_t interval_27mhz);

// interval: seconds, at least 1/27000000. Nothing with error set when the title does not exist
// or a VOB cannot be read.
std::optional<BitrateReport> MeasureBitrate(const Disc& disc, std::uint32_t title, double interval,
                                            std::string& error);

// bytes x 8 / S / 10^6.
double Mbps(std::uint64_t bytes, double interval);

std::string BitrateJson(const BitrateReport& report);
std::string BitrateText(const BitrateReport& report);
// The mux and video rates over title time as an SVG chart, both limits drawn, chapter starts
// marked.
std::string BitrateSvg(const BitrateReport& report);

}  // namespace tarvex::picture
