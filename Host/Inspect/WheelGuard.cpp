// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/WheelGuard.h"

#include <QEvent>
#include <QWidget>

namespace host {
namespace {

class Filter : public QObject {
 public:
  using QObject::QObject;
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::Wheel || static_cast<QWidget*>(watched)->hasFocus()) return false;
    event->ignore();
    return true;
  }
};

}  // namespace

void guardWheel(QWidget& widget) {
  widget.setFocusPolicy(Qt::StrongFocus);
  widget.installEventFilter(new Filter(&widget));
}

}  // namespace host
