// A user interface for tests: records every call and plays back prepared answers.
#pragma once

#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "platform/ui.h"

namespace tarvex {

class ScriptedUi : public UserInterface {
 public:
  enum class Kind { kMessage, kQuestion, kOpenChooser, kSaveChooser, kWaitCursor };
  struct Event {
    Kind kind;
    std::string text;     // message text
    std::string caption;  // message caption
    ChooserRequest request;
    bool on = false;  // wait cursor state
  };

  // Answers are used in order; when none is left a question answers No and a chooser cancels.
  std::deque<bool> yes_no_answers;
  std::deque<std::optional<std::string>> chooser_answers;
  std::vector<Event> events;

  void ShowMessage(std::string_view text, std::string_view caption) override;
  bool AskYesNo(std::string_view text, std::string_view caption) override;
  std::optional<std::string> ChooseOpenFile(const ChooserRequest& request) override;
  std::optional<std::string> ChooseSaveFile(const ChooserRequest& request) override;
  void SetWaitCursor(bool on) override;

  // The message boxes and questions shown so far, as "caption: text".
  std::vector<std::string> Messages() const;
  std::vector<ChooserRequest> Choosers() const;

 private:
  std::optional<std::string> NextChooserAnswer();
};

}  // namespace tarvex
