// The report list as a Qt item model: one row per report line, shown decoded as Latin-1.
#pragma once

#include <QAbstractListModel>
#include <cstddef>
#include <functional>

#include "state/report_list.h"

namespace tarvex::gui {

// Observes a ReportList. Lines added while a command runs are announced to the views in one
// batch (Sync, or the next turn of the event loop), so that hundreds of thousands of lines
// cost one row insertion each, not one view update each.
class ReportListModel : public QAbstractListModel, public ReportListObserver {
 public:
  explicit ReportListModel(ReportList& report, QObject* parent = nullptr);
  ~ReportListModel() override;

  int rowCount(const QModelIndex& parent = QModelIndex()) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

  // Announces every line added since the last call.
  void Sync();
  // Called after the report's selection changed (once the rows are announced).
  void set_selection_listener(std::function<void()> listener) {
    selection_listener_ = std::move(listener);
  }

  void OnLinesAdded(std::size_t first, std::size_t count) override;
  void OnCleared() override;
  void OnSelectionChanged() override;

 private:
  ReportList& report_;
  int rows_ = 0;  // rows the views know about; never more than the report holds
  bool sync_posted_ = false;
  std::function<void()> selection_listener_;
};

}  // namespace tarvex::gui
