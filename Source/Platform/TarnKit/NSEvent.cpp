// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/NSEvent.h"

#include <QMouseEvent>
#include <QWidget>

std::uint32_t NSModifierFlags(Qt::KeyboardModifiers modifiers) {
  std::uint32_t flags = 0;
  if (modifiers & Qt::ShiftModifier) flags |= NSShiftKeyMask;
  if (modifiers & Qt::ControlModifier) flags |= NSControlKeyMask;
  if (modifiers & Qt::AltModifier) flags |= NSAlternateKeyMask;
  return flags;
}

NSEvent::NSEvent(NSPoint locationInWindow, std::uint32_t modifierFlags, int clickCount, QPoint globalPosition)
    : location_(locationInWindow),
      modifierFlags_(modifierFlags),
      clickCount_(clickCount),
      globalPosition_(globalPosition) {}

NSEvent::NSEvent(const QMouseEvent& event, const QWidget& widget, int clickCount)
    : modifierFlags_(NSModifierFlags(event.modifiers())),
      clickCount_(clickCount),
      globalPosition_(event.globalPosition().toPoint()),
      source_(&event) {
  const QWidget* window = widget.window();
  const QPointF position = widget.mapTo(window, event.position());
  const double halfPixel = 0.5 / widget.devicePixelRatioF();
  location_ = NSPoint{position.x(), window->height() - position.y() - halfPixel};
}
