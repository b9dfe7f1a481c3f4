#include "platform/profile.h"

#include <optional>
#include <vector>

#include "platform/ascii.h"
#include "platform/file_io.h"
#include "platform/paths.h"

namespace tarvex {

namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}

std::string_view Trim(std::string_view s) {
  while (!s.empty() && IsBlank(s.front())) s.remove_prefix(1);
  while (!s.empty() && IsBlank(s.back())) s.remove_suffix(1);
  return s;
}

// An argument is a C text on one line: it ends at its first zero byte, CR or LF.
std::string_view CutArgument(std::string_view s) {
  std::size_t end = s.find_first_of(std::string_view("\0\r\n", 3));
  return end == std::string_view::npos ? s : s.substr(0, end);
}

void FoldInto(std::string& out, std::string_view s) {
  out.assign(s);
  for (char& c : out) c = AsciiLower(c);
}

enum class LineKind { kOther, kComment, kSection, kKey };

struct ParsedLine {
  LineKind kind = LineKind::kOther;
  std::string_view name;   // section name or key (trimmed)
  std::string_view value;  // key lines: the text after the first '=' (trimmed)
};

ParsedLine ParseLine(std::string_view line) {
  ParsedLine p;
  std::string_view t = Trim(line);
  if (t.empty()) return p;
  if (t.front() == ';') {
    p.kind = LineKind::kComment;
    return p;
  }
  if (t.front() == '[') {
    std::size_t close = t.rfind(']');
    if (close != std::string_view::npos && close > 0) {
      p.kind = LineKind::kSection;
      p.name = Trim(t.substr(1, close - 1));
      return p;
    }
  }
  std::size_t eq = t.find('=');
  if (eq == std::string_view::npos) return p;
  p.kind = LineKind::kKey;
  p.name = Trim(t.substr(0, eq));
  p.value = Trim(t.substr(eq + 1));
  return p;
}

// What a look-up returns for a raw value: unquoted, ended at its first zero byte, at most
// kProfileValueMax bytes.
std::string LookupValue(std::string_view v) {
  if (v.size() >= 2 && (v.front() == '"' || v.front() == '\'') && v.back() == v.front()) {
    v = v.substr(1, v.size() - 2);
  }
  std::size_t zero = v.find('\0');
  if (zero != std::string_view::npos) v = v.substr(0, zero);
  if (v.size() > kProfileValueMax) v = v.substr(0, kProfileValueMax);
  return std::string(v);
}

struct Section {
  std::string header;             // the "[name]" line as it stands in the file
  std::vector<std::string> body;  // the lines after the header up to the last key line
  std::vector<std::string> tail;  // the lines after the last key line
  std::unordered_map<std::string, std::size_t> keys;  // folded key -> first line in body
};

}  // namespace

class ProfileDocument {
 public:
  explicit ProfileDocument(std::string_view text) { Parse(text); }

  std::optional<std::string> Get(std::string_view section, std::string_view key) {
    Section* s = FindSection(section);
    if (!s) return std::nullopt;
    FoldInto(scratch_, key);
    auto it = s->keys.find(scratch_);
    if (it == s->keys.end()) return std::nullopt;
    return LookupValue(ParseLine(s->body[it->second]).value);
  }

