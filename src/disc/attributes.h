// The attribute blocks and playback times of the IFO tables, decoded: video, audio and
// sub-picture stream attributes, BCD playback times with their frame-rate bits, and the stream
// id that a program chain's stream control word maps a declared stream to.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/bytes.h"

namespace tarvex {

struct PlaybackTime {
  std::uint8_t hours = 0, minutes = 0, seconds = 0, frames = 0;
  std::uint8_t rate_code = 0;  // bits 7-6 of the frame byte: 1 = 25 fps, 3 = 30 (29.97) fps
  // Milliseconds, the frames counted at 25 or 29.97 frames per second and cut to the whole
  // millisecond (as DVD players and lsdvd show them). Frames at an unknown rate count 0.
  std::uint64_t Milliseconds() const;
  // The frames, counted at the time's own rate (for comparing sums).
  std::uint64_t Frames() const;
  // The time its pictures really take, in 90 kHz ticks: frames of 3003 ticks (1001/30000 s)
  // at 30 (29.97) fps, of 3600 ticks at 25 fps; whole seconds only at an unknown rate.
  std::uint64_t Ticks() const;
  std::string Text() const;  // "hh:mm:ss.mmm"
};
// "hh:mm:ss.mmm" of a number of milliseconds.
std::string MillisecondsText(std::uint64_t ms);
// From the 4 BCD bytes: hours, minutes, seconds, frame byte.
PlaybackTime DecodePlaybackTime(ByteView four);

struct VideoAttributes {
  bool mpeg2 = true;
  const char* standard = "NTSC";        // "NTSC" or "PAL" (other codes: "?")
  const char* aspect = "4:3";           // "4:3", "16:9" or "?"
  std::uint8_t resolution = 0;          // 0 720, 1 704, 2 352, 3 352 by half the lines
  std::uint32_t width = 0, height = 0;  // 0 for a reserved resolution code
  double frame_rate = 29.97;
  bool letterboxed = false;
  bool film = false;
  std::uint8_t permitted_display = 0;
  bool wide() const;
};
VideoAttributes DecodeVideoAttributes(ByteView two);

// A language code of two ASCII letters ("en"), or nothing: discs write 0xFFFF, 0x0000 and
// other bytes for a stream or menu without a language, and a code that is not two letters
// names no language.
std::optional<std::string> SpecifiedLanguage(std::uint8_t first, std::uint8_t second);

struct AudioAttributes {
  std::uint8_t coding = 0;  // 0 AC-3, 2 MPEG-1, 3 MPEG-2 ext., 4 LPCM, 6 DTS, 7 SDDS
  const char* format = "ac3";
  std::optional<std::string> language;  // nothing when unspecified
  std::uint8_t application_mode = 0;
  std::uint8_t quantization = 0;
  std::uint32_t frequency = 48000;
  std::uint32_t channels = 2;
  std::uint8_t code_extension = 0;
  bool multichannel_extension = false;
};
AudioAttributes DecodeAudioAttributes(ByteView eight);

struct SubpictureAttributes {
  std::uint8_t coding = 0;
  std::optional<std::string> language;
  std::uint8_t code_extension = 0;
};
SubpictureAttributes DecodeSubpictureAttributes(ByteView six);

// The stream id of audio stream number n (0-7) of a coding: 0x80+n AC-3, 0x88+n DTS, 0x90+n
// SDDS, 0xA0+n LPCM, 0xC0+n MPEG audio. Nothing for an unknown coding.
std::optional<std::uint8_t> AudioStreamId(std::uint8_t coding, std::uint32_t n);

// The audio stream number a control word maps to, or nothing when the stream is not available
// (bit 15 clear).
std::optional<std::uint32_t> AudioControlNumber(std::uint16_t control);

// The sub-picture stream numbers a control word maps to (bit 31: available).
struct SubpictureControl {
  bool available = false;
  std::uint32_t standard = 0;   // 4:3 (bits 28-24)
  std::uint32_t wide = 0;       // 16:9 (bits 20-16)
  std::uint32_t letterbox = 0;  // bits 12-8
  std::uint32_t pan_scan = 0;   // bits 4-0
};
SubpictureControl DecodeSubpictureControl(std::uint32_t control);

// A stream id a declared sub-picture stream plays through, and the display it serves: "4:3"
// for a 4:3 picture; "wide", "letterbox" or "pan-scan" for a 16:9 one.
struct SubpictureStream {
  const char* display;
  std::uint32_t id;
};
// The ids of an available stream: the 4:3 one for a 4:3 picture; for a 16:9 picture the
// wide-screen one, then the letterbox and pan-scan ones its permitted display formats allow
// (the numbers of the other formats mean nothing and are often 0).
std::vector<SubpictureStream> SubpictureStreamIds(const VideoAttributes& video,
                                                  const SubpictureControl& control);

// "xx" hex of one byte, "0x%02x".
std::string StreamIdText(std::uint32_t id);

}  // namespace tarvex
