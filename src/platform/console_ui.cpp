#include "platform/console_ui.h"

#include <unistd.h>

namespace tarvex {

void ConsoleUi::ShowMessage(std::string_view text, std::string_view caption) {
  ++messages_shown_;
  std::string line(caption);
  line += ": ";
  line += text;
  line += '\n';
  std::fwrite(line.data(), 1, line.size(), err_);
  std::fflush(err_);
}

bool ConsoleUi::AskYesNo(std::string_view text, std::string_view caption) {
  ShowMessage(text, caption);
  if (answer_ == Answer::kYes) return true;
  if (answer_ == Answer::kNo) return false;
  if (!in_ || !::isatty(::fileno(in_))) return false;
  std::fputs("[y/N] ", err_);
  std::fflush(err_);
  char buf[64];
  if (!std::fgets(buf, sizeof buf, in_)) return false;
  return buf[0] == 'y' || buf[0] == 'Y';
}

std::optional<std::string> ConsoleUi::ChooseOpenFile(const ChooserRequest& request) {
  return answerer_ ? answerer_(request) : std::nullopt;
}

std::optional<std::string> ConsoleUi::ChooseSaveFile(const ChooserRequest& request) {
  return answerer_ ? answerer_(request) : std::nullopt;
}

}  // namespace tarvex
