// tarvex_screenshot: the desktop tool's window with one file open, for tools/screenshot.sh.
// It builds the same main window as tarvex, answers the File > Open chooser with the file
// named on its command line and runs File > Open, as a user would. Once the window has been
// painted it prints the window's X11 id on standard output and waits to be closed.
// Usage: tarvex_screenshot FILE
#include <QApplication>
#include <QTimer>
#include <cstdio>
#include <optional>
#include <string>
#include <utility>

#include "state/context.h"
#include "gui/main_window.h"
#include "gui/qt_ui.h"

namespace {

// The Qt user interface whose open chooser returns one fixed file.
class OpenOneFileUi : public tarvex::gui::QtUi {
 public:
  explicit OpenOneFileUi(std::string file) : file_(std::move(file)) {}
  std::optional<std::string> ChooseOpenFile(const tarvex::ChooserRequest& request) override {
    if (request.purpose == tarvex::ChooserPurpose::kOpenInput) return file_;
    return QtUi::ChooseOpenFile(request);
  }

 private:
  std::string file_;
};

}  // namespace

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  if (argc != 2) {
    std::fputs("usage: tarvex_screenshot FILE\n", stderr);
    return 2;
  }
  OpenOneFileUi ui(argv[1]);
  tarvex::AppContext ctx(ui);
  tarvex::gui::MainWindow window(ctx, ui);
  window.show();
  QTimer::singleShot(0, &window, [&window] { window.Open(); });
  // Long enough for the window to be mapped and painted with the page.
  QTimer::singleShot(1500, &window, [&window] {
    std::printf("%llu\n", static_cast<unsigned long long>(window.winId()));
    std::fflush(stdout);
  });
  const int status = QApplication::exec();
  ctx.profiles.Flush();
  return status;
}
