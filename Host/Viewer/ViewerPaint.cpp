// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/Appearance.h"
#include "Host/Inspect/WindowText.h"
#include "Host/Viewer/Viewer.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

// How the viewer paints: in device pixels, so that nothing lies between two of them.
namespace host {
namespace {

constexpr double kLeastGridZoom = 8;
constexpr QColor kGridColor(128, 128, 128, 110);
constexpr double kKnob = 11;  // points of the split's handle

// Makes the painter's units device pixels, from the widget's corner on.
void useDevicePixels(QPainter& painter) {
  const QTransform present = painter.deviceTransform();
  const QPoint origin = present.map(QPointF(0, 0)).toPoint();
  painter.setTransform(QTransform::fromTranslate(origin.x(), origin.y()) * present.inverted(), true);
}

// An image that was made for another place, where it belongs now.
void paintImage(QPainter& painter, const QImage& image, const DisplayPlace& made, const QRect& place) {
  if (image.isNull()) return;
  if (made.place.size() == place.size()) {
    painter.drawImage(made.visible.topLeft() + place.topLeft() - made.place.topLeft(), image);
    return;
  }
  const double across = static_cast<double>(place.width()) / made.place.width();
  const double down = static_cast<double>(place.height()) / made.place.height();
  const QPoint corner = made.visible.topLeft() - made.place.topLeft();
  painter.drawImage(QRectF(place.left() + corner.x() * across, place.top() + corner.y() * down,
                           made.visible.width() * across, made.visible.height() * down),
                    image, QRectF(image.rect()));
}

void paintFrame(QPainter& painter, const DisplayFrame& frame, bool isBefore, const QRect& place) {
  const QImage& wanted = isBefore ? frame.before : frame.result;
  const QImage& other = isBefore ? frame.result : frame.before;
  paintImage(painter, wanted.isNull() ? other : wanted, frame.order.place, place);
}

void paintTag(QPainter& painter, const QString& text, QPointF corner, bool isRight, double ratio) {
  const QRectF bounds = painter.fontMetrics().boundingRect(text);
  const QSizeF size(bounds.width() + 14 * ratio, 20 * ratio);
  const QRectF tag(isRight ? corner.x() - size.width() : corner.x(), corner.y(), size.width(), size.height());
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(0, 0, 0, 130));
  painter.drawRoundedRect(tag, 4 * ratio, 4 * ratio);
  painter.setPen(QColor(255, 255, 255, 230));
  painter.drawText(tag, Qt::AlignCenter, text);
}

}  // namespace

void Viewer::paintEvent(QPaintEvent*) {
  order();  // the screen's pixel ratio may be another one
  QPainter painter(this);
  painter.fillRect(rect(), inspectorColors(palette()).previewGround);
  const QRect where = place();
  if (!frame_ || where.isEmpty()) return;
  useDevicePixels(painter);
  paintImages(painter, where);
  if (settings_.pixelGrid && zoom() >= kLeastGridZoom) paintGrid(painter, where);
  if (shownCompare() == CompareMode::Split) paintSplit(painter, where);
}

void Viewer::paintImages(QPainter& painter, const QRect& place) const {
  const CompareMode compare = shownCompare();
  const auto paint = [&](bool isBefore) {
    const bool isComplete = frame_->order.place == ordered_.place;
    if (!isComplete && whole_ && whole_->order.picture == frame_->order.picture) {
      paintFrame(painter, *whole_, isBefore, place);
    }
    paintFrame(painter, *frame_, isBefore, place);
  };
  if (compare != CompareMode::Split) return paint(compare == CompareMode::Before);
  const int line = splitLine(settings_, place);
  const bool isBeside = settings_.splitDirection == SplitDirection::SideBySide;
  QRect before = place;
  QRect after = place;
  if (isBeside) {
    before.setRight(line - 1);
    after.setLeft(line);
  } else {
    before.setBottom(line - 1);
    after.setTop(line);
  }
  for (const bool isBefore : {true, false}) {
    painter.save();
    painter.setClipRect(isBefore ? before : after);
    paint(isBefore);
    painter.restore();
  }
}

