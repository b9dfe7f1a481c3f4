// The user interface of tarvex-cli: message boxes become "caption: text" lines on standard
// error, questions are answered by --yes/--no or on the terminal, choosers by the command's
// arguments (a chooser the arguments do not answer counts as cancelled).
#pragma once

#include <cstdio>
#include <functional>
#include <optional>
#include <string>

#include "platform/ui.h"

namespace tarvex {

class ConsoleUi : public UserInterface {
 public:
  enum class Answer { kAsk, kYes, kNo };
  using ChooserAnswerer = std::function<std::optional<std::string>(const ChooserRequest&)>;

  explicit ConsoleUi(std::FILE* err = stderr, std::FILE* in = stdin) : err_(err), in_(in) {}

  void set_answer(Answer a) { answer_ = a; }
  void set_chooser_answerer(ChooserAnswerer f) { answerer_ = std::move(f); }
  // How many message boxes and questions were shown.
  int messages_shown() const { return messages_shown_; }

  void ShowMessage(std::string_view text, std::string_view caption) override;
  bool AskYesNo(std::string_view text, std::string_view caption) override;
  std::optional<std::string> ChooseOpenFile(const ChooserRequest& request) override;
  std::optional<std::string> ChooseSaveFile(const ChooserRequest& request) override;
  void SetWaitCursor(bool) override {}

 private:
  std::FILE* err_;
  std::FILE* in_;
  Answer answer_ = Answer::kAsk;
  ChooserAnswerer answerer_;
  int messages_shown_ = 0;
};

}  // namespace tarvex
