#include "state/report_list.h"

namespace tarvex {

void ReportList::AddReportLine(std::string_view line) {
  std::size_t zero = line.find('\0');
  lines_.emplace_back(zero == std::string_view::npos ? line : line.substr(0, zero));
  if (observer_) observer_->OnLinesAdded(lines_.size() - 1, 1);
}

void ReportList::ClearReportList() {
  lines_.clear();
  selection_.reset();
  if (observer_) observer_->OnCleared();
}

bool ReportList::Select(std::size_t index) {
  if (index >= lines_.size()) return false;
  selection_ = index;
  if (observer_) observer_->OnSelectionChanged();
  return true;
}

void ReportList::ClearSelection() {
  selection_.reset();
  if (observer_) observer_->OnSelectionChanged();
}

std::optional<std::string> ReportList::SelectedText() const {
  if (!selection_ || *selection_ >= lines_.size()) return std::nullopt;
  return lines_[*selection_];
}

}  // namespace tarvex
