// The PES header lines shared by the video, sub-picture and audio pack views, and the video
// and sub-picture pack printers built on them.
#pragma once

#include <cstddef>

#include "platform/bytes.h"
#include "state/context.h"

namespace tarvex {

// The pack kinds whose PES header lines differ in the DTS line, the fourth extension flag line
// and the position and masks of the P-STD buffer fields.
enum class PesMember { kVideo, kSubPicture, kAudio };

// A " " line, then the PES header lines of the packet at offset 14. Returns the cursor: the
// offset of the first byte after the time stamps, the extension fields and the 0xFF stuffing.
std::size_t ShowPesHeaderLines(AppContext& ctx, ByteView record, PesMember member);

// Pack header lines, PES header lines, a " " line and the video stream details of the payload.
void ShowVideoPackDetails(AppContext& ctx, ByteView record);

// Pack header lines, PES header lines and the sub-picture unit header fields of the payload.
void ShowSubPictureDetails(AppContext& ctx, ByteView record);

}  // namespace tarvex
