// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Inspect/PortWatch.h"

#include <QPointer>
#include <QWidget>

class QAbstractButton;
class QColorDialog;
class QLabel;

namespace host {

// A color port: a swatch that opens a color dialog, and the color in hexadecimal. What is chosen in the dialog shows at
// once; cancelling puts the old color back.
class ColorEditor : public QWidget {
 public:
  ColorEditor(QCColorPort& port, QWidget* parent);
  ~ColorEditor() override;

 private:
  void show();
  void openDialog();

  QCColorPort& port_;
  QAbstractButton* swatch_ = nullptr;
  QLabel* text_ = nullptr;
  QPointer<QColorDialog> dialog_;
  PortWatch watch_;
};

}  // namespace host
