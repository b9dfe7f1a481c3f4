// Profile (INI) files with the semantics the IfoSource format and the configuration file rely
// on: case-insensitive section and key look-up, first match wins, values trimmed and unquoted
// and cut at 255 bytes, in-place update of existing keys, CRLF line ends, bytes kept as they are.
//
// The store keeps each document in memory with a case-insensitive index while a command runs;
// reads and writes are O(1) on average. Flush() writes every changed document once; it runs
// when a command ends and before anything else reads or deletes the file.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace tarvex {

class ProfileDocument;  // one parsed file (profile.cpp)

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
  // Writes every changed document to its file and forgets all cached documents.
  void Flush();
  // Forgets the cached document of path without writing it, and deletes the file.
  bool DeleteFile(const std::string& path);

 private:
  ProfileDocument& Load(const std::string& path);
  std::unordered_map<std::string, std::unique_ptr<ProfileDocument>> docs_;
};

}  // namespace tarvex
