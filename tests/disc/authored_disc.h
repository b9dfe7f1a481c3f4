// Discs authored at test time with the public tools (ffmpeg, spumux, dvdauthor): short test
// pictures with sine tones, image sub-pictures, and stream ids renumbered so that a declared
// stream's id differs from its position.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "support/test_support.h"

namespace tarvex::test {

// A program stream for dvdauthor: a test picture, one sine tone per audio stream, sub-picture
// streams of one box each (shown from 0.5 to 1.5 s).
struct ClipSpec {
  std::string file{};  // its name in the test's folder
  bool pal = true;
  bool wide = false;
  int seconds = 2;
  // ffmpeg's encoder of each audio stream: "ac3", "mp2", "pcm_dvd" (16-bit LPCM), "dca" (DTS).
  // ffmpeg numbers them 0x80, 0x81... (AC-3), 0xC0... (MPEG), 0xA0... (LPCM), 0x88... (DTS).
  std::vector<std::string> audio{};
  // The channels of each audio stream (2 where this gives none).
  std::vector<int> channels{};
  // Stream ids to change after the encoding (private stream 1 sub-stream ids 0x80-0xBF,
  // stream ids otherwise): dvdauthor numbers a declared stream by its id.
  std::vector<std::pair<std::uint8_t, std::uint8_t>> renumber{};
  // Sub-picture stream numbers (0-31) that spumux adds, in this order.
  std::vector<int> subpictures{};
  // Menu buttons b1, b2, ... (a column of boxes) that spumux adds as sub-picture stream 0, shown
  // from the start (forced) with its highlight and select pictures; 0 for none. spumux gives
  // each button its neighbours: b1 is above b2.
  int buttons = 0;
};
void MakeClip(const TempDir& dir, const ClipSpec& clip);

// Renumbers the streams of a program stream of 2048-byte packs in place; returns the packs
// changed.
std::size_t RenumberStreams(const std::string& path,
                            const std::vector<std::pair<std::uint8_t, std::uint8_t>>& renumber);

// Runs dvdauthor on the control file xml, whose paths are those of the test's folder and whose
// dest is dest (default "out"); returns the disc (dir/dest) or "" after a test failure with
// dvdauthor's output.
std::string AuthorDisc(const TempDir& dir, const std::string& xml, const std::string& dest = "out");

// Two discs authored once per test run (their folders live until the run ends):
//
// PAL 16:9 (letterbox permitted, no pan-scan), one title of 2 s: AC-3 "en" as 0x80 and DTS
// 5.1 "nl" as 0x89 (DTS stream 1; dvdauthor declares every DTS stream 6 channels); one sub-picture
// stream "en" playing as 0x24 on a wide screen and as 0x31 in letterbox.
const std::string& WidePalDisc();
// NTSC 4:3, one title set of two titles and a video manager menu in two language units ("en"
// and "fr", 1 s each, MPEG audio 0xC0). Title 1 (3 s): AC-3 0x80 and sub-picture 0x20; its
// cells start at 0, 1 and 2 s, the first and last as chapters, the middle one as a program
// only. Title 2 (2 s): AC-3 0x80, no sub-picture.
const std::string& NtscTwoTitleDisc();

// Whether ffmpeg, spumux and dvdauthor are all there (the tests that author discs fail
// without them: tools/install-deps.sh test installs them).
bool HaveAuthoringTools();

}  // namespace tarvex::test
