#include "platform/scripted_ui.h"

namespace tarvex {

void ScriptedUi::ShowMessage(std::string_view text, std::string_view caption) {
  events.push_back({Kind::kMessage, std::string(text), std::string(caption), {}, false});
}

bool ScriptedUi::AskYesNo(std::string_view text, std::string_view caption) {
  events.push_back({Kind::kQuestion, std::string(text), std::string(caption), {}, false});
  if (yes_no_answers.empty()) return false;
  bool answer = yes_no_answers.front();
  yes_no_answers.pop_front();
  return answer;
}

std::optional<std::string> ScriptedUi::NextChooserAnswer() {
  if (chooser_answers.empty()) return std::nullopt;
  auto answer = chooser_answers.front();
  chooser_answers.pop_front();
  return answer;
}

std::optional<std::string> ScriptedUi::ChooseOpenFile(const ChooserRequest& request) {
  events.push_back({Kind::kOpenChooser, {}, {}, request, false});
  return NextChooserAnswer();
}

std::optional<std::string> ScriptedUi::ChooseSaveFile(const ChooserRequest& request) {
  events.push_back({Kind::kSaveChooser, {}, {}, request, false});
  return NextChooserAnswer();
}

void ScriptedUi::SetWaitCursor(bool on) {
  events.push_back({Kind::kWaitCursor, {}, {}, {}, on});
}

std::vector<std::string> ScriptedUi::Messages() const {
  std::vector<std::string> out;
  for (const auto& e : events) {
    if (e.kind == Kind::kMessage || e.kind == Kind::kQuestion)
      out.push_back(e.caption + ": " + e.text);
  }
  return out;
}

std::vector<ChooserRequest> ScriptedUi::Choosers() const {
  std::vector<ChooserRequest> out;
  for (const auto& e : events) {
    if (e.kind == Kind::kOpenChooser || e.kind == Kind::kSaveChooser) out.push_back(e.request);
  }
  return out;
}

}  // namespace tarvex
