// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Viewer/ReadoutLine.h"

#include "Host/Inspect/WindowText.h"
#include "Host/Viewer/Viewer.h"

#include <QAccessible>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace host {
namespace {

constexpr int kHeight = 26;
constexpr int kSide = 16;
constexpr int kSwatch = 12;
constexpr int kGap = 8;

QString depthExample(Depth depth) {
  switch (depth) {
    case Depth::Bits8:
      return QStringLiteral("255");
    case Depth::Bits16:
      return QStringLiteral("65535");
    case Depth::Half:
      return QStringLiteral("-0.0000");
    case Depth::Float:
      break;
  }
  return QStringLiteral("-0.000000");
}

const char* letterOf(int index, int count) {
  constexpr const char* colors[] = {"R", "G", "B", "A"};
  constexpr const char* grays[] = {"Y", "A"};
  return count < 3 ? grays[index] : colors[index];
}

QColor letterColor(int index, int count, const QPalette& palette) {
  const bool isDark = palette.color(QPalette::Window).lightness() < 128;
  if (count >= 3 && index < 3) return QColor::fromHsv(index == 0 ? 2 : index == 1 ? 135 : 218, 150, isDark ? 235 : 190);
  return palette.color(QPalette::PlaceholderText);
}

QColor warningColor(const QPalette& palette) {
  return palette.color(QPalette::Window).lightness() < 128 ? QColor(255, 176, 66) : QColor(190, 92, 0);
}

bool isFloat(Depth depth) {
  return depth == Depth::Half || depth == Depth::Float;
}

QString valuesText(const PixelValues& values) {
  QStringList texts;
  for (int i = 0; i < values.count; ++i) texts << sampleText(values.samples[static_cast<std::size_t>(i)], values.depth);
  return texts.join(' ') + (values.isOutside() ? ' ' + windowText("(outside 0 to 1)") : QString());
}

}  // namespace

QString sampleText(double sample, Depth depth) {
  if (!isFloat(depth)) return QString::number(sample, 'f', 0);
  if (!std::isfinite(sample)) return QString::number(sample);
  const int places = depth == Depth::Half ? 4 : 6;
  const double size = std::abs(sample);
  if (size >= 1e6) return QString::number(sample, 'g', places);
  const int whole = size < 10 ? 0 : static_cast<int>(std::log10(size));
  return QString::number(sample, 'f', std::max(0, places - whole));
}

QString readoutText(const PixelReadout& readout) {
  QString text = QStringLiteral("x %1  y %2").arg(readout.x).arg(readout.y);
  if (readout.before) text += QStringLiteral("  ") + windowText("Before") + ' ' + valuesText(*readout.before);
  if (readout.after) text += QStringLiteral("  ") + windowText("Result") + ' ' + valuesText(*readout.after);
  return readout.isApproximate ? text + ' ' + windowText("(of the quick picture)") : text;
}

ReadoutLine::ReadoutLine(Viewer& viewer, QWidget* parent) : QWidget(parent), viewer_(viewer) {
  setAccessibleName(windowText("Pixel under the pointer"));
  setToolTip(windowText("Before: the file's own values. Result: without premultiplication, at its full depth."));
  setFixedHeight(kHeight);
  viewer.whenPointed(this, [this] { show(viewer_.readout()); });
}

QSize ReadoutLine::sizeHint() const {
  return {600, kHeight};
}

void ReadoutLine::show(const std::optional<PixelReadout>& readout) {
  if (!readout && !readout_) return;
  readout_ = readout;
  setAccessibleDescription(readout ? readoutText(*readout) : QString());
  update();
}

double ReadoutLine::paintValues(QPainter& painter, double x, const QString& title, const PixelValues& values) const {
  const QFontMetricsF metrics(painter.font());
  const auto text = [&](const QString& words, const QColor& color) {
    painter.setPen(color);
    painter.drawText(QRectF(x, 0, width(), height()), Qt::AlignLeft | Qt::AlignVCenter, words);
    x += metrics.horizontalAdvance(words);
  };
  text(title, palette().color(QPalette::PlaceholderText));
  x += kGap;
  const auto parts = values.asParts();
  const auto byte = [&](std::size_t c) {
    return static_cast<int>(std::lround(255 * std::clamp(std::isnan(parts[c]) ? 0.0 : parts[c], 0.0, 1.0)));
  };
  const QRectF swatch(std::round(x), (height() - kSwatch) / 2.0, kSwatch, kSwatch);
  QColor line = palette().color(QPalette::WindowText);
  line.setAlphaF(0.35f);
  painter.setPen(line);
  painter.setBrush(QColor(byte(0), byte(1), byte(2)));
  painter.drawRoundedRect(swatch.adjusted(0.5, 0.5, -0.5, -0.5), 2, 2);
  x += kSwatch + kGap;
  const double column = metrics.horizontalAdvance(depthExample(values.depth));
  for (int i = 0; i < values.count; ++i) {
    const double sample = values.samples[static_cast<std::size_t>(i)];
    const bool isOutside = isFloat(values.depth) && !(sample >= 0 && sample <= 1);
    text(QString::fromLatin1(letterOf(i, values.count)), letterColor(i, values.count, palette()));
    x += 4;
    const double begin = x;
    text(sampleText(sample, values.depth), isOutside ? warningColor(palette()) : palette().color(QPalette::WindowText));
    x = std::max(x, begin + column) + kGap;
  }
  if (values.isOutside()) {
    const double middle = height() / 2.0;
    const QPolygonF sign({{x + 6, middle - 5}, {x + 12, middle + 5}, {x, middle + 5}});
    painter.setPen(Qt::NoPen);
    painter.setBrush(warningColor(palette()));
    painter.drawPolygon(sign);
  }
  return x + 12 + 2 * kGap;
}

void ReadoutLine::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  if (!readout_) return;
  QFont font = this->font();
  font.setPixelSize(12);
  painter.setFont(font);
  const QFontMetricsF metrics(font);
  const QString place = (readout_->isApproximate ? QStringLiteral("\u2248 ") : QString()) +
                        QStringLiteral("%1, %2").arg(readout_->x).arg(readout_->y);
  painter.setPen(palette().color(QPalette::WindowText));
  painter.drawText(QRectF(kSide, 0, width(), height()), Qt::AlignLeft | Qt::AlignVCenter, place);
  double x = kSide +
             std::max(metrics.horizontalAdvance(place), metrics.horizontalAdvance(QStringLiteral("0000, 0000"))) +
             2 * kGap;
  if (readout_->before) x = paintValues(painter, x, windowText("Before"), *readout_->before);
  if (readout_->after) paintValues(painter, x, windowText("Result"), *readout_->after);
}

}  // namespace host
