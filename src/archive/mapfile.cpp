#include "archive/mapfile.h"

#include <charconv>

namespace tarvex {

namespace {

std::vector<std::string_view> Words(std::string_view line) {
  std::vector<std::string_view> words;
  std::size_t at = 0;
  while (at < line.size()) {
    while (at < line.size() && (line[at] == ' ' || line[at] == '\t' || line[at] == '\r')) ++at;
    std::size_t start = at;
    while (at < line.size() && line[at] != ' ' && line[at] != '\t' && line[at] != '\r') ++at;
    if (at > start) words.push_back(line.substr(start, at - start));
  }
  return words;
}

std::optional<std::uint64_t> Number(std::string_view word) {
  int base = 10;
  if (word.size() > 2 && word[0] == '0' && (word[1] == 'x' || word[1] == 'X')) {
    word.remove_prefix(2);
    base = 16;
  }
  std::uint64_t value = 0;
  auto [end, ec] = std::from_chars(word.data(), word.data() + word.size(), value, base);
  if (ec != std::errc() || end != word.data() + word.size() || word.empty()) return std::nullopt;
  return value;
}

bool IsStatus(std::string_view word, std::string_view allowed) {
  return word.size() == 1 && allowed.find(word[0]) != std::string_view::npos;
}

// Reads one line that is not a comment into map; an empty string when it is sound.
std::string ReadLine(std::string_view line, bool first, Mapfile& map) {
  std::vector<std::string_view> w = Words(line);
  if (first) {
    if (w.size() < 2 || w.size() > 3) return "expected \"current_pos current_status [pass]\"";
    std::optional<std::uint64_t> pos = Number(w[0]);
    if (!pos) return "\"" + std::string(w[0]) + "\" is not a position";
    if (!IsStatus(w[1], "?*/-FG+")) return "\"" + std::string(w[1]) + "\" is not a status";
    if (w.size() == 3 && !Number(w[2])) return "\"" + std::string(w[2]) + "\" is not a pass";
    map.current_pos = *pos;
    map.current_status = w[1][0];
    return {};
  }
  if (w.size() != 3) return "expected \"pos size status\"";
  std::optional<std::uint64_t> pos = Number(w[0]), size = Number(w[1]);
  if (!pos) return "\"" + std::string(w[0]) + "\" is not a position";
  if (!size) return "\"" + std::string(w[1]) + "\" is not a size";
  if (!IsStatus(w[2], "?*/-+")) return "\"" + std::string(w[2]) + "\" is not a block status";
  if (*pos + *size < *pos) return "the block runs past the largest position";
  map.blocks.push_back({*pos, *size, w[2][0]});
  return {};
}

}  // namespace

std::optional<Mapfile> ParseMapfile(std::string_view text, std::string& error) {
  Mapfile map;
  bool status_line = false;
  std::size_t number = 0;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = text.find('\n', at);
    if (end == std::string_view::npos) end = text.size();
    std::string_view line = text.substr(at, end - at);
    at = end + 1;
    ++number;
    std::vector<std::string_view> words = Words(line);
    if (words.empty() || words[0][0] == '#') continue;
    std::string problem = ReadLine(line, !status_line, map);
    if (!problem.empty()) {
      error = "line " + std::to_string(number) + ": " + problem;
      return std::nullopt;
    }
    status_line = true;
  }
  if (!status_line) {
    error = "line " + std::to_string(number + 1) + ": no status line";
    return std::nullopt;
  }
  return map;
}

std::vector<MapBlock> DamagedBlocks(const Mapfile& map) {
  std::vector<MapBlock> damaged;
  for (const MapBlock& b : map.blocks) {
    if (b.status != '+' && b.size > 0) damaged.push_back(b);
  }
  return damaged;
}

}  // namespace tarvex
