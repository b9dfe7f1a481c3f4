#include "gui/qt_ui.h"

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QStringList>

namespace tarvex::gui {

namespace {

// Message texts hold file paths, which are bytes in the system's encoding.
QString FromBytes(std::string_view text) {
  return QString::fromLocal8Bit(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

QString QtFilterFromPairs(std::string_view filter) {
  QStringList parts = FromBytes(filter).split(QLatin1Char('|'));
  QStringList entries;
  for (qsizetype i = 0; i < parts.size(); i += 2) {
    QString description = parts[i].trimmed();
    QString patterns = i + 1 < parts.size() ? parts[i + 1].trimmed() : QString();
    if (description.isEmpty() && patterns.isEmpty()) continue;
    if (patterns.isEmpty()) patterns = QStringLiteral("*");
    qsizetype open = description.lastIndexOf(QLatin1Char('('));
    if (open > 0 && description.endsWith(QLatin1Char(')'))) {
      description = description.left(open).trimmed();
    }
    if (description.isEmpty()) description = patterns;
    QStringList globs = patterns.split(QLatin1Char(';'), Qt::SkipEmptyParts);
    for (QString& glob : globs) glob = glob.trimmed();
    entries << description + QStringLiteral(" (") + globs.join(QLatin1Char(' ')) + QLatin1Char(')');
  }
  return entries.join(QStringLiteral(";;"));
}

void QtUi::ShowMessage(std::string_view text, std::string_view caption) {
  QMessageBox box(QMessageBox::NoIcon, FromBytes(caption), FromBytes(text), QMessageBox::Ok,
                  parent_);
  box.exec();
}

bool QtUi::AskYesNo(std::string_view text, std::string_view caption) {
  QMessageBox box(QMessageBox::Question, FromBytes(caption), FromBytes(text),
                  QMessageBox::Yes | QMessageBox::No, parent_);
  box.setDefaultButton(QMessageBox::Yes);
  return box.exec() == QMessageBox::Yes;
}

std::optional<std::string> QtUi::ChooseOpenFile(const ChooserRequest& request) {
  return Choose(request, false);
}

std::optional<std::string> QtUi::ChooseSaveFile(const ChooserRequest& request) {
  return Choose(request, true);
}

std::optional<std::string> QtUi::Choose(const ChooserRequest& request, bool save) {
  QFileDialog dialog(parent_);
  // Qt's own dialog matches the filter without regard to case, as every file name of the tool
  // is compared ("*.VOB" shows vts_01_1.vob too).
  dialog.setOption(QFileDialog::DontUseNativeDialog, true);
  // Overwriting is asked by the commands themselves where they want it.
  dialog.setOption(QFileDialog::DontConfirmOverwrite, true);
  dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  if (save) {
    dialog.setFileMode(QFileDialog::AnyFile);
  } else {
    dialog.setFileMode((request.flags & kChooserFileMustExist) != 0 ? QFileDialog::ExistingFile
                                                                    : QFileDialog::AnyFile);
  }
  QString filter = QtFilterFromPairs(request.filter);
  if (!filter.isEmpty()) dialog.setNameFilters(filter.split(QStringLiteral(";;")));
  if (!request.initial_dir.empty()) dialog.setDirectory(FromBytes(request.initial_dir));
  if (!request.default_name.empty()) dialog.selectFile(FromBytes(request.default_name));
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  QStringList files = dialog.selectedFiles();
  if (files.isEmpty()) return std::nullopt;
  QByteArray path = files.first().toLocal8Bit();
  return std::string(path.constData(), static_cast<std::size_t>(path.size()));
}

void QtUi::SetWaitCursor(bool on) {
  if (on == wait_cursor_) return;
  wait_cursor_ = on;
  if (on) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
  } else {
    QApplication::restoreOverrideCursor();
  }
}

}  // namespace tarvex::gui
