// The ReportList: the one list of text lines every analysis writes into. Lines are byte
// strings (zero-terminated texts: a line ends at its first zero byte). The list also keeps the
// selected line, as the list box of the window does; the desktop tool observes changes.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarvex {

class ReportListObserver {
 public:
  virtual ~ReportListObserver() = default;
  virtual void OnLinesAdded(std::size_t first, std::size_t count) = 0;
  virtual void OnCleared() = 0;
  virtual void OnSelectionChanged() = 0;
};

class ReportList {
 public:
  void AddReportLine(std::string_view line);
  void ClearReportList();

  const std::vector<std::string>& lines() const { return lines_; }
  std::size_t size() const { return lines_.size(); }
  bool empty() const { return lines_.empty(); }
  const std::string& line(std::size_t i) const { return lines_.at(i); }

  // Selection: false when there is no such line (the selection is then unchanged).
  bool Select(std::size_t index);
  void ClearSelection();
  std::optional<std::size_t> selection() const { return selection_; }
  // The selected line's text, if a line is selected.
  std::optional<std::string> SelectedText() const;

  void set_observer(ReportListObserver* observer) { observer_ = observer; }

 private:
  std::vector<std::string> lines_;
  std::optional<std::size_t> selection_;
  ReportListObserver* observer_ = nullptr;
};

}  // namespace tarvex
