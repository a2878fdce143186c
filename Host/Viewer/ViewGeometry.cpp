// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Viewer/ViewGeometry.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace host {
namespace {

constexpr double kSteps[] = {1.0 / 64, 1.0 / 48, 1.0 / 32, 1.0 / 24, 1.0 / 16, 1.0 / 12, 1.0 / 8, 1.0 / 6,
                             1.0 / 4,  1.0 / 3,  1.0 / 2,  2.0 / 3,  1,        2,        3,       4,
                             6,        8,        12,       16,       24,       32,       48,      64};

bool isEmpty(const ViewArea& view) {
  return view.picture.isEmpty() || view.area.isEmpty();
}

QSize inner(const ViewArea& view) {
  return view.area.shrunkBy({view.margin, view.margin, view.margin, view.margin}).expandedTo({1, 1});
}

double fillFactor(const ViewArea& view) {
  return std::max(static_cast<double>(view.area.width()) / view.picture.width(),
                  static_cast<double>(view.area.height()) / view.picture.height());
}

int scaledSide(int side, double factor) {
  return std::max(1, static_cast<int>(std::lround(side * factor)));
}

QPointF middle(const ViewArea& view) {
  return {view.area.width() / 2.0, view.area.height() / 2.0};
}

// Of Factor and Fill.
QRect centeredPlace(const ViewArea& view, double factor, QPointF center) {
  const QPointF corner =
      middle(view) - QPointF(center.x() * view.picture.width() * factor, center.y() * view.picture.height() * factor);
  return {QPoint(static_cast<int>(std::lround(corner.x())), static_cast<int>(std::lround(corner.y()))),
          QSize(scaledSide(view.picture.width(), factor), scaledSide(view.picture.height(), factor))};
}

// What is at a device point, in parts of the picture's sides, unrounded for Factor: steps do not add up to a drift.
QPointF partAt(const ViewSettings& settings, const ViewArea& view, QPointF device) {
  if (settings.zoomMode == ZoomMode::Factor) {
    const QPointF offset = (device - middle(view)) / settings.zoom;
    return {settings.centerX + offset.x() / view.picture.width(),
            settings.centerY + offset.y() / view.picture.height()};
  }
  const QPointF point = pictureAt(placeOf(settings, view), view.picture, device);
  return {point.x() / view.picture.width(), point.y() / view.picture.height()};
}

ViewSettings withCenter(ViewSettings settings, double zoom, QPointF center) {
  settings.zoomMode = ZoomMode::Factor;
  settings.zoom = zoom;
  settings.centerX = std::clamp(center.x(), 0.0, 1.0);
  settings.centerY = std::clamp(center.y(), 0.0, 1.0);
  return settings;
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

QRect placeOf(const ViewSettings& settings, const ViewArea& view) {
  if (isEmpty(view)) return {};
  switch (settings.zoomMode) {
    case ZoomMode::Fit: {
      const QSize area = inner(view);
      const QPoint corner((view.area.width() - area.width()) / 2, (view.area.height() - area.height()) / 2);
      return fittedRect(view.picture, area).translated(corner);
    }
    case ZoomMode::Fill:
      return centeredPlace(view, fillFactor(view), {0.5, 0.5});
    case ZoomMode::Factor:
      break;
  }
  return centeredPlace(view, settings.zoom, {settings.centerX, settings.centerY});
}

double zoomOf(const ViewSettings& settings, const ViewArea& view) {
  if (isEmpty(view)) return 0;
  switch (settings.zoomMode) {
    case ZoomMode::Fit:
      return static_cast<double>(placeOf(settings, view).width()) / view.picture.width();
    case ZoomMode::Fill:
      return fillFactor(view);
    case ZoomMode::Factor:
      break;
  }
  return settings.zoom;
}

QPointF pictureAt(const QRect& place, QSize picture, QPointF device) {
  return {(device.x() - place.left()) * picture.width() / place.width(),
          (device.y() - place.top()) * picture.height() / place.height()};
}

QPointF deviceAt(const QRect& place, QSize picture, QPointF point) {
  return {place.left() + point.x() * place.width() / picture.width(),
          place.top() + point.y() * place.height() / picture.height()};
}

ViewSettings zoomedAt(const ViewSettings& settings, const ViewArea& view, double zoom, QPointF device) {
  if (isEmpty(view)) return settings;
  const double factor = std::clamp(zoom, ViewSettings::kLeastZoom, ViewSettings::kMostZoom);
  const QPointF offset = (device - middle(view)) / factor;
  const QPointF part = partAt(settings, view, device);
  return withCenter(settings, factor,
                    part - QPointF(offset.x() / view.picture.width(), offset.y() / view.picture.height()));
}

ViewSettings panned(const ViewSettings& settings, const ViewArea& view, QPointF device) {
  if (isEmpty(view)) return settings;
  const double zoom = zoomOf(settings, view);
  return withCenter(settings, zoom,
                    partAt(settings, view, middle(view)) -
                        QPointF(device.x() / zoom / view.picture.width(), device.y() / zoom / view.picture.height()));
}

double steppedZoom(double zoom, bool isUp) {
  constexpr double slack = 1.001;  // a zoom that is nearly a step counts as it
  if (isUp) {
    const auto* next = std::upper_bound(std::begin(kSteps), std::end(kSteps), zoom * slack);
    return next == std::end(kSteps) ? kSteps[std::size(kSteps) - 1] : *next;
  }
  const auto* next = std::lower_bound(std::begin(kSteps), std::end(kSteps), zoom / slack);
  return next == std::begin(kSteps) ? kSteps[0] : *(next - 1);
}

int splitLine(const ViewSettings& settings, const QRect& place) {
  const bool isBeside = settings.splitDirection == SplitDirection::SideBySide;
  return isBeside ? place.left() + static_cast<int>(std::lround(settings.split * place.width()))
                  : place.top() + static_cast<int>(std::lround(settings.split * place.height()));
}

double splitAt(const ViewSettings& settings, const QRect& place, QPointF device) {
  if (place.isEmpty()) return settings.split;
  const double part = settings.splitDirection == SplitDirection::SideBySide
                          ? (device.x() - place.left()) / place.width()
                          : (device.y() - place.top()) / place.height();
  return std::clamp(part, 0.0, 1.0);
}

}  // namespace host
