// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/PreviewView.h"

#include "Host/Inspect/Appearance.h"
#include "Host/Inspect/DisplayImage.h"
#include "Host/Inspect/WindowText.h"

#include <QPainter>
#include <QResizeEvent>
#include <algorithm>
#include <cmath>

namespace host {
namespace {

constexpr int kMargin = 24;  // points around the picture
constexpr int kCell = 8;     // points of the checkerboard

QSize areaOf(const QWidget& widget) {
  const double ratio = widget.devicePixelRatioF();
  const QSize points = widget.size().shrunkBy({kMargin, kMargin, kMargin, kMargin});
  return {static_cast<int>(points.width() * ratio), static_cast<int>(points.height() * ratio)};
}

void paintCheckerboard(QPainter& painter, const QTransform& points, const QRect& device, double ratio,
                       const InspectorColors& colors) {
  const int cell = std::max(1, static_cast<int>(std::lround(kCell * ratio)));
  painter.fillRect(points.mapRect(QRectF(device)), colors.checkerLight);
  for (int y = device.top(); y <= device.bottom(); y += cell) {
    const int odd = (y - device.top()) / cell % 2;
    for (int x = device.left() + odd * cell; x <= device.right(); x += 2 * cell) {
      painter.fillRect(points.mapRect(QRectF(QRect(x, y, cell, cell).intersected(device))), colors.checkerDark);
    }
  }
}

}  // namespace

QRect fittedRect(QSize picture, QSize area) {
  if (picture.isEmpty() || area.isEmpty()) return {};
  QSize size = picture;
  if (picture.width() <= area.width() && picture.height() <= area.height()) {
    size *= std::min(area.width() / picture.width(), area.height() / picture.height());
  } else {
    const double scale = std::min(static_cast<double>(area.width()) / picture.width(),
                                  static_cast<double>(area.height()) / picture.height());
    size = {std::clamp(static_cast<int>(std::lround(picture.width() * scale)), 1, area.width()),
            std::clamp(static_cast<int>(std::lround(picture.height() * scale)), 1, area.height())};
  }
  return {QPoint((area.width() - size.width()) / 2, (area.height() - size.height()) / 2), size};
}

PreviewView::PreviewView(QWidget* parent) : QWidget(parent) {
  setAccessibleName(windowText("Preview"));
  setAttribute(Qt::WA_OpaquePaintEvent);
}

QSize PreviewView::sizeHint() const {
  return {820, 600};
}

void PreviewView::setPicture(const BitmapRef& bitmap) {
  picture_ = displayImage(bitmap);
  scaled_ = {};
  update();
  if (shown_) shown_();
}

double PreviewView::zoom() const {
  return picture_.isNull() ? 0 : static_cast<double>(deviceRect().width()) / picture_.width();
}

QRect PreviewView::deviceRect() const {
  return fittedRect(picture_.size(), areaOf(*this));
}

const QImage& PreviewView::scaled(QSize size) {
  if (size.width() >= picture_.width()) return picture_;
  if (scaled_.size() != size) scaled_ = picture_.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  return scaled_;
}

void PreviewView::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  scaled_ = {};
  if (shown_) shown_();
}

void PreviewView::paintEvent(QPaintEvent*) {
  const InspectorColors colors = inspectorColors(palette());
  QPainter painter(this);
  painter.fillRect(rect(), colors.previewGround);
  if (picture_.isNull()) return;
  const double ratio = painter.device()->devicePixelRatioF();
  const QTransform points = painter.deviceTransform().inverted();  // what, painted, fills device pixels
  const QPointF origin = painter.deviceTransform().map(QPointF(kMargin, kMargin));
  const QRect device = deviceRect().translated(origin.toPoint());
  if (picture_.hasAlphaChannel()) paintCheckerboard(painter, points, device, ratio, colors);
  painter.drawImage(points.mapRect(QRectF(device)), scaled(device.size()));
}

}  // namespace host
