// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/InspectorStyle.h"

#include <QPainter>
#include <QStyleFactory>
#include <QStyleOptionSlider>

namespace host {
namespace {

constexpr double kGrooveHeight = 3;
constexpr int kHandleSize = 13;

QColor mixed(const QColor& a, const QColor& b, float part) {
  return QColor::fromRgbF(a.redF() + (b.redF() - a.redF()) * part, a.greenF() + (b.greenF() - a.greenF()) * part,
                          a.blueF() + (b.blueF() - a.blueF()) * part);
}

void drawSlider(const QStyleOptionSlider& option, const QRect& handle, QPainter& painter) {
  const QPalette& palette = option.palette;
  const QColor ground = palette.color(QPalette::Window);
  const QColor ink = palette.color(QPalette::WindowText);
  const bool focused = option.state & QStyle::State_HasFocus;
  const bool pressed = option.activeSubControls & QStyle::SC_SliderHandle && option.state & QStyle::State_Sunken;
  const QPointF center = QRectF(handle).center();
  const QRectF groove(option.rect.left() + 1, center.y() - kGrooveHeight / 2, option.rect.width() - 2, kGrooveHeight);
  QRectF filled = groove;
  filled.setRight(center.x());

  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(mixed(ground, ink, 0.22f));
  painter.drawRoundedRect(groove, kGrooveHeight / 2, kGrooveHeight / 2);
  painter.setBrush(mixed(ground, ink, 0.55f));
  painter.drawRoundedRect(filled, kGrooveHeight / 2, kGrooveHeight / 2);
  const double radius = kHandleSize / 2.0 - 1;
  painter.setBrush(pressed ? mixed(ground, ink, 0.75f)
                           : mixed(ink, QColor(Qt::white), ink.lightness() < 128 ? 0.95f : 0));
  painter.setPen(QPen(focused ? palette.color(QPalette::Highlight) : mixed(ground, ink, 0.6f), focused ? 2 : 1));
  painter.drawEllipse(center, radius, radius);
  painter.restore();
}

}  // namespace

InspectorStyle::InspectorStyle() : QProxyStyle(QStyleFactory::create("Fusion")) {}

void InspectorStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                        const QWidget* widget) const {
  const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
  if (control != CC_Slider || !slider || slider->orientation != Qt::Horizontal) {
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    return;
  }
  drawSlider(*slider, subControlRect(CC_Slider, slider, SC_SliderHandle, widget), *painter);
}

int InspectorStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
  if (metric == PM_SliderLength || metric == PM_SliderThickness || metric == PM_SliderControlThickness)
    return kHandleSize;
  return QProxyStyle::pixelMetric(metric, option, widget);
}

int InspectorStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                              QStyleHintReturn* data) const {
  if (hint == SH_Slider_AbsoluteSetButtons) return Qt::LeftButton;
  if (hint == SH_EtchDisabledText) return 0;
  return QProxyStyle::styleHint(hint, option, widget, data);
}

}  // namespace host
