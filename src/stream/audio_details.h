// Details of AC-3, linear PCM and MPEG audio packs.
#pragma once

#include <cstdint>

#include "platform/bytes.h"
#include "state/context.h"

namespace tarvex {

// Pack and PES header lines, then the private stream audio header (AC-3, LPCM) or the MPEG
// audio frame header. file_address is the record's address in the file.
void ShowAudioPackDetails(AppContext& ctx, ByteView record, std::int64_t file_address);

// The AC-3 sync word check and rate line for the access unit that starts at frame.
void CheckAc3Sync(AppContext& ctx, ByteView frame);

}  // namespace tarvex
