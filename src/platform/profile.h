// Profile (INI) files with the semantics the IfoSource format and the configuration file rely
// on: case-insensitive section and key look-up, first match wins, values trimmed and unquoted
// and cut at 255 bytes, in-place update of existing keys, CRLF line ends, bytes kept as they are.
//
// The store keeps each document in memory with a case-insensitive index while a command runs;
// reads and writes are O(1) on average. Flush() writes every changed document once; it runs
// when a command ends and before anything else reads or deletes the file.
//
// The file format, as read:
// - Lines end with LF; one CR before the LF is part of the line end. Every other byte
//   (including a lone CR or bytes above 0x7F) is kept as it is.
// - A line whose first non-blank byte is '[' and that holds a ']' after it opens a section;
//   its name is the text between the '[' and the LAST ']' of the line, trimmed. Lines before
//   the first section belong to no section and are never found.
// - A line whose first non-blank byte is ';' is a comment. Any other line that holds a '='
//   is a key line: the key is the text before the FIRST '=' (trimmed), the value the text
//   after it (trimmed). Lines without '=' (and blank lines) are skipped by look-ups.
// - Whitespace is ASCII space, tab, CR, VT and FF.
// - Look-up: the first section whose name matches without regard to ASCII case, and in it the
//   first key line whose key matches likewise. A value enclosed in a matching pair of '"' or
//   '\'' loses them; the value then ends at its first zero byte and is cut at 255 bytes.
//
// Arguments: section names, keys and values are C texts that cannot span lines, so each one
// ends at its first zero byte, CR or LF (the rest is dropped); section names and keys are
// trimmed. A key that holds '=' is written as it is, so the line reads back as the key before
// the first '=' with the rest joined to the value, exactly as the file will be read again (the
// in-memory document always answers what a fresh read of the written file would answer).
//
// Writing key=value into section:
// - the first key line of the first matching section whose key matches gets the new value in
//   place ("key=value", the key keeping its spelling in the file);
// - otherwise "key=value" goes right after the last key line of that section (right after
//   its header when it has none);
// - otherwise "[section]" and "key=value" are appended at the end of the document, preceded by
//   one blank line when the document is not empty and does not already end with a blank line.
// Files are written with CRLF line ends.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace tarvex {

class ProfileDocument;  // one parsed file (profile.cpp)

// Longest value a look-up returns, in bytes: a longer value is cut to this length, as a caller's
// 256-byte buffer with its terminating zero would hold it.
inline constexpr std::size_t kProfileValueMax = 255;

class ProfileStore {
 public:
  ProfileStore();
  ~ProfileStore();
  ProfileStore(const ProfileStore&) = delete;
  ProfileStore& operator=(const ProfileStore&) = delete;

  // The value of key in section of the file at path, or def when the file, the section or
  // the key is missing.
  std::string GetString(const std::string& path, std::string_view section, std::string_view key,
                        std::string_view def);
  // Writes key=value into section (creating the file, section or key as needed).
  void WriteString(const std::string& path, std::string_view section, std::string_view key,
                   std::string_view value);
  // Writes every changed document to its file and forgets all cached documents. A document
  // that cannot be written (for instance its folder cannot be created) is dropped.
  void Flush();
  // Writes the document of path if it changed and forgets it (other documents stay cached).
  // Returns false when a changed document could not be written.
  bool FlushFile(const std::string& path);
  // Forgets the cached document of path without writing it, and deletes the file.
  // Returns true when a file was deleted.
  bool DeleteFile(const std::string& path);

  // The document of path as it would be written now (CRLF line ends): for tests and tools.
  std::string Serialize(const std::string& path);

 private:
  ProfileDocument& Load(const std::string& path);
  std::unordered_map<std::string, std::unique_ptr<ProfileDocument>> docs_;
  // The document used last, so that a run of calls on one file skips the path look-up.
  std::string last_path_;
  ProfileDocument* last_doc_ = nullptr;
};

}  // namespace tarvex
