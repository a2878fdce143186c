// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Viewer/Viewer.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QWheelEvent>
#include <cmath>

// The viewer's way with mouse and keyboard.
namespace host {
namespace {

constexpr int kSplitReach = 6;           // points around the line
constexpr double kNotchesForDouble = 4;  // of a wheel
constexpr double kUnitsOfNotch = 120;
constexpr double kNearly = 0.02;  // by so much off 1, 2, 3, ... a zoom by wheel is that

// Wheels pass through whole zooms, where pixels are sharp.
double caught(double zoom) {
  const double whole = std::round(zoom);
  return whole >= 1 && std::abs(zoom / whole - 1) < kNearly ? whole : zoom;
}

}  // namespace

bool Viewer::event(QEvent* event) {
  if (event->type() == QEvent::NativeGesture) {
    const auto* gesture = static_cast<QNativeGestureEvent*>(event);
    if (gesture->gestureType() == Qt::ZoomNativeGesture) {
      if (picture_) zoomAt(zoom() * (1 + gesture->value()), gesture->position());
      return true;
    }
  }
  return QWidget::event(event);
}

bool Viewer::eventFilter(QObject* watched, QEvent* event) {
  if (isPeeking_) {
    if (event->type() == QEvent::KeyRelease) {
      const auto* key = static_cast<QKeyEvent*>(event);
      if (key->key() == Qt::Key_X && !key->isAutoRepeat()) setPeeking(false);
    } else if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::ApplicationDeactivate ||
               event->type() == QEvent::WindowDeactivate) {
      setPeeking(false);
    }
  }
  return QWidget::eventFilter(watched, event);
}

bool Viewer::isOnSplit(QPointF point) const {
  if (shownCompare() != CompareMode::Split) return false;
  const QPointF device = deviceOf(point);
  const QRect where = place();
  const double reach = kSplitReach * devicePixelRatioF();
  const double off = settings_.splitDirection == SplitDirection::SideBySide ? device.x() : device.y();
  return std::abs(off - splitLine(settings_, where)) <= reach;
}

void Viewer::updateCursor() {
  const bool isAcross = settings_.splitDirection == SplitDirection::SideBySide;
  if (drag_ == Drag::Pan) {
    setCursor(Qt::ClosedHandCursor);
  } else if (isSpaceDown_) {
    setCursor(Qt::OpenHandCursor);
  } else if (drag_ == Drag::Split || (pointer_ && isOnSplit(*pointer_))) {
    setCursor(isAcross ? Qt::SplitHCursor : Qt::SplitVCursor);
  } else {
    unsetCursor();
  }
}

void Viewer::mousePressEvent(QMouseEvent* event) {
  const bool isLeft = event->button() == Qt::LeftButton;
  dragged_ = event->position();
  if (event->button() == Qt::MiddleButton || (isLeft && isSpaceDown_)) {
    drag_ = Drag::Pan;
    isSpaceTap_ = false;
  } else if (isLeft && isOnSplit(event->position())) {
    drag_ = Drag::Split;
  } else {
    event->ignore();
  }
  updateCursor();
}

void Viewer::mouseMoveEvent(QMouseEvent* event) {
  const QPointF point = event->position();
  if (drag_ == Drag::Pan) {
    setSettings(panned(settings_, area(), (point - dragged_) * devicePixelRatioF()));
    dragged_ = point;
  } else if (drag_ == Drag::Split) {
    ViewSettings settings = settings_;
    settings.split = splitAt(settings_, place(), deviceOf(point));
    setSettings(settings);
  }
  pointAt(point);
  updateCursor();
}

void Viewer::mouseReleaseEvent(QMouseEvent*) {
  drag_ = Drag::None;
  updateCursor();
}

void Viewer::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !picture_ || isOnSplit(event->position())) return mousePressEvent(event);
  if (settings_.zoomMode == ZoomMode::Fit && zoom() != 1) return zoomAt(1, event->position());
  ViewSettings settings = settings_;
  settings.zoomMode = ZoomMode::Fit;
  setSettings(settings);
}

void Viewer::wheelEvent(QWheelEvent* event) {
  const double notches = event->angleDelta().y() / kUnitsOfNotch;
  if (notches == 0 || !picture_) return event->ignore();
  const double factor = zoom() * std::exp2(notches / kNotchesForDouble);
  zoomAt(std::abs(notches) >= 1 ? caught(factor) : factor, event->position());
}

void Viewer::leaveEvent(QEvent* event) {
  QWidget::leaveEvent(event);
  pointAt(std::nullopt);
}

void Viewer::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Space || event->modifiers() != Qt::NoModifier) return QWidget::keyPressEvent(event);
  if (event->isAutoRepeat()) return;
  isSpaceDown_ = true;
  isSpaceTap_ = true;
  updateCursor();
  if (!space_) event->ignore();
}

void Viewer::keyReleaseEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Space || !isSpaceDown_) return QWidget::keyReleaseEvent(event);
  if (event->isAutoRepeat()) return;
  isSpaceDown_ = false;
  updateCursor();
  if (isSpaceTap_ && space_) space_();
}

void Viewer::focusOutEvent(QFocusEvent* event) {
  QWidget::focusOutEvent(event);
  isSpaceDown_ = false;
  isSpaceTap_ = false;
  updateCursor();
}

}  // namespace host
