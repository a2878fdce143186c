// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Inspect/EntryField.h"
#include "Host/Texts/ColorText.h"

class NSTarnView;
class QCPort;

namespace host {

// What stands beneath the editor of a parameter: its numbers and choices. It follows the value and what is chosen in
// the editor, which may be destroyed at any time.
class ParameterFields : public QWidget {
 public:
  using QWidget::QWidget;
  virtual void refresh() = 0;                     // after changes that nobody announces
  virtual bool takeColor(const Rgb& /*color*/) {  // gives it to what is selected; false when nothing there takes one
    return false;
  }
};

// Those for the editor that a port has made; null when it is none that has such fields. What is pasted into one of them
// is offered to `paste` first. The port must outlive them.
ParameterFields* makeParameterFields(QCPort& port, NSTarnView* editor, const EntryField::Paste& paste, QWidget* parent);

}  // namespace host
