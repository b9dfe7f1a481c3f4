// Shared helpers for tests: temporary folders, a fresh application context with a scripted
// user interface, and builders for synthetic program-stream packs.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "platform/scripted_ui.h"
#include "state/context.h"

namespace tarvex::test {

// A fresh folder under the system's temporary folder, removed at the end of the test.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::string& path() const { return path_; }
  std::string file(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

void WriteFileBytes(const std::string& path, const std::vector<std::uint8_t>& bytes);
std::vector<std::uint8_t> ReadFileBytes(const std::string& path);
std::string ReadFileText(const std::string& path);

// Peer tools run by the interoperability tests: whether a command is on the PATH, a path
// quoted for the shell, and what a shell command writes to its standard output.
bool HaveTool(const char* name);
std::string ShellQuote(const std::string& s);
std::string CaptureCommand(const std::string& cmd);

// A fresh context with a scripted user interface; XDG_CONFIG_HOME points into its own
// temporary folder so the configuration file of the user is never touched.
struct Fixture {
  Fixture();
  ~Fixture();
  TempDir dir;
  ScriptedUi ui;
  std::unique_ptr<AppContext> ctx;
  // Writes bytes to dir/name and makes it the open file of the context with the given type,
  // as the Open command leaves it (file_path, file_type, record_count for a VOB).
  std::string OpenBytes(const std::string& name, const std::vector<std::uint8_t>& bytes,
                        std::int32_t file_type);
  const std::vector<std::string>& lines() const { return ctx->report.lines(); }
};

// Builders for 2048-byte packs.
using Record = std::vector<std::uint8_t>;
// A record holding a pack header (00 00 01 BA, SCR base and extension, mux rate 25200) and
// zero bytes after it.
Record MakePackHeader(std::uint64_t scr_base = 0, std::uint32_t scr_ext = 0,
                      std::uint32_t mux_rate = 25200);
// Writes a 5-byte PTS/DTS field with the given 4-bit prefix at record[offset].
void PutTimeStamp(Record& record, std::size_t offset, std::uint8_t prefix, std::uint64_t ticks);
// A pack whose PES packet (start code 00 00 01 stream_id at 14) fills the record; flags2 is
// byte 21 (pts_dts_flags etc.), header_data is placed at 23 and the payload after it. For
// private stream 1 (0xBD) the sub-stream id is the first payload byte.
Record MakePesPack(std::uint8_t stream_id, std::uint8_t flags2,
                   const std::vector<std::uint8_t>& header_data,
                   const std::vector<std::uint8_t>& payload, std::uint64_t scr_base = 0);
// Copies bytes into the record at offset (bytes past its end are dropped).
void PutBytes(Record& record, std::size_t offset, const std::vector<std::uint8_t>& bytes);
// A padding pack (stream 0xBE) with the given SCR.
Record MakePaddingPack(std::uint64_t scr_base = 0, std::uint32_t scr_ext = 0);
// Concatenates records into one stream.
std::vector<std::uint8_t> Concat(const std::vector<Record>& records);

}  // namespace tarvex::test
