// Declared stream attributes against the streams' own headers: the video attributes of a
// title set's titles or menus, or of the video manager's menus, against the first sequence
// header of their VOBs; each declared audio stream against the first complete header of the
// stream its chains' control makes it play through.
#include <string_view>

#include "disc/checks.h"
#include "platform/format.h"

namespace tarvex {

namespace {

// What was declared and what the stream has, for each attribute that differs.
struct Differences {
  std::string declared, found;
  void Add(const std::string& d, const std::string& f) {
    declared += (declared.empty() ? "" : ", ") + d;
    found += (found.empty() ? "" : ", ") + f;
  }
  bool empty() const { return declared.empty(); }
};

std::string WhereText(const StreamPresence::Where& where) {
  return where.file + " record " + std::to_string(where.record);
}

// The frame rate code each TV standard's video has: 29.97 frames/s (NTSC), 25 (PAL).
std::uint32_t StandardFrameRate(std::string_view standard) {
  return standard == "NTSC" ? 4 : standard == "PAL" ? 3 : 0;
}

std::string FrameRateText(std::uint32_t code) {
  static constexpr const char* kRates[] = {"23.976", "24", "25",    "29.97",
                                           "30",     "50", "59.94", "60"};
  if (code >= 1 && code <= 8) return std::string(kRates[code - 1]) + " frames/s";
  return Format("frame rate code %d", {code});
}

std::string AspectText(std::uint32_t code) {
  static constexpr const char* kAspects[] = {"square samples", "4:3", "16:9", "2.21:1"};
  if (code >= 1 && code <= 4) return kAspects[code - 1];
  return Format("aspect ratio code %d", {code});
}

void CheckVideo(const VideoAttributes& v, const StreamPresence::Coded& coded,
                const VobSetNames& names, Findings& out) {
  const StreamCoding& c = coded.coding;
  const SequenceHeader& s = c.sequence;
  Differences d;
  if (v.mpeg2 != c.mpeg2) d.Add(v.mpeg2 ? "MPEG-2" : "MPEG-1", c.mpeg2 ? "MPEG-2" : "MPEG-1");
  if (v.width != s.width || v.height != s.height) {
    d.Add(v.width != 0 ? Format("%dx%d", {v.width, v.height})
                       : Format("the reserved resolution code %d", {v.resolution}),
          Format("%dx%d", {s.width, s.height}));
  }
  std::uint32_t rate = StandardFrameRate(v.standard);
  if (rate != 0 && s.frame_rate != rate) {
    d.Add(FrameRateText(rate) + " (" + v.standard + ")", FrameRateText(s.frame_rate));
  }
  // MPEG-1 gives the shape of the samples, not of the picture: only MPEG-2 is compared.
  std::uint32_t aspect = v.aspect == std::string_view("4:3") ? 2 : v.wide() ? 3 : 0;
  if (c.mpeg2 && aspect != 0 && s.aspect_ratio != aspect) {
    d.Add(v.aspect, AspectText(s.aspect_ratio));
  }
  if (d.empty()) return;
  out.AtTable("stream.video-attributes", names.ifo, names.attributes, 0,
              Format("%s video declared %s; the first sequence header (%s) has %s",
                     {names.domain, d.declared, WhereText(coded.where), d.found}));
}

std::string FrequencyText(std::uint32_t hz) {
  return hz != 0 ? Format("%d Hz", {hz}) : std::string("no DVD-Video sampling frequency");
}

std::string ChannelsText(std::uint32_t channels) {
  return Counted(channels, "channel");
}

void CheckAudio(std::size_t i, std::uint8_t id, const AudioAttributes& a,
                const StreamPresence::Coded& coded, const VobSetNames& names, Findings& out) {
  const StreamCoding& c = coded.coding;
  bool lpcm = c.kind == StreamCoding::Kind::kLpcm;
  // A DTS stream of 96 kHz carries its core at 48 kHz.
  std::uint32_t frequency = c.kind == StreamCoding::Kind::kDts ? 48000 : a.frequency;
  Differences errors, channels;
  if (c.frequency != frequency) errors.Add(FrequencyText(frequency), FrequencyText(c.frequency));
  if (lpcm) {
    static constexpr std::uint32_t kBits[] = {16, 20, 24, 0};
    std::uint32_t bits = kBits[a.quantization & 3];
    if (bits != c.bits) {
      errors.Add(Format("%d bits", {bits}),
                 c.bits != 0 ? Format("%d bits", {c.bits}) : std::string("no quantization"));
    }
    if (a.channels != c.channels) {
      errors.Add(ChannelsText(a.channels), ChannelsText(c.channels));
    }
  } else if (c.channels != 0 && a.channels != c.channels && a.coding != 3) {
    // The channels of AC-3, DTS and MPEG-1 audio (those of an MPEG-2 extension stream lie
    // beyond its MPEG-1 frame header).
    channels.Add(ChannelsText(a.channels), ChannelsText(c.channels));
  }
  std::string stream =
      Format("%s audio stream %d (%s, %s) as %s: declared ",
             {names.domain, i + 1, a.format, a.language ? *a.language : std::string("no language"),
              StreamIdText(id)});
  for (auto [check, d] : {std::pair{"stream.audio-attributes", &errors},
                          std::pair{"stream.audio-channels", &channels}}) {
    if (d->empty()) continue;
    out.AtTable(
        check, names.ifo, names.attributes, 0,
        stream + d->declared + "; the stream (" + WhereText(coded.where) + ") has " + d->found);
  }
}

}  // namespace

void CheckCodings(const StreamDeclarations& declared, const AudioIds& audio,
                  const StreamPresence& found, const VobSetNames& names, Findings& out) {
  for (const auto& [id, coded] : found.codings) {
    if (coded.coding.kind == StreamCoding::Kind::kVideo) {
      CheckVideo(declared.video, coded, names, out);
      break;  // the first video stream (a second one is a stream count finding)
    }
  }
  for (const auto& [i, id] : audio) {
    auto it = found.codings.find(id);
    if (it == found.codings.end() || i >= declared.audio.size()) continue;
    CheckAudio(i, id, declared.audio[i], it->second, names, out);
  }
}

}  // namespace tarvex
