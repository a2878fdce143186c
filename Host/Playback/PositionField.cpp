// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Playback/PositionField.h"

#include "Host/Inspect/Appearance.h"
#include "Host/Inspect/WindowText.h"
#include "Host/Playback/Player.h"

#include <QKeyEvent>
#include <QWheelEvent>
#include <algorithm>

namespace host {

PositionField::PositionField(Player& player, QWidget* parent) : QLineEdit(parent), player_(player) {
  setAlignment(Qt::AlignRight);
  setFocusPolicy(Qt::StrongFocus);
  setMaxLength(32);
  setAccessibleName(windowText("Position"));
  setToolTip(windowText("A frame, a time code, seconds as 12.5s, or + and - from here"));
  player_.listen(*this, {.positionChanged =
                             [this] {
                               if (!isModified()) showPosition();
                             },
                         .stateChanged = [this] { setUnit(unit_); }});
  QObject::connect(this, &QLineEdit::textEdited, this, [this] { mark(true); });
  setUnit(unit_);
}

void PositionField::setUnit(PositionUnit unit) {
  const auto units = unitsOf(player_.times());
  unit_ = std::find(units.begin(), units.end(), unit) == units.end() ? units.front() : unit;
  fitWidth();
  if (!isModified()) showPosition();
}

void PositionField::fitWidth() {
  const QString widest = positionText(player_.times(), player_.times().last(), unit_);
  setFixedWidth(std::max(fontMetrics().horizontalAdvance(widest), fontMetrics().horizontalAdvance("00000")) + 18);
}

void PositionField::showPosition() {
  setText(positionText(player_.times(), player_.position(), unit_));
}

void PositionField::startTyping() {
  setFocus(Qt::ShortcutFocusReason);
  selectAll();
}

void PositionField::mark(bool isUnderstood) {
  QPalette colors = parentWidget() ? parentWidget()->palette() : palette();
  if (!isUnderstood) {
    const InspectorColors own = inspectorColors(colors);
    colors.setColor(QPalette::Base, own.errorGround);
    colors.setColor(QPalette::Text, own.errorText);
  }
  setPalette(colors);
}

void PositionField::commit() {
  const auto frame = parsedPosition(text(), player_.times(), player_.position(), unit_);
  mark(frame.has_value());
  if (!frame) return;
  setModified(false);
  player_.goTo(*frame);
  showPosition();
  selectAll();
}

void PositionField::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return commit();
    case Qt::Key_Up:
    case Qt::Key_Down: {
      const int frames = event->modifiers().testFlag(Qt::ShiftModifier) ? 10 : 1;
      setModified(false);
      player_.step(event->key() == Qt::Key_Up ? frames : -frames);
      return showPosition();
    }
    case Qt::Key_Escape:
      if (!isModified()) break;
      mark(true);
      showPosition();
      return selectAll();
    default:
      break;
  }
  QLineEdit::keyPressEvent(event);
}

void PositionField::focusOutEvent(QFocusEvent* event) {
  QLineEdit::focusOutEvent(event);
  if (event->reason() == Qt::PopupFocusReason || event->reason() == Qt::ActiveWindowFocusReason) return;
  mark(true);
  showPosition();
}

void PositionField::wheelEvent(QWheelEvent* event) {
  if (!hasFocus()) return event->ignore();
  constexpr int notch = 120;
  turned_ += event->angleDelta().y();
  if (const int steps = turned_ / notch) {
    turned_ -= steps * notch;
    player_.step(steps);
  }
  event->accept();
}

}  // namespace host
