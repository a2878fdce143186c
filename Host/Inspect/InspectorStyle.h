// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QProxyStyle>

namespace host {

// The desktop-neutral style with quiet sliders: a thin groove, filled up to a round handle.
class InspectorStyle : public QProxyStyle {
 public:
  InspectorStyle();
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                          const QWidget* widget) const override;
  int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
  // A click on the groove takes the handle along.
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* data) const override;
};

}  // namespace host
