// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Controls/VRTColorSwatch.h"

#include <QPointer>
#include <QWidget>
#include <functional>
#include <optional>

// The window of a color picker: the color that it has, and what it tells. Enter takes the color, Escape gives it up.
//
// Whoever is told may destroy the owner and run an event loop. The window closes then, but lives on until everybody has
// been told and its events are handled: no part of it goes while it tells of a change.
class VRTPickerWindow : public QWidget {
 public:
  struct Handlers {
    std::function<void(const NSColor&)> report;
    std::function<void(bool taken)> finish;  // may be called more than once
    std::function<void()> ownerDied;
  };

  const VRTPickedColor& picked() const { return picked_; }

  // Closes it, and deletes it as soon as it may.
  void dispose();

 protected:
  VRTPickerWindow(QWidget& owner, VRTColorSwatch::Kind kind, const std::optional<NSColor>& oldColor, Handlers handlers);

  // The place for the upper left corner, as near as the screen of `near` allows.
  void moveOnScreen(QPoint corner, QPoint near);
  void report();
  void finish(bool taken);
  void take();
  // Closed from outside: another window came to the front, or the application hid its windows.
  virtual bool keepsColorWhenClosed() const { return false; }

  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;  // the base: Enter, Escape, and the arrows
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

  VRTColorSwatch swatch_;
  VRTPickedColor picked_;

 private:
  // By the arrow and paging keys; false for other keys.
  bool pickByKey(const QKeyEvent& event);
  // The color has become another one: the window shows it and tells.
  virtual void pickedByKey() = 0;

  void ownerDied();
  template <class Tell>
  void tell(Tell tellHandlers);

  Handlers handlers_;
  QPointer<QWidget> owner_;
  bool hasOldColor_;
  bool hasReported_ = false;
  int telling_ = 0;  // how many handlers are being called, one within another
  bool isDone_ = false;
};

// Which way an arrow key points, y downwards; nowhere for other keys. With Shift ten times as far.
QPoint VRTStepOfKey(const QKeyEvent& event);
