// VobSub files of a sub-picture track: BASE.idx (the palette, the video size, the language and
// a timestamp and file position per unit) and BASE.sub (each unit in packs of its own).
#pragma once

#include <string>

#include "picture/subpictures.h"

namespace tarvex::picture {

// The .idx text; positions are those of the .sub that VobsubSub gives.
std::string VobsubIdx(const SubpictureTrack& track);
// The .sub bytes: per unit, 2048-byte packs of private stream 1 packets (sub-stream 0x20), the
// first with the unit's PTS time (its start minus its start delay), padded to the pack size.
std::vector<std::uint8_t> VobsubSub(const SubpictureTrack& track);

bool WriteVobsub(const SubpictureTrack& track, const std::string& base, std::string& error);

}  // namespace tarvex::picture
