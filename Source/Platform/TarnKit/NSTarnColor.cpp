// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/NSTarnColor.h"

#include "Platform/TarnKit/NSGraphicsContext.h"

#include <QGuiApplication>
#include <QPalette>
#include <QWidget>

namespace {

struct Shades {
  QRgb light;
  QRgb dark;
};

NSColor shade(Shades shades) {
  return NSColor::fromQColor(QColor::fromRgba(NSTarnColor::isDark() ? shades.dark : shades.light));
}

}  // namespace

bool NSTarnColor::isDark() {
  const NSGraphicsContext* context = NSGraphicsContext::currentContext();
  const QPalette palette = context ? context->widget().palette() : QGuiApplication::palette();
  return palette.color(QPalette::Window).lightnessF() < 0.5F;
}

NSColor NSTarnColor::inspectorBackgroundColor() {
  return shade({qRgb(236, 237, 240), qRgb(43, 45, 50)});
}

NSColor NSTarnColor::inspectorLightAlternatingRowColor() {
  return shade({qRgb(246, 247, 249), qRgb(56, 59, 65)});
}

NSColor NSTarnColor::inspectorDarkAlternatingRowColor() {
  return shade({qRgb(228, 230, 235), qRgb(48, 50, 56)});
}

NSColor NSTarnColor::textColor() {
  return shade({qRgb(31, 34, 40), qRgb(226, 228, 233)});
}

NSColor NSTarnColor::secondaryTextColor() {
  return shade({qRgb(96, 101, 112), qRgb(150, 154, 164)});
}

NSColor NSTarnColor::controlOutlineColor() {
  return shade({qRgb(133, 139, 151), qRgb(22, 23, 26)});
}

NSColor NSTarnColor::selectionColor() {
  return shade({qRgb(20, 110, 230), qRgb(78, 158, 255)});
}

NSColor NSTarnColor::focusRingColor() {
  return shade({qRgba(20, 110, 230, 200), qRgba(78, 158, 255, 220)});
}
