// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTColorSwatch.h"

#include "Platform/TarnKit/NSTarnColor.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace {

constexpr int kSide = 256;
constexpr int kStrip = 16;
constexpr int kGap = 8;
constexpr int kRampHeight = 32;
constexpr double kSteps = kSide - 1;
constexpr double kRingRadius = 6;

QPointF limitedTo(QSize size, QPointF place) {
  return {std::clamp(place.x(), 0.0, size.width() - 1.0), std::clamp(place.y(), 0.0, size.height() - 1.0)};
}

double squaredDistance(const QRect& rect, QPointF place) {
  const double x = std::max({rect.left() - place.x(), place.x() - rect.right() - 1, 0.0});
  const double y = std::max({rect.top() - place.y(), place.y() - rect.bottom() - 1, 0.0});
  return x * x + y * y;
}

}  // namespace

QSize VRTColorField::size() const {
  switch (kind_) {
    case Kind::Square:
      return {kSide, kSide};
    case Kind::Ramp:
      return {kSide, kRampHeight};
    case Kind::Hues:
    case Kind::Grays:
      break;
  }
  return {kStrip, kSide};
}

void VRTColorField::pick(QPointF place, VRTPickedColor& color) const {
  const QPointF at = limitedTo(size(), place);
  switch (kind_) {
    case Kind::Square:
      return color.set(color.hue(), at.x() / kSteps, 1 - at.y() / kSteps);
    case Kind::Hues:
      return color.set(at.y() / kSteps, color.saturation(), color.value());
    case Kind::Grays:
      return color.set(color.hue(), 0, 1 - at.y() / kSteps);
    case Kind::Ramp:
      return color.set(color.hue(), 0, at.x() / kSteps);
  }
}

void VRTColorField::step(QPoint points, VRTPickedColor& color) const {
  pick(placeOf(color) + points, color);
}

QPointF VRTColorField::placeOf(const VRTPickedColor& color) const {
  const double down = (1 - color.value()) * kSteps;
  switch (kind_) {
    case Kind::Square:
      return {color.saturation() * kSteps, down};
    case Kind::Hues:
      return {kStrip / 2.0, color.hue() * kSteps};
    case Kind::Grays:
      return {kStrip / 2.0, down};
    case Kind::Ramp:
      break;
  }
  return {color.value() * kSteps, kRampHeight / 2.0};
}

VRTPickedColor VRTColorField::picked(QPointF place, VRTPickedColor color) const {
  if (kind_ == Kind::Hues) color.set(0, 1, 1);
  pick(place, color);
  return color;
}

const QImage& VRTColorField::image(const VRTPickedColor& color, double devicePixelRatio) {
  const bool hueIsShown = kind_ != Kind::Square || imageHue_ == color.hue();
  if (!image_.isNull() && image_.devicePixelRatio() == devicePixelRatio && hueIsShown) return image_;
  const int width = int(std::lround(size().width() * devicePixelRatio));
  const int height = int(std::lround(size().height() * devicePixelRatio));
  image_ = QImage(width, height, QImage::Format_RGB32);
  imageHue_ = color.hue();
  const bool rowsDiffer = kind_ != Kind::Ramp;
  const bool columnsDiffer = kind_ == Kind::Square || kind_ == Kind::Ramp;
  for (int y = 0; y < height; ++y) {
    auto* row = reinterpret_cast<QRgb*>(image_.scanLine(y));
    if (y > 0 && !rowsDiffer) {
      std::copy_n(reinterpret_cast<const QRgb*>(image_.constScanLine(0)), width, row);
      continue;
    }
    for (int x = 0; x < width; ++x) {
      const QPointF place(x / devicePixelRatio, y / devicePixelRatio);
      row[x] = x > 0 && !columnsDiffer ? row[0] : VRTLevelsOfColor(picked(place, color).color());
    }
  }
  image_.setDevicePixelRatio(devicePixelRatio);
  return image_;
}

void VRTColorField::draw(QPainter& painter, QPoint origin, const VRTPickedColor& color) {
  const QRect frame = QRect(origin, size()).adjusted(-1, -1, 1, 1);
  painter.fillRect(frame, NSTarnColor::controlOutlineColor().toQColor());
  painter.drawImage(origin, image(color, painter.device()->devicePixelRatioF()));
}

void VRTColorField::drawMark(QPainter& painter, QPoint origin, const VRTPickedColor& color) const {
  if (kind_ == Kind::Grays && color.saturation() > 0) return;
  const QPointF centre = placeOf(color) + origin + QPointF(0.5, 0.5);
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  const auto draw = [&] {
    const QRectF whole = QRectF(origin, size());
    constexpr double around = 2;
    constexpr double half = 3.5;
    if (kind_ == Kind::Square) return painter.drawEllipse(centre, kRingRadius, kRingRadius);
    const QRectF mark = kind_ == Kind::Ramp
                            ? QRectF(centre.x() - half, whole.top() - around, 2 * half, whole.height() + 2 * around)
                            : QRectF(whole.left() - around, centre.y() - half, whole.width() + 2 * around, 2 * half);
    painter.drawRoundedRect(mark, 2, 2);
  };
  painter.setPen(QPen(QColor(0, 0, 0, 170), 3.5));
  draw();
  painter.setPen(QPen(Qt::white, 1.75));
  draw();
  painter.restore();
}

VRTColorSwatch::VRTColorSwatch(Kind kind) : kind_(kind) {
  using Field = VRTColorField::Kind;
  const std::vector<Field> order =
      kind == Kind::color ? std::vector{Field::Grays, Field::Square, Field::Hues} : std::vector{Field::Ramp};
  int x = 0;
  for (const Field each : order) {
    const VRTColorField field(each);
    fields_.push_back({field, QRect(QPoint(x, 0), field.size())});
    x += field.size().width() + kGap;
  }
}

QSize VRTColorSwatch::size() const {
  QRect whole;
  for (const Place& place : fields_) whole |= place.rect;
  return whole.size();
}

const VRTColorSwatch::Place& VRTColorSwatch::mainField() const {
  return fields_[fields_.size() / 2];
}

const VRTColorSwatch::Place& VRTColorSwatch::fieldAt(QPointF place) const {
  return *std::min_element(fields_.begin(), fields_.end(), [&](const Place& a, const Place& b) {
    return squaredDistance(a.rect, place) < squaredDistance(b.rect, place);
  });
}

void VRTColorSwatch::pick(QPointF place, VRTPickedColor& color) const {
  const Place& at = fieldAt(place);
  at.field.pick(place - at.rect.topLeft(), color);
}

QPointF VRTColorSwatch::placeOf(const VRTPickedColor& color) const {
  return mainField().field.placeOf(color) + mainField().rect.topLeft();
}

void VRTColorSwatch::draw(QPainter& painter, QPoint origin, const VRTPickedColor& color) {
  for (Place& place : fields_) place.field.draw(painter, origin + place.rect.topLeft(), color);
  for (const Place& place : fields_) place.field.drawMark(painter, origin + place.rect.topLeft(), color);
}
