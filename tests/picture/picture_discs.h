// Discs for the picture tests, authored once per test run with ffmpeg, spumux and dvdauthor.
#pragma once

#include <string>

namespace tarvex::test {

// NTSC 4:3, one title of 4 s, a palette of its own in the dvdauthor XML (pictures.rgb, the
// 16 colours of kPictureDiscPalette) and two sub-picture streams: stream 1 ("en", id 0) holds
// two units, 0.5-1.5 s (a red box, a half transparent blue box and a white bar) and 2.0-3.0 s
// (forced: a yellow box); stream 2 ("fr", id 1) one unit, 1.0-2.5 s (a green box with a black
// border).
const std::string& PictureDisc();

// PAL 16:9 (no pan-scan), one title of 2 s, one sub-picture stream ("de") playing as 0x20 on a
// wide screen (a white frame round a blue bar) and as 0x21 in letterbox (a yellow bar with a
// half transparent red box), both shown 0.5-1.5 s.
const std::string& WidePictureDisc();

// PAL 4:3: first play jumps to the video manager's title menu, a still that never ends with two
// grey boxes (200 x 60 at 100,100 and 100,200) as buttons b1 ("jump title 1") and b2 ("exit"),
// b1 above b2, each 96,y-4 to 304,y+64; highlighted with a yellow frame, selected with a red
// frame round a half transparent red inside. Title 1 is a clip of 1 s.
const std::string& MenuPictureDisc();

// PAL 16:9 (no pan-scan): the video manager's title menu has one button b1 ("jump title 1") in
// two forms: sub-picture stream 0x20 for the wide screen (a grey box 200 x 60 at 100,100, button
// 100,100-300,160, highlighted yellow) and 0x21 for letterbox (a grey box 200 x 40 at 100,300,
// button 100,300-300,340, highlighted red).
const std::string& WideMenuDisc();

// The RGB colours of PictureDisc's palette file, in order.
extern const char* const kPictureDiscPalette[16];

}  // namespace tarvex::test
