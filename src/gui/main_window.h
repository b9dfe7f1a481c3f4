// The main window "DVD Tarvex Tool": the report list, the command buttons, the vertical scroll
// bar that pages through the open stream, and the File and Help menus.
#pragma once

#include <QDialog>
#include <functional>

#include "state/context.h"

class QListView;
class QPushButton;
class QScrollBar;
class QAction;

namespace tarvex::gui {

class QtUi;
class ExtractDialog;
class ReportListModel;

// Control and command ids of the window, as its resources number them.
enum ControlId : int {
  kIdCancel = 2,
  kIdHex = 101,
  kIdClear = 102,
  kIdList = 103,
  kIdDetails = 104,
  kIdExtract = 105,
  kIdAssemble = 106,
  kIdGoTo = 107,
  kIdOpen = 202,
  kIdAbout = 205,
  kIdHelp = 206,
  kIdPrint = 207,
  kIdSaveAsText = 208,
};

class MainWindow : public QDialog {
 public:
  MainWindow(AppContext& ctx, QtUi& ui, QWidget* parent = nullptr);
  ~MainWindow() override;

  // The button or menu action with the given id (nullptr when there is none), for tests.
  QPushButton* button(int id) const;
  QAction* action(int id) const;
  QListView* list() const { return list_; }
  QScrollBar* scroll_bar() const { return scroll_bar_; }
  ReportListModel* model() const { return model_; }

  // Runs the Extract dialog: overridable so that tests can answer it.
  std::function<int(ExtractDialog&)> run_extract_dialog;

  // Runs one command, then brings the list, its selection and the scroll bar up to date.
  void RunCommand(const std::function<void()>& command);

  // Window commands.
  void Open();
  void Hex();
  void Clear();
  void Details();
  void Extract();
  void Assemble();
  void SaveAsText();
  void About();

  // The close query: releases the open file, then closes.
  void reject() override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void BuildMenus();
  QPushButton* AddButton(const char* text, int id);
  void SyncScrollBar();
  void SyncSelection();
  void OnScrollAction(int action);
  void OnThumbReleased();

  AppContext& ctx_;
  QtUi& ui_;
  bool first_paint_posted_ = false;
  bool syncing_ = false;
  ReportListModel* model_ = nullptr;
  QListView* list_ = nullptr;
  QScrollBar* scroll_bar_ = nullptr;
  QList<QPushButton*> buttons_;
  QList<QAction*> actions_;
};

}  // namespace tarvex::gui