  void Write(std::string_view section, std::string_view key, std::string_view value) {
    Section* s = FindSection(section);
    if (s) {
      FoldInto(scratch_, key);
      auto it = s->keys.find(scratch_);
      if (it != s->keys.end()) {
        std::string& line = s->body[it->second];
        std::string updated(ParseLine(line).name);
        updated += '=';
        updated += value;
        if (ParseLine(updated).kind != LineKind::kKey) return;  // would not read back as a key
        line = std::move(updated);
        dirty_ = true;
        return;
      }
      std::string line = MakeKeyLine(key, value);
      ParsedLine parsed = ParseLine(line);
      if (parsed.kind != LineKind::kKey) return;
      // The key as it reads back: the text before the first '=' (usually the key itself).
      if (parsed.name.size() == key.size()) {
        s->keys.try_emplace(scratch_, s->body.size());
      } else {
        IndexKey(*s, s->body.size(), parsed.name);
      }
      s->body.push_back(std::move(line));
      dirty_ = true;
      return;
    }
    std::string line = MakeKeyLine(key, value);
    ParsedLine parsed = ParseLine(line);
    if (parsed.kind != LineKind::kKey) return;
    std::string header = "[";
    header += section;
    header += ']';
    if (ParseLine(header).kind != LineKind::kSection) return;
    if (!empty_ && !LastLineIsBlank()) LastLines().push_back(std::string());
    AddSection(std::move(header));
    IndexKey(*sections_.back(), 0, parsed.name);
    sections_.back()->body.push_back(std::move(line));
    empty_ = false;
    dirty_ = true;
  }

  std::string Serialize() const {
    std::string out;
    auto put = [&out](const std::string& line) {
      out += line;
      out += "\r\n";
    };
    for (const auto& line : preamble_) put(line);
    for (const auto& s : sections_) {
      put(s->header);
      for (const auto& line : s->body) put(line);
      for (const auto& line : s->tail) put(line);
    }
    return out;
  }

  bool dirty() const { return dirty_; }

 private:
  static std::string MakeKeyLine(std::string_view key, std::string_view value) {
    std::string line(key);
    line += '=';
    line += value;
    return line;
  }

  void Parse(std::string_view text) {
    empty_ = text.empty();
    std::vector<std::string> pending;  // lines of the current section not yet placed
    std::vector<LineKind> pending_kinds;
    Section* current = nullptr;
    auto finish = [&]() {
      if (!current) {
        for (auto& l : pending) preamble_.push_back(std::move(l));
      } else {
        std::size_t last_key = 0;  // one past the last key line
        for (std::size_t i = 0; i < pending.size(); ++i) {
          if (pending_kinds[i] == LineKind::kKey) last_key = i + 1;
        }
        current->body.reserve(last_key);
        for (std::size_t i = 0; i < pending.size(); ++i) {
          if (i < last_key) {
            current->body.push_back(std::move(pending[i]));
            if (pending_kinds[i] == LineKind::kKey) {
              IndexKey(*current, current->body.size() - 1, ParseLine(current->body.back()).name);
            }
          } else {
            current->tail.push_back(std::move(pending[i]));
          }
        }
      }
      pending.clear();
      pending_kinds.clear();
    };
    std::size_t pos = 0;
    while (pos < text.size()) {
      std::size_t nl = text.find('\n', pos);
      std::string_view line =
          text.substr(pos, nl == std::string_view::npos ? std::string_view::npos : nl - pos);
      pos = nl == std::string_view::npos ? text.size() : nl + 1;
      if (!line.empty() && line.back() == '\r' && nl != std::string_view::npos) {
        line.remove_suffix(1);
      }
      LineKind kind = ParseLine(line).kind;
      if (kind == LineKind::kSection) {
        finish();
        AddSection(std::string(line));
        current = sections_.back().get();
      } else {
        pending.emplace_back(line);
        pending_kinds.push_back(kind);
      }
    }
    finish();
  }

  void AddSection(std::string header) {
    auto s = std::make_unique<Section>();
    s->header = std::move(header);
    std::string folded;
    FoldInto(folded, ParseLine(s->header).name);
    index_.try_emplace(std::move(folded), s.get());
    sections_.push_back(std::move(s));
  }

  void IndexKey(Section& s, std::size_t line_index, std::string_view key) {
    std::string folded;
    FoldInto(folded, key);
    s.keys.try_emplace(std::move(folded), line_index);
  }

  Section* FindSection(std::string_view name) {
    FoldInto(scratch_, name);
    auto it = index_.find(scratch_);
    return it == index_.end() ? nullptr : it->second;
  }

