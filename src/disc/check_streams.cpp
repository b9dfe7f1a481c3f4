// Declared streams against the streams found in the VOBs, through each chain's stream control.
#include <algorithm>
#include <utility>
#include <vector>

#include "disc/checks.h"
#include "platform/format.h"

namespace tarvex {

namespace {

// The streams found in the cells a chain plays, or nothing when one of its cells is in none
// of the navigation packs (a cell position finding says so already: which streams it holds
// is unknown).
std::optional<std::bitset<256>> ChainStreams(const Pgc& pgc, const StreamPresence& found) {
  std::bitset<256> streams;
  for (const Cell& c : pgc.cells) {
    auto it = found.cells.find({c.vob_id, c.cell_id});
    if (it == found.cells.end()) return std::nullopt;
    streams |= it->second;
  }
  return streams;
}

bool IsAudio(std::uint32_t id) {
  return (id >= 0x80 && id <= 0xAF) || (id >= 0xC0 && id <= 0xDF);
}
bool IsSubpicture(std::uint32_t id) {
  return id >= 0x20 && id <= 0x3F;
}

std::string Language(const std::optional<std::string>& language) {
  return language ? *language : std::string("no language");
}

// Declared streams against those found in one chain's cells; marks the ids the chain maps to.
void CheckChainStreams(const DomainChain& chain, const StreamDeclarations& declared,
                       const StreamPresence& found, const VobSetNames& names,
                       std::bitset<256>& mapped, AudioIds& audio, Findings& out) {
  const Pgc& pgc = *chain.pgc;
  std::optional<std::bitset<256>> present = ChainStreams(pgc, found);
  auto missing = [&](const std::string& what) {
    out.AtTable("stream.missing", names.ifo, names.chains, pgc.number,
                chain.prefix + what + ", which none of the chain's cells holds");
  };
  for (std::size_t i = 0; i < declared.audio.size() && i < 8; ++i) {
    auto n = AudioControlNumber(pgc.audio_control[i]);
    const AudioAttributes& a = declared.audio[i];
    auto id = n ? AudioStreamId(a.coding, *n) : std::nullopt;
    if (!id) continue;
    mapped.set(*id);
    audio.insert({i, *id});
    if (present && !(*present)[*id]) {
      missing(Format("audio stream %d (%s, %s) plays as %s",
                     {i + 1, a.format, Language(a.language), StreamIdText(*id)}));
    }
  }
  for (std::size_t i = 0; i < declared.subpictures.size() && i < 32; ++i) {
    SubpictureControl c = DecodeSubpictureControl(pgc.subpicture_control[i]);
    // One finding per missing id, naming every display that plays through it.
    std::vector<std::pair<std::uint32_t, std::string>> displays;
    for (const SubpictureStream& s : SubpictureStreamIds(declared.video, c)) {
      mapped.set(s.id);
      auto same = std::find_if(displays.begin(), displays.end(),
                               [&](const auto& d) { return d.first == s.id; });
      if (same == displays.end()) {
        displays.emplace_back(s.id, s.display);
      } else {
        same->second += std::string(" and ") + s.display;
      }
    }
    for (const auto& [id, display] : displays) {
      if (!present || (*present)[id]) continue;
      std::string what = Language(declared.subpictures[i].language);
      if (declared.video.wide()) what += ", " + display;
      missing(Format("sub-picture stream %d (%s) plays as %s", {i + 1, what, StreamIdText(id)}));
    }
  }
}

}  // namespace

void CheckStreams(const Disc&, const std::vector<DomainChain>& chains,
                  const StreamDeclarations& declared, const StreamPresence& found,
                  const VobSetNames& names, Findings& out) {
  // Without a readable chain no stream can be mapped: the chain table's own finding says why,
  // and listing every stream of the VOBs as undeclared would only repeat it.
  if (!found.scanned || chains.empty()) return;
  std::bitset<256> mapped;
  AudioIds audio;
  for (const DomainChain& chain : chains) {
    if (chain.pgc->cells.empty()) continue;
    CheckChainStreams(chain, declared, found, names, mapped, audio, out);
  }
  int videos = 0;
  for (std::uint32_t id = 0; id < 256; ++id) {
    if (!found.all[id] || !found.first_seen[id]) continue;
    const StreamPresence::Where& where = *found.first_seen[id];
    if (id >= 0xE0 && id <= 0xEF && ++videos > 1) {
      out.AtRecord("stream.count", where.file, where.record,
                   Format("a second video stream, %s", {StreamIdText(id)}));
    }
    if ((IsAudio(id) || IsSubpicture(id)) && !mapped[id]) {
      out.AtRecord("stream.undeclared", where.file, where.record,
                   Format("%s stream %s is in the VOBs, but no declared stream plays through it",
                          {IsAudio(id) ? "audio" : "sub-picture", StreamIdText(id)}));
    }
  }
  CheckCodings(declared, audio, found, names, out);
}

}  // namespace tarvex
