// The pack listing as JSON for scripts: one object per pack, in the shape of a media prober's
// packet list (record, type, clock reference, time stamps, stream and sub-stream ids).
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/bytes.h"

namespace tarvex {

// The word the listing uses for a pack type: "Video", "Navigations", "Subpicture",
// "AC-3 Audio", "DTS Audio", "SDDS Audio", "PCM Audio", "MPEG Audio", "Padding", "Illegal".
const char* PackTypeWord(std::int32_t sector_type);

// {"file", "packets": [{"record", "type", "scr", "scr_base", "scr_extension", "pts", "dts",
// "stream_id", "sub_stream_id"}, ...]} for the whole records first .. end-1 of the file at
// path (records beyond its end are not listed). Nothing when the file cannot be opened.
std::optional<std::string> ListPacksJson(const std::string& path, std::uint32_t first,
                                         std::uint32_t end);

}  // namespace tarvex
