// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSGeometry.h"
#include "Platform/Visibility.h"

#include <QPoint>
#include <cstdint>

class QMouseEvent;
class QWidget;

// Modifier flags. Control is the Control key, alternate ("option") is Alt.
constexpr std::uint32_t NSShiftKeyMask = 0x20000;
constexpr std::uint32_t NSControlKeyMask = 0x40000;
constexpr std::uint32_t NSAlternateKeyMask = 0x80000;

// The flags of what is held down.
std::uint32_t NSModifierFlags(Qt::KeyboardModifiers modifiers);

// One mouse event as views see it. Valid while it is handled; copy it to keep it.
//
// The location is where the pointer stands in the window: x is the left edge, y the middle of the device pixel under
// the pointer. With half-open rectangles that hits exactly the pixels that a rectangle paints, in flipped views and
// others.
class TARN_EXPORT NSEvent {
 public:
  NSEvent() = default;
  // An event made by hand: by the keyboard, or by tests that call a view directly.
  NSEvent(NSPoint locationInWindow, std::uint32_t modifierFlags, int clickCount, QPoint globalPosition);

  // In points of the window (the top-level widget), origin at its lower left corner.
  NSPoint locationInWindow() const { return location_; }
  std::uint32_t modifierFlags() const { return modifierFlags_; }
  // 1 for a click, 2 for the second press of a double click. A third press in a row counts as 1 again.
  int clickCount() const { return clickCount_; }
  // On the screen, origin at the upper left, as Qt's windows are placed.
  QPoint globalPosition() const { return globalPosition_; }

 private:
  friend class NSTarnView;
  NSEvent(const QMouseEvent& event, const QWidget& widget, int clickCount);

  NSPoint location_;
  std::uint32_t modifierFlags_ = 0;
  int clickCount_ = 0;
  QPoint globalPosition_;
  const QMouseEvent* source_ = nullptr;  // handed on to ordinary widgets when no view wants the event
  mutable bool wasTaken_ = true;         // false once the topmost view has handed it on
};
