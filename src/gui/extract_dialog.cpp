#include "gui/extract_dialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QVBoxLayout>

namespace tarvex::gui {

namespace {

QCheckBox* AddBox(QVBoxLayout* layout, const char* text, int id) {
  auto* box = new QCheckBox(QString::fromLatin1(text));
  box->setProperty("controlId", id);
  layout->addWidget(box);
  return box;
}

}  // namespace

ExtractDialog::ExtractDialog(QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("dlg_TSCCollect"));
  setWindowTitle(QStringLiteral("Select what to extract (demux)"));
  auto* layout = new QVBoxLayout(this);
  audio_ = AddBox(layout, "Audio to *.M2A, *.MPA, *.AC3 or *.WAV", 101);
  video_ = AddBox(layout, "Video to *.M2V or *.MPV", 103);
  stills_ = AddBox(layout, "MPEG Stills", 104);
  subpictures_ = AddBox(layout, "Sub-Pictures", 105);
  disassemble_ = AddBox(layout, "Disassemble *.IFO file to *.INI file", 102);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  layout->addWidget(buttons);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

ExtractRequest ExtractDialog::Ticked() const {
  ExtractRequest ticked;
  ticked.extract_audio = audio_->isChecked() ? 1 : 0;
  ticked.extract_video = video_->isChecked() ? 1 : 0;
  ticked.extract_stills = stills_->isChecked() ? 1 : 0;
  ticked.extract_subpictures = subpictures_->isChecked() ? 1 : 0;
  ticked.disassemble_ifo = disassemble_->isChecked() ? 1 : 0;
  return ticked;
}

QCheckBox* ExtractDialog::box(int id) const {
  switch (id) {
    case 101:
      return audio_;
    case 103:
      return video_;
    case 104:
      return stills_;
    case 105:
      return subpictures_;
    case 102:
      return disassemble_;
    default:
      return nullptr;
  }
}

}  // namespace tarvex::gui
