#include "gui/qt_ui.h"

#include <gtest/gtest.h>

#include <QApplication>

namespace tarvex::gui {
namespace {

TEST(QtFilter, OpenChooserFilterBecomesFiveQtFilters) {
  EXPECT_EQ(QtFilterFromPairs("MPEG Files(*.VOB;*.M2P;*.IFO;*.SUP)|*.VOB;*.M2P;*.IFO;*.SUP|"
                              "VOB Files(*.VOB)|*.VOB|System Files(*.M2P)|*.M2P|"
                              "IFO Files(*.IFO)|*.IFO|SubPicture Files(*.SUP)|*.SUP|"),
            QStringLiteral("MPEG Files (*.VOB *.M2P *.IFO *.SUP);;VOB Files (*.VOB);;"
                           "System Files (*.M2P);;IFO Files (*.IFO);;SubPicture Files (*.SUP)"));
}

TEST(QtFilter, SinglePairKeepsItsDescription) {
  EXPECT_EQ(QtFilterFromPairs("Text File(*.TXT)|*.TXT|"), QStringLiteral("Text File (*.TXT)"));
  EXPECT_EQ(QtFilterFromPairs("IFO List File(*.INI)|*.INI|"),
            QStringLiteral("IFO List File (*.INI)"));
}

TEST(QtFilter, EmptyFilterMeansEveryFile) {
  EXPECT_TRUE(QtFilterFromPairs("").isEmpty());
  EXPECT_TRUE(QtFilterFromPairs("|").isEmpty());
}

TEST(QtFilter, DescriptionWithoutPatternListAndMissingPattern) {
  EXPECT_EQ(QtFilterFromPairs("Audio|*.AC3|"), QStringLiteral("Audio (*.AC3)"));
  EXPECT_EQ(QtFilterFromPairs("Anything(*.*)"), QStringLiteral("Anything (*)"));
  EXPECT_EQ(QtFilterFromPairs("Wave File(*.WAV)|*.WAV"), QStringLiteral("Wave File (*.WAV)"));
}

TEST(QtUiCursor, WaitCursorIsSetOnceAndRestoredOnce) {
  QtUi ui;
  ui.SetWaitCursor(true);
  ui.SetWaitCursor(true);
  ASSERT_NE(QApplication::overrideCursor(), nullptr);
  EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
  ui.SetWaitCursor(false);
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
  ui.SetWaitCursor(false);
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

}  // namespace
}  // namespace tarvex::gui
