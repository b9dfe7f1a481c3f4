#include "gui/main_window.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
#include <QMenu>
#include <QMenuBar>
#include <QMetaObject>
#include <QPainter>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <algorithm>
#include <limits>

#include "app/batch_args.h"
#include "app/commands.h"
#include "app/open_file.h"
#include "app/save_report.h"
#include "convert/drivers.h"
#include "gui/extract_dialog.h"
#include "gui/qt_ui.h"
#include "gui/report_model.h"
#include "stream/listing.h"

namespace tarvex::gui {

namespace {

// The window's background: red 0xCD, green 0xB8, blue 0.
const QColor kBackground(0xCD, 0xB8, 0x00);

int ClampToInt(std::uint32_t value) {
  return static_cast<int>(std::min<std::uint32_t>(value, std::numeric_limits<int>::max()));
}

}  // namespace

MainWindow::MainWindow(AppContext& ctx, QtUi& ui, QWidget* parent)
    : QDialog(parent), ctx_(ctx), ui_(ui) {
  setObjectName(QStringLiteral("IDD_PEX32"));
  setWindowTitle(QStringLiteral("DVD Tarvex Tool"));
  setSizeGripEnabled(true);
  ui_.set_parent(this);

  model_ = new ReportListModel(ctx_.report, this);
  model_->set_selection_listener([this] { SyncSelection(); });

  list_ = new QListView;
  list_->setProperty("controlId", static_cast<int>(kIdList));
  list_->setModel(model_);
  list_->setUniformItemSizes(true);
  list_->setSelectionMode(QAbstractItemView::SingleSelection);
  list_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  list_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  connect(list_->selectionModel(), &QItemSelectionModel::currentChanged, this,
          [this](const QModelIndex& current) {
            if (syncing_ || !current.isValid()) return;
            syncing_ = true;
            ctx_.report.Select(static_cast<std::size_t>(current.row()));
            syncing_ = false;
          });

  scroll_bar_ = new QScrollBar(Qt::Vertical);
  scroll_bar_->setRange(1, 1);
  scroll_bar_->setSingleStep(1);
  scroll_bar_->setPageStep(1);
  connect(scroll_bar_, &QScrollBar::actionTriggered, this,
          [this](int action) { OnScrollAction(action); });
  connect(scroll_bar_, &QScrollBar::sliderReleased, this, [this] { OnThumbReleased(); });

  auto* root = new QVBoxLayout(this);
  BuildMenus();
  auto* middle = new QHBoxLayout;
  middle->addWidget(list_, 1);
  middle->addWidget(scroll_bar_);
  root->addLayout(middle, 1);

  auto* row = new QHBoxLayout;
  row->addWidget(AddButton("HEX", kIdHex));
  row->addWidget(AddButton("Clear", kIdClear));
  row->addWidget(AddButton("Details", kIdDetails));
  row->addWidget(AddButton("Extract", kIdExtract));
  row->addWidget(AddButton("Assemble", kIdAssemble));
  row->addWidget(AddButton("Go To", kIdGoTo));  // no handler: pressing it does nothing
  row->addStretch(1);
  row->addWidget(AddButton("Cancel", kIdCancel));
  root->addLayout(row);

  connect(button(kIdHex), &QPushButton::clicked, this, [this] { Hex(); });
  connect(button(kIdClear), &QPushButton::clicked, this, [this] { Clear(); });
  connect(button(kIdDetails), &QPushButton::clicked, this, [this] { Details(); });
  connect(button(kIdExtract), &QPushButton::clicked, this, [this] { Extract(); });
  connect(button(kIdAssemble), &QPushButton::clicked, this, [this] { Assemble(); });
  connect(button(kIdCancel), &QPushButton::clicked, this, [this] { reject(); });

  resize(780, 560);
}

MainWindow::~MainWindow() {
  ui_.set_parent(nullptr);
}

void MainWindow::BuildMenus() {
  auto* bar = new QMenuBar(this);
  bar->setObjectName(QStringLiteral("COMMANDS"));  // the window's menu resource
  auto add = [this](QMenu* menu, const char* text, int id) {
    QAction* action = menu->addAction(QString::fromLatin1(text));
    action->setProperty("commandId", id);
    actions_ << action;
    return action;
  };
  QMenu* file = bar->addMenu(QStringLiteral("&File"));
  connect(add(file, "Open", kIdOpen), &QAction::triggered, this, [this] { Open(); });
  add(file, "Print", kIdPrint);  // no handler: printing does nothing
  connect(add(file, "Save As Text *.TXT", kIdSaveAsText), &QAction::triggered, this,
          [this] { SaveAsText(); });
  QMenu* help = bar->addMenu(QStringLiteral("Help"));
  add(help, "Help", kIdHelp);  // empty handler
  connect(add(help, "About", kIdAbout), &QAction::triggered, this, [this] { About(); });
  layout()->setMenuBar(bar);
}

QPushButton* MainWindow::AddButton(const char* text, int id) {
  auto* button = new QPushButton(QString::fromLatin1(text));
  button->setProperty("controlId", id);
  button->setAutoDefault(false);
  buttons_ << button;
  return button;
}

QPushButton* MainWindow::button(int id) const {
  for (QPushButton* b : buttons_) {
    if (b->property("controlId").toInt() == id) return b;
  }
  return nullptr;
}

QAction* MainWindow::action(int id) const {
  for (QAction* a : actions_) {
    if (a->property("commandId").toInt() == id) return a;
  }
  return nullptr;
}

void MainWindow::RunCommand(const std::function<void()>& command) {
  command();
  ctx_.profiles.Flush();
  model_->Sync();
  SyncSelection();
  SyncScrollBar();
  // The unattended assembly ends the program with the cancel result once it has run.
  if (ctx_.convert.close_main_dialog) {
    ctx_.convert.close_main_dialog = false;
    reject();
  }
}

void MainWindow::Open() {
  RunCommand([this] { OpenCommand(ctx_); });
}

void MainWindow::Hex() {
  RunCommand([this] { HexCommand(ctx_); });
}

void MainWindow::Clear() {
  RunCommand([this] { ClearCommand(ctx_); });
}

void MainWindow::Details() {
  RunCommand([this] { DetailsCommand(ctx_); });
}

void MainWindow::Extract() {
  RunCommand([this] {
    ExtractDialog dialog(this);
    const int result = run_extract_dialog ? run_extract_dialog(dialog) : dialog.exec();
    if (result == QDialog::Accepted) {
      ExtractCommand(ctx_, dialog.Ticked());
    } else {
      ExtractCancelled(ctx_);
    }
  });
}

void MainWindow::Assemble() {
  RunCommand([this] { AssembleInteractive(ctx_); });
}

void MainWindow::SaveAsText() {
  RunCommand([this] { SaveReportAsText(ctx_); });
}

void MainWindow::About() {
  QDialog about(this);
  about.setObjectName(QStringLiteral("IDD_ABOUT"));
  about.setWindowTitle(QStringLiteral("About DVD Tarvex Tool"));
  auto* layout = new QVBoxLayout(&about);
  layout->addWidget(new QLabel(QStringLiteral("DVD Tarvex Tool, version " TARVEX_VERSION
                                              "\nInspects DVD-Video program streams, IFO files "
                                              "and sub-picture files.")));
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
  layout->addWidget(buttons);
  connect(buttons, &QDialogButtonBox::accepted, &about, &QDialog::accept);
  about.exec();
}

void MainWindow::reject() {
  CloseQuery(ctx_);
  model_->Sync();
  ctx_.profiles.Flush();
  QDialog::reject();
}

void MainWindow::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), kBackground);
  // The batch check runs once, after the first paint has finished.
  if (!first_paint_posted_) {
    first_paint_posted_ = true;
    QMetaObject::invokeMethod(
        this, [this] { RunCommand([this] { FirstPaint(ctx_, ctx_.window); }); },
        Qt::QueuedConnection);
  }
}

