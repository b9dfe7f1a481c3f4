// What verify reports: findings, each from one check with a stable id, a severity, the file it
// concerns and where in it (an IFO table and entry, or a VOB record).
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tarvex {

enum class Severity : std::uint8_t { kError, kWarning, kInfo };

// "error", "warning" or "info".
const char* SeverityName(Severity severity);

struct CheckInfo {
  const char* id;
  Severity severity;
  const char* explanation;  // one line, for --list-checks
};

// Every check, in the order --list-checks prints them.
std::span<const CheckInfo> AllChecks();
// The check of that id; std::logic_error for an unknown id (a programming error).
const CheckInfo& FindCheck(std::string_view id);

struct Finding {
  Severity severity = Severity::kError;
  std::string check;
  std::string file;                     // "VTS_01_0.IFO", ...; empty: the image itself (null)
  std::optional<std::string> table;     // "VTS_PGCIT", ...
  std::optional<std::uint32_t> entry;   // 1-based entry of the table
  std::optional<std::uint64_t> sector;  // record number in the file (of the image: its sector)
  std::string message;
};

// Collects findings; the severity comes from the check.
class Findings {
 public:
  // A finding in a table of an IFO (entry 0 means none).
  void AtTable(std::string_view check, std::string_view file, std::string_view table,
               std::uint32_t entry, std::string message);
  // The same, for a check whose finding is graded by what was found (nav.loop).
  void AtTable(std::string_view check, std::string_view file, std::string_view table,
               std::uint32_t entry, std::string message, Severity severity);
  // A finding about a whole file.
  void AtFile(std::string_view check, std::string_view file, std::string message);
  // A finding at a record of a VOB file.
  void AtRecord(std::string_view check, std::string_view file, std::uint64_t record,
                std::string message);
  // A finding at a sector of an image that lies in no file ("file": null).
  void AtImage(std::string_view check, std::uint64_t sector, std::string message);

  const std::vector<Finding>& all() const { return findings_; }
  std::size_t Count(Severity severity) const;
  // More findings of one check than this are counted but not listed, so that a badly damaged
  // disc gives a readable report (the last listed finding of the check says how many more).
  static constexpr std::size_t kPerCheckLimit = 200;
  void Finish();

 private:
  void Add(Finding finding);
  std::vector<Finding> findings_;
  std::vector<std::pair<std::string, std::size_t>> counts_;
};

// "SEVERITY FILE[:TABLE[#ENTRY]|@RECORD] CHECK: message"; FILE is "(image)" for a finding in
// no file.
std::string FindingLine(const Finding& finding);

}  // namespace tarvex
