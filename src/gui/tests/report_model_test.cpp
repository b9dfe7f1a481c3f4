#include "gui/report_model.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <string>

namespace tarvex::gui {
namespace {

TEST(ReportListModel, LinesAddedDuringACommandArriveInOneInsertion) {
  ReportList report;
  ReportListModel model(report);
  int insertions = 0;
  QObject::connect(&model, &QAbstractItemModel::rowsInserted, [&] { ++insertions; });
  for (int i = 0; i < 100000; ++i) report.AddReportLine("line");
  EXPECT_EQ(model.rowCount(), 0);
  model.Sync();
  EXPECT_EQ(model.rowCount(), 100000);
  EXPECT_EQ(insertions, 1);
}

TEST(ReportListModel, LinesAreShownAsLatin1) {
  ReportList report;
  ReportListModel model(report);
  report.AddReportLine(std::string("caf\xe9 \xff", 6));
  model.Sync();
  EXPECT_EQ(model.data(model.index(0)).toString(), QString::fromUtf8("caf\u00e9 \u00ff"));
  EXPECT_FALSE(model.data(model.index(1)).isValid());
}

TEST(ReportListModel, ClearEmptiesTheViewAtOnce) {
  ReportList report;
  ReportListModel model(report);
  report.AddReportLine("a");
  report.AddReportLine("b");
  model.Sync();
  report.ClearReportList();
  EXPECT_EQ(model.rowCount(), 0);
  report.AddReportLine("c");
  model.Sync();
  ASSERT_EQ(model.rowCount(), 1);
  EXPECT_EQ(model.data(model.index(0)).toString(), QStringLiteral("c"));
}

TEST(ReportListModel, SelectionChangeAnnouncesPendingLinesFirst) {
  ReportList report;
  ReportListModel model(report);
  int rows_seen = -1;
  model.set_selection_listener([&] { rows_seen = model.rowCount(); });
  report.AddReportLine("a");
  report.AddReportLine("b");
  report.Select(1);
  EXPECT_EQ(rows_seen, 2);
}

TEST(ReportListModel, PendingLinesAreAnnouncedOnTheNextEventLoopTurn) {
  ReportList report;
  ReportListModel model(report);
  report.AddReportLine("a");
  QCoreApplication::processEvents();
  EXPECT_EQ(model.rowCount(), 1);
}

}  // namespace
}  // namespace tarvex::gui