void MainWindow::SyncScrollBar() {
  const QSignalBlocker blocker(scroll_bar_);
  scroll_bar_->setRange(1, std::max(1, ClampToInt(ctx_.stream.scroll_range)));
  scroll_bar_->setValue(ctx_.open.scroll_page);
}

void MainWindow::SyncSelection() {
  if (syncing_) return;
  syncing_ = true;
  const std::optional<std::size_t> selected = ctx_.report.selection();
  QItemSelectionModel* selection = list_->selectionModel();
  if (selected && *selected < static_cast<std::size_t>(model_->rowCount())) {
    const QModelIndex index = model_->index(static_cast<int>(*selected));
    if (selection->currentIndex() != index || !selection->isSelected(index)) {
      selection->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
      list_->scrollTo(index);
    }
  } else if (!selected && selection->hasSelection()) {
    selection->clear();
  }
  syncing_ = false;
}

void MainWindow::OnScrollAction(int action) {
  // The value still holds the position before the action; the position afterwards is the one
  // the paging leaves in scroll_page.
  const int current = scroll_bar_->value();
  switch (action) {
    case QAbstractSlider::SliderSingleStepAdd:
      RunCommand([&] { ScrollLineDown(ctx_, current); });
      break;
    case QAbstractSlider::SliderSingleStepSub:
      RunCommand([&] { ScrollLineUp(ctx_, current); });
      break;
    case QAbstractSlider::SliderPageStepAdd:
      RunCommand([&] { ScrollPageDown(ctx_, current); });
      break;
    case QAbstractSlider::SliderPageStepSub:
      RunCommand([&] { ScrollPageUp(ctx_, current); });
      break;
    case QAbstractSlider::SliderMove:
      // Dragging the thumb counts when it is released; the wheel moves a line at a time.
      if (scroll_bar_->isSliderDown()) return;
      if (scroll_bar_->sliderPosition() > current) {
        RunCommand([&] { ScrollLineDown(ctx_, current); });
      } else if (scroll_bar_->sliderPosition() < current) {
        RunCommand([&] { ScrollLineUp(ctx_, current); });
      }
      break;
    default:
      break;
  }
  RunCommand([this] { ScrollEnded(ctx_); });
  scroll_bar_->setSliderPosition(scroll_bar_->value());
}

void MainWindow::OnThumbReleased() {
  const int position = scroll_bar_->sliderPosition();
  RunCommand([&] {
    ScrollThumbReleased(ctx_, position);
    ScrollEnded(ctx_);
  });
}

}  // namespace tarvex::gui