  // The group of lines the document currently ends with.
  std::vector<std::string>& LastLines() {
    if (sections_.empty()) return preamble_;
    Section& s = *sections_.back();
    return s.tail;  // lines after the last key line (a new blank line goes here)
  }

  bool LastLineIsBlank() const {
    const std::string* last = nullptr;
    if (sections_.empty()) {
      if (!preamble_.empty()) last = &preamble_.back();
    } else {
      const Section& s = *sections_.back();
      if (!s.tail.empty()) {
        last = &s.tail.back();
      } else if (!s.body.empty()) {
        last = &s.body.back();
      } else {
        last = &s.header;
      }
    }
    return last && Trim(*last).empty();
  }

  std::vector<std::string> preamble_;  // lines before the first section
  std::vector<std::unique_ptr<Section>> sections_;
  std::unordered_map<std::string, Section*> index_;  // folded name -> first such section
  std::string scratch_;
  bool empty_ = true;  // the document holds no bytes at all
  bool dirty_ = false;
};

ProfileStore::ProfileStore() = default;
ProfileStore::~ProfileStore() = default;

namespace {

std::string ReadWholeFile(const std::string& path) {
  std::string text;
  File f = File::OpenRead(path);
  if (!f.is_open()) return text;
  char buf[65536];
  for (;;) {
    std::size_t got = f.Read(buf, sizeof buf);
    if (got == 0) break;
    text.append(buf, got);
  }
  return text;
}

}  // namespace

ProfileDocument& ProfileStore::Load(const std::string& path) {
  if (last_doc_ && path == last_path_) return *last_doc_;
  auto it = docs_.find(path);
  if (it == docs_.end()) {
    it = docs_.emplace(path, std::make_unique<ProfileDocument>(ReadWholeFile(path))).first;
  }
  last_path_ = path;
  last_doc_ = it->second.get();
  return *last_doc_;
}

std::string ProfileStore::GetString(const std::string& path, std::string_view section,
                                    std::string_view key, std::string_view def) {
  ProfileDocument& doc = Load(path);
  auto value = doc.Get(Trim(CutArgument(section)), Trim(CutArgument(key)));
  return value ? *value : std::string(def);
}

void ProfileStore::WriteString(const std::string& path, std::string_view section,
                               std::string_view key, std::string_view value) {
  Load(path).Write(Trim(CutArgument(section)), Trim(CutArgument(key)), CutArgument(value));
}

namespace {

bool WriteDocument(const std::string& path, const ProfileDocument& doc) {
  EnsureParentDirectory(path);
  File f = File::Create(path);
  if (!f.is_open()) return false;
  std::string text = doc.Serialize();
  return f.Write(text.data(), text.size()) == text.size();
}

}  // namespace

void ProfileStore::Flush() {
  for (auto& [path, doc] : docs_) {
    if (doc->dirty()) WriteDocument(path, *doc);
  }
  docs_.clear();
  last_doc_ = nullptr;
  last_path_.clear();
}

bool ProfileStore::FlushFile(const std::string& path) {
  auto it = docs_.find(path);
  if (it == docs_.end()) return true;
  bool ok = !it->second->dirty() || WriteDocument(path, *it->second);
  if (last_doc_ == it->second.get()) {
    last_doc_ = nullptr;
    last_path_.clear();
  }
  docs_.erase(it);
  return ok;
}

bool ProfileStore::DeleteFile(const std::string& path) {
  auto it = docs_.find(path);
  if (it != docs_.end()) {
    if (last_doc_ == it->second.get()) {
      last_doc_ = nullptr;
      last_path_.clear();
    }
    docs_.erase(it);
  }
  return File::Unlink(path);
}

std::string ProfileStore::Serialize(const std::string& path) {
  return Load(path).Serialize();
}

}  // namespace tarvex
