#include "gui/report_model.h"

#include <QMetaObject>
#include <QString>
#include <algorithm>
#include <limits>

namespace tarvex::gui {

ReportListModel::ReportListModel(ReportList& report, QObject* parent)
    : QAbstractListModel(parent), report_(report) {
  report_.set_observer(this);
  Sync();
}

ReportListModel::~ReportListModel() {
  report_.set_observer(nullptr);
}

int ReportListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : rows_;
}

QVariant ReportListModel::data(const QModelIndex& index, int role) const {
  if (role != Qt::DisplayRole || !index.isValid() || index.row() >= rows_) return {};
  const std::string& line = report_.line(static_cast<std::size_t>(index.row()));
  return QString::fromLatin1(line.data(), static_cast<qsizetype>(line.size()));
}

void ReportListModel::Sync() {
  sync_posted_ = false;
  const std::size_t limit = static_cast<std::size_t>(std::numeric_limits<int>::max());
  const int lines = static_cast<int>(std::min(report_.size(), limit));
  if (lines <= rows_) return;
  beginInsertRows(QModelIndex(), rows_, lines - 1);
  rows_ = lines;
  endInsertRows();
}

void ReportListModel::OnLinesAdded(std::size_t, std::size_t) {
  if (sync_posted_) return;
  sync_posted_ = true;
  QMetaObject::invokeMethod(
      this, [this] { Sync(); }, Qt::QueuedConnection);
}

void ReportListModel::OnCleared() {
  beginResetModel();
  rows_ = 0;
  endResetModel();
}

void ReportListModel::OnSelectionChanged() {
  Sync();
  if (selection_listener_) selection_listener_();
}

}  // namespace tarvex::gui
