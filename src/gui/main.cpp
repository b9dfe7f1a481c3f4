// tarvex: the desktop tool. "-asm=SOURCE -obj=OUTPUT" assemble SOURCE into OUTPUT as soon as the
// window is first painted.
#include <QApplication>

#include "app/batch_args.h"
#include "gui/main_window.h"
#include "gui/qt_ui.h"
#include "state/context.h"

int main(int argc, char** argv) {
  tarvex::gui::QtUi ui;
  tarvex::AppContext ctx(ui);
  // The arguments as given, before Qt takes out the ones it knows.
  tarvex::ParseBatchArguments(argc, argv, ctx.batch);

  QApplication app(argc, argv);
  QApplication::setApplicationName(QStringLiteral("tarvex"));
  QApplication::setApplicationVersion(QStringLiteral(TARVEX_VERSION));
  tarvex::gui::MainWindow window(ctx, ui);
  window.show();
  const int status = QApplication::exec();
  ctx.profiles.Flush();
  return status;
}
