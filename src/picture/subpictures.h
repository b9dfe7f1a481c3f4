// The sub-picture units of one stream of a title, followed through the title's cells in play
// order: each unit's bytes, its decoded control, and its times in title time.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "disc/model.h"
#include "picture/colour.h"
#include "picture/spu_decoder.h"

namespace tarvex::picture {

struct SubpictureRequest {
  std::uint32_t title = 0;
  std::uint32_t stream = 1;      // the declared stream number, 1-32
  std::string display = "wide";  // 16:9 titles: "wide", "letterbox" or "pan-scan"
};

struct SubpictureUnitFound {
  std::uint32_t index = 0;     // from 1
  std::int64_t pts_ticks = 0;  // the unit's PTS as title time, 90 kHz
  std::int64_t start_ticks = 0;
  std::optional<std::int64_t> end_ticks;
  SpuControl control;
  std::vector<std::uint8_t> bytes;  // the whole unit
};

struct SubpictureTrack {
  std::string disc;
  std::uint32_t title = 0, stream = 0;
  std::uint32_t stream_id = 0;  // the id the chain gives the stream, 0x20-0x3F
  std::optional<std::string> language;
  std::uint32_t video_width = 720, video_height = 480;
  std::array<std::uint32_t, 16> palette{};  // the chain's, 0 Y Cr Cb
  std::array<Rgb, 16> rgb{};
  std::vector<SubpictureUnitFound> units;
};

// Nothing with error set when the title does not exist, the chain does not make the stream
// available (for the display asked for), or a VOB cannot be read.
std::optional<SubpictureTrack> ReadSubpictures(const Disc& disc, const SubpictureRequest& request,
                                               std::string& error);

// The file name of unit index: "0001.png".
std::string UnitFileName(std::uint32_t index);

// {"disc", "title", "stream", "stream_id", "palette", "units": [...]}.
std::string SubpictureJson(const SubpictureTrack& track);

// One line per unit: index, start, end, forced, area, colours and contrasts.
std::string SubpictureText(const SubpictureTrack& track);

// Writes DIR/0001.png ... and DIR/index.json (DIR is made when missing).
bool WriteSubpicturePngs(const SubpictureTrack& track, const std::string& dir, std::string& error);

// "hh:mm:ss.mmm"-free seconds with 3 decimals of 90 kHz ticks, rounded to the millisecond.
double TicksToSeconds(std::int64_t ticks);

}  // namespace tarvex::picture
