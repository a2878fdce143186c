// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/PresetPictures.h"

#include "Host/Inspect/Appearance.h"
#include "Ports/VRTObjects.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <vector>

namespace host {
namespace {

constexpr double kCheckerSize = 4;  // points
constexpr double kRampHeight = 9;   // points, below the curves of levels
constexpr int kChannels = 3;

float within(float value) {
  return value > 0 ? std::min(value, 1.0f) : 0.0f;
}

QRgb blended(const float* argb, QRgb behind) {
  const float alpha = within(argb[0]);
  const auto component = [&](float value, int under) {
    return static_cast<int>(std::lround(within(value) * 255 * alpha + static_cast<float>(under) * (1 - alpha)));
  };
  return qRgb(component(argb[1], qRed(behind)), component(argb[2], qGreen(behind)), component(argb[3], qBlue(behind)));
}

QImage gradientPicture(const PropertyList& state, QSize pixels, double ratio, const InspectorColors& colors) {
  QImage image(pixels, QImage::Format_RGB32);
  VRTGradient gradient;
  const auto columns = static_cast<std::size_t>(pixels.width());
  std::vector<float> row(4 * columns, 0.0f);
  if (gradient.initWithStateValue(state)) gradient.getGradientFloat(row.data(), static_cast<std::uint32_t>(columns));
  const double cell = std::max(1.0, std::round(kCheckerSize * ratio));
  const QRgb grounds[] = {colors.checkerLight.rgb(), colors.checkerDark.rgb()};
  for (int y = 0; y < pixels.height(); ++y) {
    auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
    for (int x = 0; x < pixels.width(); ++x) {
      const int field = static_cast<int>(x / cell) + static_cast<int>(y / cell);
      line[x] = blended(&row[4 * static_cast<std::size_t>(x)], grounds[field % 2]);
    }
  }
  return image;
}

// What one channel of levels does to a value.
double throughStage(const VRTHistogram& levels, int channel, double value) {
  const double black = levels.blackInForChannel(channel), white = levels.whiteInForChannel(channel);
  const double span = white - black;
  const double stretched = std::abs(span) < 1e-5 ? (value < black ? 0.0 : 1.0) : (value - black) / span;
  const double gamma = levels.gammaForChannel(channel);
  const double inside = std::clamp(stretched, 0.0, 1.0);
  const double shaped = gamma > 1e-5 ? std::pow(inside, 1 / gamma) : std::floor(inside);
  const double low = levels.blackOutForChannel(channel), high = levels.whiteOutForChannel(channel);
  return std::clamp(low + shaped * (high - low), 0.0, 1.0);
}

using Curve = std::vector<double>;

// Of red, green and blue, at every pixel from black to white.
std::vector<Curve> curvesOf(const PropertyList& state, int count) {
  VRTHistogram levels;
  std::vector<Curve> curves(kChannels, Curve(static_cast<std::size_t>(count), 0.0));
  if (!levels.initWithStateValue(state)) return curves;
  for (int channel = 0; channel < kChannels; ++channel) {
    for (int i = 0; i < count; ++i) {
      const double common = throughStage(levels, 0, i / std::max(1.0, count - 1.0));
      const double value = throughStage(levels, channel + 1, common);
      curves[static_cast<std::size_t>(channel)][static_cast<std::size_t>(i)] = std::isfinite(value) ? value : 0;
    }
  }
  return curves;
}

void drawRamp(QPainter& painter, const QRectF& place, const std::vector<Curve>& curves) {
  const auto count = curves[0].size();
  QImage ramp(static_cast<int>(count), 1, QImage::Format_RGB32);
  auto* line = reinterpret_cast<QRgb*>(ramp.scanLine(0));
  for (std::size_t i = 0; i < count; ++i) {
    const auto byte = [&](std::size_t channel) { return static_cast<int>(std::lround(curves[channel][i] * 255)); };
    line[i] = qRgb(byte(0), byte(1), byte(2));
  }
  painter.drawImage(place, ramp);
}

void drawCurve(QPainter& painter, const QRectF& place, const Curve& curve, const QColor& color, double width) {
  QPolygonF line;
  for (std::size_t i = 0; i < curve.size(); ++i) {
    const double x = place.left() + place.width() * static_cast<double>(i) / static_cast<double>(curve.size() - 1);
    line.append({x, place.bottom() - place.height() * curve[i]});
  }
  painter.setPen(QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPolyline(line);
}

void drawGrid(QPainter& painter, const QRectF& place, QColor color, double ratio) {
  color.setAlphaF(0.14f);
  painter.setPen(QPen(color, 1));
  for (const double part : {0.25, 0.5, 0.75}) {
    const double x = std::round(place.left() + place.width() * part) + 0.5;
    const double y = std::round(place.top() + place.height() * part) + 0.5;
    painter.drawLine(QPointF(x, 0), QPointF(x, place.bottom()));
    painter.drawLine(QPointF(0, y), QPointF(place.right(), y));
  }
  color.setAlphaF(0.28f);
  painter.setPen(QPen(color, ratio, Qt::DotLine));
  painter.setRenderHint(QPainter::Antialiasing);
  painter.drawLine(place.bottomLeft(), place.topRight());
}

QImage levelsPicture(const PropertyList& state, QSize pixels, double ratio, const QPalette& palette) {
  QImage image(pixels, QImage::Format_RGB32);
  image.fill(palette.color(QPalette::Base));
  const QColor ink = palette.color(QPalette::WindowText);
  const std::vector<Curve> curves = curvesOf(state, std::max(2, pixels.width()));
  QPainter painter(&image);
  const double ramp = std::round(kRampHeight * ratio);
  const double margin = 2 * ratio;
  const QRectF plot(0, 0, pixels.width(), pixels.height() - ramp);
  drawGrid(painter, plot, ink, ratio);
  const QRectF inside = plot.adjusted(margin, margin, -margin, -margin);
  if (curves[0] == curves[1] && curves[1] == curves[2]) {
    drawCurve(painter, inside, curves[0], ink, 1.5 * ratio);
  } else {
    const bool isDark = palette.color(QPalette::Window).lightness() < 128;
    painter.setCompositionMode(isDark ? QPainter::CompositionMode_Screen : QPainter::CompositionMode_Multiply);
    const QColor colors[] = {isDark ? "#e0504c" : "#ff6b66", isDark ? "#3fa85a" : "#5fc878",
                             isDark ? "#4a7fe0" : "#6f9cff"};
    for (std::size_t i = 0; i < kChannels; ++i) drawCurve(painter, inside, curves[i], colors[i], 1.5 * ratio);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
  }
  painter.setRenderHint(QPainter::Antialiasing, false);
  drawRamp(painter, {0, plot.bottom(), static_cast<double>(pixels.width()), ramp}, curves);
  return image;
}

}  // namespace

QImage pictureOfState(StateKind kind, const PropertyList& state, QSize pixels, double ratio, const QPalette& palette) {
  if (kind == StateKind::Levels) return levelsPicture(state, pixels, ratio, palette);
  return gradientPicture(state, pixels, ratio, inspectorColors(palette));
}

}  // namespace host
