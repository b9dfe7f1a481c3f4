// The Extract dialog: what to demultiplex from the open stream, and the IFO disassembly.
#pragma once

#include <QDialog>

#include "state/context.h"

class QCheckBox;

namespace tarvex::gui {

class ExtractDialog : public QDialog {
 public:
  explicit ExtractDialog(QWidget* parent = nullptr);

  // The ticked boxes as request flags (1 for a ticked box).
  ExtractRequest Ticked() const;

  // The check box with the given control id (101 audio, 103 video, 104 stills,
  // 105 sub-pictures, 102 disassembly), for tests.
  QCheckBox* box(int id) const;

 private:
  QCheckBox* audio_;
  QCheckBox* video_;
  QCheckBox* stills_;
  QCheckBox* subpictures_;
  QCheckBox* disassemble_;
};

}  // namespace tarvex::gui
