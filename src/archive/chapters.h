// Chapter files for a ripped title: OGM text (CHAPTERnn= / CHAPTERnnNAME=), FFmpeg metadata
// (;FFMETADATA1 with [CHAPTER] sections in milliseconds) and Matroska chapter XML. Times come
// exact from the title's cell times and are rounded to the millisecond here, when written.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "disc/title_cells.h"

namespace tarvex {

enum class ChapterFormat { kOgm, kFfmetadata, kMatroska };

// "ogm", "ffmetadata" or "matroska"; nothing for another name.
std::optional<ChapterFormat> ParseChapterFormat(const std::string& name);

// "hh:mm:ss.mmm" of a time in 90 kHz ticks, rounded to the nearest millisecond.
std::string ChapterClock(std::uint64_t ticks);

std::string ChapterFile(const std::vector<ChapterSpan>& chapters, ChapterFormat format);

}  // namespace tarvex
