// Builders for the extraction tests: audio, video and sub-picture packs with known payloads.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "support/test_support.h"

namespace tarvex::test {

using Bytes = std::vector<std::uint8_t>;

// n bytes in 10..209: never a zero byte, so no start code can hide in a payload.
inline Bytes Pattern(std::size_t n, std::uint32_t seed) {
  Bytes out(n);
  for (std::size_t i = 0; i < n; ++i) out[i] = static_cast<std::uint8_t>(10 + (seed + i) % 200);
  return out;
}

inline Bytes Pts(std::uint64_t ticks = 90000, std::uint8_t prefix = 2) {
  Record r(5, 0);
  PutTimeStamp(r, 0, prefix, ticks);
  return r;
}

inline void SetPesLength(Record& r, std::uint32_t length) {
  r[18] = static_cast<std::uint8_t>(length >> 8);
  r[19] = static_cast<std::uint8_t>(length);
}

inline Bytes Join(std::initializer_list<Bytes> parts) {
  Bytes out;
  for (const Bytes& p : parts) out.insert(out.end(), p.begin(), p.end());
  return out;
}

inline Bytes Slice(const Record& r, std::size_t from, std::size_t to = 2048) {
  return Bytes(r.begin() + static_cast<std::ptrdiff_t>(from),
               r.begin() + static_cast<std::ptrdiff_t>(to));
}

// An AC-3 pack with a PTS: sub-stream id at 28, payload from 32 to the end of the record.
inline Record Ac3Pack(std::uint8_t sub_stream, std::uint32_t seed) {
  return MakePesPack(0xBD, 0x80, Pts(), Join({{sub_stream, 1, 0, 1}, Pattern(2048, seed)}));
}

// An LPCM pack with a PTS: sub-stream id at 28, LPCM header at 32..34 (the second byte, 33,
// holds quantization, frequency and channels), samples from 35. The PES length makes the
// payload 2012 bytes (an even count), ending at 2047.
inline Record LpcmPack(std::uint8_t sub_stream, std::uint8_t info, std::uint32_t seed) {
  Record r = MakePesPack(0xBD, 0x80, Pts(),
                         Join({{sub_stream, 1, 0, 1, 0x00, info, 0x80}, Pattern(2048, seed)}));
  SetPesLength(r, 2027);
  return r;
}

// An MPEG audio pack (stream id 0xC0..0xC7) with a PTS: payload from 28.
inline Record MpegAudioPack(std::uint8_t stream_id, std::uint32_t seed) {
  return MakePesPack(stream_id, 0x80, Pts(), Pattern(2048, seed));
}

// A video pack with a PTS: payload from 28.
inline Record VideoPack(std::uint32_t seed, const Bytes& head = {}) {
  return MakePesPack(0xE0, 0x80, Pts(), Join({head, Pattern(2048, seed)}));
}

// A sub-picture pack: PTS (or none), sub-stream id, payload.
inline Record SubPicturePack(std::uint8_t sub_stream, bool pts, std::uint32_t seed) {
  return MakePesPack(0xBD, pts ? 0x80 : 0x00, pts ? Pts() : Bytes{},
                     Join({{sub_stream}, Pattern(2048, seed)}));
}

// A navigation pack: system header at 14, private stream 2 at 38 with sub-stream 0 at 44.
inline Record NavPack() {
  Record r = MakePackHeader();
  r[14] = 0, r[15] = 0, r[16] = 1, r[17] = 0xBB;
  r[18] = 0, r[19] = 18;
  r[38] = 0, r[39] = 0, r[40] = 1, r[41] = 0xBF;
  r[42] = 0x03, r[43] = 0xD4;
  r[44] = 0x00;
  return r;
}

inline Record PaddingPack() {
  return MakePesPack(0xBE, 0x00, {}, {});
}

// A pack GetSectorType cannot classify (no packet start code at 14).
inline Record IllegalPack() {
  return MakePackHeader();
}

// Names of the files in a folder, sorted.
inline std::vector<std::string> FilesIn(const std::string& dir) {
  std::vector<std::string> names;
  for (const auto& e : std::filesystem::directory_iterator(dir)) {
    names.push_back(e.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace tarvex::test
