// The user-interface interface: everything the analysis code needs from a front end.
// The desktop tool implements it with Qt, tarvex-cli with the console, tests with a script.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tarvex {

// Which chooser is asked, so that a front end without dialogs can answer each one.
enum class ChooserPurpose {
  kOpenInput,          // File > Open
  kSaveReport,         // Save As Text *.TXT
  kAudioStream,        // one audio stream file of the audio extraction
  kVideo,              // the video file of the video extraction
  kStills,             // the base name of the still extraction
  kSubPictures,        // the base name of the sub-picture extraction
  kDisassemblySource,  // the *.INI written by the disassembly
  kAssemblySource,     // the *.INI read by the interactive assembly
  kAssemblyOutput,     // the *.IFO written by the interactive assembly
};

// Option bits of a chooser request. A front end honours those it can (the desktop tool's
// chooser accepts only an existing file when asked to); the others are passed along for
// information.
inline constexpr std::uint32_t kChooserHideReadOnly = 0x0004;   // no read-only check box
inline constexpr std::uint32_t kChooserPathMustExist = 0x0800;  // the folder must exist
inline constexpr std::uint32_t kChooserFileMustExist = 0x1000;  // the file must exist

struct ChooserRequest {
  ChooserPurpose purpose = ChooserPurpose::kOpenInput;
  std::string filter;        // "Description(*.X)|*.X|" pairs
  std::string initial_dir;   // folder to start in
  std::string default_name;  // proposed file name (may be empty)
  std::uint32_t flags = 0;   // kChooser* bits
};

class UserInterface {
 public:
  virtual ~UserInterface() = default;
  // A modal message box with an OK button.
  virtual void ShowMessage(std::string_view text, std::string_view caption) = 0;
  // A modal Yes/No question; true for Yes.
  virtual bool AskYesNo(std::string_view text, std::string_view caption) = 0;
  // File choosers: the chosen full path, or nothing when cancelled.
  virtual std::optional<std::string> ChooseOpenFile(const ChooserRequest& request) = 0;
  virtual std::optional<std::string> ChooseSaveFile(const ChooserRequest& request) = 0;
  // Busy cursor on or off.
  virtual void SetWaitCursor(bool on) = 0;
};

}  // namespace tarvex
