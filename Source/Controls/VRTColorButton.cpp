// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTColorButton.h"

#include "Controls/VRTPickedColor.h"
#include "Platform/TarnKit/NSBezierPath.h"
#include "Platform/TarnKit/NSGraphicsContext.h"
#include "Platform/TarnKit/NSTarnColor.h"

#include <QPainter>

namespace {

constexpr float kEmptyOpacity = 0.35F;

}  // namespace

VRTColorButton::VRTColorButton(QWidget* parent) : QAbstractButton(parent) {
  setEnabled(false);
  setFocusPolicy(Qt::TabFocus);
  QObject::connect(this, &QAbstractButton::clicked, this, [this] {
    if (action_ && color_) action_(*color_);
  });
}

void VRTColorButton::setColor(const std::optional<NSColor>& color, const QString& name) {
  color_ = color;
  setEnabled(color.has_value());
  setToolTip(color ? QStringLiteral("%1 %2").arg(name, VRTHexOfColor(*color)) : QString());
  setAccessibleName(toolTip());
  update();
}

void VRTColorButton::setAction(std::function<void(const NSColor&)> action) {
  action_ = std::move(action);
}

void VRTColorButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const NSGraphicsContext context(painter, *this, true);
  QColor outline = NSTarnColor::controlOutlineColor().toQColor();
  if (!color_) outline.setAlphaF(kEmptyOpacity);
  painter.fillRect(rect(), outline);
  const QRect inner = rect().adjusted(1, 1, -1, -1);
  painter.fillRect(inner,
                   color_ ? QColor(VRTLevelsOfColor(*color_)) : NSTarnColor::inspectorBackgroundColor().toQColor());
  if (hasFocus()) NSDrawFocusRing(NSMakeRect(0, 0, width(), height()));
}
