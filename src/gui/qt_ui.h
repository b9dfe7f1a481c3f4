// The desktop tool's user interface: Qt message boxes, file dialogs and the override cursor.
#pragma once

#include <QString>
#include <string_view>

#include "platform/ui.h"

class QWidget;

namespace tarvex::gui {

// Turns a chooser filter made of "Description(*.X;*.Y)|*.X;*.Y|" pairs into a Qt filter string
// "Description (*.X *.Y);;...". A description keeps its text up to the opening parenthesis of its
// own pattern list; an empty filter gives an empty string (every file).
QString QtFilterFromPairs(std::string_view filter);

class QtUi : public UserInterface {
 public:
  // Dialogs are centred over the parent (the main window, once it exists).
  void set_parent(QWidget* parent) { parent_ = parent; }

  void ShowMessage(std::string_view text, std::string_view caption) override;
  bool AskYesNo(std::string_view text, std::string_view caption) override;
  std::optional<std::string> ChooseOpenFile(const ChooserRequest& request) override;
  std::optional<std::string> ChooseSaveFile(const ChooserRequest& request) override;
  void SetWaitCursor(bool on) override;

 private:
  std::optional<std::string> Choose(const ChooserRequest& request, bool save);

  QWidget* parent_ = nullptr;
  bool wait_cursor_ = false;
};

}  // namespace tarvex::gui