void Viewer::paintGrid(QPainter& painter, const QRect& place) const {
  const ViewArea view = area();
  const QRect seen = place & QRect(QPoint(), view.area);
  const QPointF first = pictureAt(place, view.picture, seen.topLeft());
  const QPointF last = pictureAt(place, view.picture, seen.bottomRight() + QPoint(1, 1));
  for (int x = static_cast<int>(std::ceil(first.x())); x <= last.x(); ++x) {
    const auto column = static_cast<int>(std::lround(deviceAt(place, view.picture, QPointF(x, 0)).x()));
    painter.fillRect(column, seen.top(), 1, seen.height(), kGridColor);
  }
  for (int y = static_cast<int>(std::ceil(first.y())); y <= last.y(); ++y) {
    const auto row = static_cast<int>(std::lround(deviceAt(place, view.picture, QPointF(0, y)).y()));
    painter.fillRect(seen.left(), row, seen.width(), 1, kGridColor);
  }
  if (!readout_) return;
  const QPointF corner = deviceAt(place, view.picture, QPointF(readout_->x, readout_->y));
  const QPointF end = deviceAt(place, view.picture, QPointF(readout_->x + 1.0, readout_->y + 1.0));
  const QRectF pixel(corner, end);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QColor(0, 0, 0, 200));
  painter.drawRect(pixel.adjusted(-0.5, -0.5, 0.5, 0.5));
  painter.setPen(QColor(255, 255, 255, 230));
  painter.drawRect(pixel.adjusted(0.5, 0.5, -0.5, -0.5));
}

void Viewer::paintSplit(QPainter& painter, const QRect& place) const {
  const double ratio = devicePixelRatioF();
  const QRect seen = place & QRect(QPoint(), area().area);
  if (seen.isEmpty()) return;
  const bool isBeside = settings_.splitDirection == SplitDirection::SideBySide;
  const int line = splitLine(settings_, place);
  const int thickness = std::max(1, static_cast<int>(std::lround(ratio)));
  const QRect bar = isBeside ? QRect(line - thickness / 2, seen.top(), thickness, seen.height())
                             : QRect(seen.left(), line - thickness / 2, seen.width(), thickness);
  const QPoint edge = isBeside ? QPoint(1, 0) : QPoint(0, 1);
  painter.fillRect(bar.adjusted(-edge.x(), -edge.y(), edge.x(), edge.y()), QColor(0, 0, 0, 90));
  painter.fillRect(bar, QColor(255, 255, 255, 235));

  painter.setRenderHint(QPainter::Antialiasing);
  QFont font = this->font();
  font.setPixelSize(static_cast<int>(std::lround(11 * ratio)));
  painter.setFont(font);
  const double gap = 8 * ratio;
  const QPointF after = isBeside ? QPointF(line + gap, seen.top() + gap) : QPointF(seen.left() + gap, line + gap);
  const QPointF before =
      isBeside ? QPointF(line - gap, seen.top() + gap) : QPointF(seen.left() + gap, line - gap - 20 * ratio);
  painter.save();
  painter.setClipRect(seen);
  paintTag(painter, windowText("Before"), before, isBeside, ratio);
  paintTag(painter, windowText("Result"), after, false, ratio);
  painter.restore();

  const QPointF middle = isBeside ? QPointF(line + 0.5 * (thickness % 2), seen.center().y() + 0.5)
                                  : QPointF(seen.center().x() + 0.5, line + 0.5 * (thickness % 2));
  const double radius = kKnob * ratio;
  painter.setPen(QPen(QColor(0, 0, 0, 90), ratio));
  painter.setBrush(QColor(255, 255, 255, 240));
  painter.drawEllipse(middle, radius, radius);
  painter.setPen(QPen(QColor(40, 41, 44), 1.6 * ratio, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(Qt::NoBrush);
  for (const double side : {-1.0, 1.0}) {
    const double tip = side * 0.58 * radius;
    const double back = side * 0.26 * radius;
    const double wing = 0.32 * radius;
    const auto point = [&](double along, double aside) {
      return middle + (isBeside ? QPointF(along, aside) : QPointF(aside, along));
    };
    painter.drawPolyline(QPolygonF({point(back, -wing), point(tip, 0), point(back, wing)}));
  }
}

}  // namespace host
