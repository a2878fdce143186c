// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/ColorSwatch.h"

#include "Host/Inspect/ParameterClipboard.h"

#include <QApplication>
#include <QClipboard>
#include <QDrag>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QPointer>

namespace host {
namespace {

constexpr double kRadius = 3;
constexpr int kDragPictureSize = 18;

QPixmap dragPicture(const QColor& color, double ratio) {
  QPixmap picture(QSize(kDragPictureSize, kDragPictureSize) * ratio);
  picture.setDevicePixelRatio(ratio);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QColor(0, 0, 0, 160));
  painter.setBrush(color);
  painter.drawRoundedRect(QRectF(0.5, 0.5, kDragPictureSize - 1, kDragPictureSize - 1), kRadius, kRadius);
  return picture;
}

}  // namespace

ColorSwatch::ColorSwatch(Told told, QWidget* parent) : QAbstractButton(parent), told_(std::move(told)) {
  setAcceptDrops(true);
  setFocusPolicy(Qt::StrongFocus);
}

void ColorSwatch::setColor(const std::optional<Rgb>& color) {
  color_ = color;
  setAccessibleDescription(color ? codeOfColor(*color) : QString());
  update();
}

void ColorSwatch::setTakesColors(bool takes) {
  setAcceptDrops(takes);
}

void ColorSwatch::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QPalette& colors = palette();
  const bool isLit = hasFocus() || isTarget_;
  const bool isDark = colors.color(QPalette::Window).lightness() < 128;
  painter.setPen(
      QPen(isLit ? colors.color(QPalette::Highlight) : colors.color(isDark ? QPalette::Light : QPalette::Mid),
           isLit ? 2 : 1));
  painter.setBrush(color_ ? QBrush(shownColor(*color_)) : QBrush(Qt::NoBrush));
  const double inset = isLit ? 1 : 0.5;
  painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), kRadius, kRadius);
}

void ColorSwatch::mousePressEvent(QMouseEvent* event) {
  pressedAt_ = event->pos();
  QAbstractButton::mousePressEvent(event);
}

void ColorSwatch::mouseMoveEvent(QMouseEvent* event) {
  const bool isFar = (event->pos() - pressedAt_).manhattanLength() >= QApplication::startDragDistance();
  if (!color_ || !isDown() || !(event->buttons() & Qt::LeftButton) || !isFar) {
    return QAbstractButton::mouseMoveEvent(event);
  }
  setDown(false);                // no click any more
  auto* drag = new QDrag(this);  // deletes itself
  drag->setMimeData(mimeOfColor(*color_).release());
  drag->setPixmap(dragPicture(shownColor(*color_), devicePixelRatioF()));
  drag->setHotSpot({kDragPictureSize / 2, kDragPictureSize / 2});
  drag->exec(Qt::CopyAction);
}

bool ColorSwatch::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride) {
    auto* key = static_cast<QKeyEvent*>(event);
    if ((key->matches(QKeySequence::Copy) && color_) || key->matches(QKeySequence::Paste)) event->accept();
  }
  return QAbstractButton::event(event);
}

void ColorSwatch::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy) && color_) {
    QApplication::clipboard()->setMimeData(mimeOfColor(*color_).release());
  } else if (event->matches(QKeySequence::Paste)) {
    paste();
  } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    click();
  } else {
    QAbstractButton::keyPressEvent(event);
  }
}

void ColorSwatch::paste() {
  const QMimeData* mime = QApplication::clipboard()->mimeData();
  if (!mime) return;
  const auto color = colorOfMime(*mime);
  const Told told = told_;  // outlives the swatch
  if (color && acceptDrops()) {
    told.given(*color);
  } else if (told.paste) {
    told.paste(*mime);
  }
}

void ColorSwatch::dragEnterEvent(QDragEnterEvent* event) {
  if (event->source() == this || !colorOfMime(*event->mimeData())) return;
  event->setDropAction(Qt::CopyAction);
  event->accept();
  isTarget_ = true;
  update();
}

void ColorSwatch::dragLeaveEvent(QDragLeaveEvent*) {
  isTarget_ = false;
  update();
}

void ColorSwatch::dropEvent(QDropEvent* event) {
  isTarget_ = false;
  update();
  const auto color = colorOfMime(*event->mimeData());
  if (!color) return;
  event->setDropAction(Qt::CopyAction);
  event->accept();
  const auto given = told_.given;  // outlives the swatch
  given(*color);
}

}  // namespace host
