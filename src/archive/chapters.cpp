#include "archive/chapters.h"

#include <cstdio>

namespace tarvex {

namespace {

// "01", "02", ... "99", "100": two digits at least.
std::string Number(std::uint32_t n) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "%02u", n);
  return buf;
}

std::string Ogm(const std::vector<ChapterSpan>& chapters) {
  std::string text;
  for (const ChapterSpan& c : chapters) {
    std::string n = Number(c.number);
    text += "CHAPTER" + n + "=" + ChapterClock(c.start_ticks) + "\n";
    text += "CHAPTER" + n + "NAME=Chapter " + n + "\n";
  }
  return text;
}

std::string Ffmetadata(const std::vector<ChapterSpan>& chapters) {
  std::string text = ";FFMETADATA1\n";
  for (const ChapterSpan& c : chapters) {
    text += "\n[CHAPTER]\nTIMEBASE=1/1000\n";
    text += "START=" + std::to_string(TicksToMilliseconds(c.start_ticks)) + "\n";
    text += "END=" + std::to_string(TicksToMilliseconds(c.end_ticks)) + "\n";
    text += "title=Chapter " + Number(c.number) + "\n";
  }
  return text;
}

std::string Matroska(const std::vector<ChapterSpan>& chapters) {
  std::string text =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<!DOCTYPE Chapters SYSTEM \"matroskachapters.dtd\">\n"
      "<Chapters>\n"
      "  <EditionEntry>\n";
  for (const ChapterSpan& c : chapters) {
    text += "    <ChapterAtom>\n";
    text += "      <ChapterTimeStart>" + ChapterClock(c.start_ticks) + "</ChapterTimeStart>\n";
    text += "      <ChapterTimeEnd>" + ChapterClock(c.end_ticks) + "</ChapterTimeEnd>\n";
    text += "      <ChapterDisplay>\n";
    text += "        <ChapterString>Chapter " + Number(c.number) + "</ChapterString>\n";
    text += "        <ChapterLanguage>eng</ChapterLanguage>\n";
    text += "      </ChapterDisplay>\n";
    text += "    </ChapterAtom>\n";
  }
  text += "  </EditionEntry>\n</Chapters>\n";
  return text;
}

}  // namespace

std::optional<ChapterFormat> ParseChapterFormat(const std::string& name) {
  if (name == "ogm") return ChapterFormat::kOgm;
  if (name == "ffmetadata") return ChapterFormat::kFfmetadata;
  if (name == "matroska") return ChapterFormat::kMatroska;
  return std::nullopt;
}

std::string ChapterClock(std::uint64_t ticks) {
  return MillisecondsText(TicksToMilliseconds(ticks));
}

std::string ChapterFile(const std::vector<ChapterSpan>& chapters, ChapterFormat format) {
  switch (format) {
    case ChapterFormat::kOgm:
      return Ogm(chapters);
    case ChapterFormat::kFfmetadata:
      return Ffmetadata(chapters);
    case ChapterFormat::kMatroska:
      return Matroska(chapters);
  }
  return {};
}

}  // namespace tarvex
