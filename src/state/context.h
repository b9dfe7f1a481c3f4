// The application context: every piece of state that lives as long as the program, in one
// object. The desktop tool and tarvex-cli own one each; every test builds a fresh one.
#pragma once

#include <cstdint>
#include <string>

#include "platform/file_io.h"
#include "platform/profile.h"
#include "platform/ui.h"
#include "state/convert_state.h"
#include "state/ifo_state.h"
#include "state/report_list.h"
#include "state/window_state.h"

namespace tarvex {

// File types by extension.
enum FileType : std::int32_t {
  kFileUnknown = 0,
  kFileVob = 1,
  kFileM2p = 2,
  kFileIfo = 3,
  kFileSup = 4,
};

inline constexpr std::uint32_t RECORD_SIZE = 2048;
inline constexpr std::uint32_t PAGE_RECORDS = 16;

// The one open file and the paging position in it.
struct OpenFileState {
  File file_handle;  // closed when no file is open
  std::int32_t file_type = kFileUnknown;
  std::uint32_t record_count = 0;  // file length >> 11, set for VOB files only
  std::int32_t file_open = 0;      // 1 once a file was opened; never reset
  std::string file_path;           // full path of the open file
  std::string file_dir;            // directory of the chosen path; the chooser's start folder
  std::string file_name;           // name part of the chosen path
  std::int32_t vmg_selected = 0;
  std::uint32_t page_end = 0;  // one past the last listed record; the record HEX/Details show
  std::int32_t scroll_page = 0;
};

// Listing and view modes, and the stream number left behind by GetSectorType.
struct StreamState {
  std::uint32_t stream_number = 0;
  std::int32_t thumb_moved = 0;
  std::int32_t hex_mode = 0;
  std::int32_t details_mode = 0;
  std::int32_t listing_mode = 1;   // 1 detailed listing, 0 basic listing
  std::uint32_t scroll_range = 0;  // the scroll bar's maximum (minimum is 1)
};

// The Extract dialog's request flags, and the length of the open stream when the dialog was
// closed with OK: every run of that Extract command expects the stream to keep it (-1: a run
// started on its own takes the length the stream has when the run begins).
struct ExtractRequest {
  std::int32_t extract_audio = 0;
  std::int32_t extract_video = 0;
  std::int32_t extract_stills = 0;
  std::int32_t extract_subpictures = 0;
  std::int32_t disassemble_ifo = 0;
  std::int64_t stream_length = -1;
};

// The batch arguments of the desktop tool's command line.
struct BatchArgs {
  std::string asm_path;
  std::string obj_path;
  std::int32_t batch_args = 0;
};

struct AppContext {
  explicit AppContext(UserInterface& user_interface) : ui(user_interface) {}
  AppContext(const AppContext&) = delete;
  AppContext& operator=(const AppContext&) = delete;

  UserInterface& ui;
  ReportList report;
  ProfileStore profiles;
  OpenFileState open;
  StreamState stream;
  ExtractRequest extract;
  BatchArgs batch;
  WindowState window;    // first paint of the main window
  IfoState ifo;          // table modules' images and counts
  ConvertState convert;  // IfoSource and output paths of the conversion drivers

  // Shorthands used by every analysis.
  void AddReportLine(std::string_view line) { report.AddReportLine(line); }
  void ClearReportList() { report.ClearReportList(); }
};

}  // namespace tarvex
