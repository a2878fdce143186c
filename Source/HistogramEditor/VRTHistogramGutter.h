// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Controls/VRTGesture.h"
#include "HistogramEditor/VRTHistogramGutterGeometry.h"
#include "Platform/TarnKit/NSTarnView.h"
#include "Ports/VRTPorts.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class VRTChannelHistogram;

// The levels of a port's current value; null for a null or empty port.
VRTChannelHistogram* VRTHistogramChannelOfPort(const VRTHistogramPort* port);

// A strip of handles below a graph, edited with mouse and keyboard: the behaviour that the input gutter and the output
// gutter share. Both edit the channel that the levels select.
//
// Mouse: a handle is dragged sideways; where handles overlap, the one drawn last is taken. Handles are not kept in
// order. Keyboard: Tab goes from handle to handle, the arrows move the one that has the keyboard by 1% of the track,
// with Shift by 0.1%; Home and End send it to the ends.
//
// Every change is bracketed by willChangeValue and didChangeValue of the port. A press of the mouse (on a handle or
// not) until its release is one VRTGesture, and so are the first key that changes something until the last is let go.
//
// Observers of any of these may replace the value and destroy the gutter. A drag goes on in the new value.
class VRTHistogramGutter : public NSTarnView {
 public:
  VRTHistogramGutter(NSRect frame, QWidget* parent);

  void setHistogramPort(VRTHistogramPort* port);     // not retained
  VRTChannelHistogram* getHistogramChannel() const;  // of the port's current value, or null
  void update();                                     // call it after any change of the levels

  bool acceptsFirstMouse() const override { return true; }
  void flagsChanged(const NSEvent& event) override;
  void mouseDown(const NSEvent& event) override;
  void mouseDragged(const NSEvent& event) override;
  void mouseUp(const NSEvent& event) override;
  void drawRect(NSRect dirty) override;

  void keyDown(QKeyEvent& event) override;
  std::optional<QCursor> cursorAtPoint(NSPoint point) const override;
  std::vector<NSAccessibilityElement> accessibilityElements() const override;
  void setAccessibilityValue(std::size_t element, double value) override;
  void takeAccessibilityFocus(std::size_t element) override;

 protected:
  enum Handle : std::int32_t { NoHandle = 0, BlackHandle = 1, WhiteHandle = 2, GammaHandle = 3 };

  // The handles in the order of drawing. Handles are dragged by their positions, 0 to 1 on the track.
  virtual std::vector<Handle> handles() const = 0;
  virtual double positionOf(Handle handle, const VRTChannelHistogram& channel) const = 0;
  virtual void setPositionOf(Handle handle, double position, VRTChannelHistogram& channel) const = 0;
  virtual QString nameOf(Handle handle) const = 0;
  // What people read and set: the position, unless overridden.
  virtual double valueOf(Handle handle, const VRTChannelHistogram& channel) const;
  virtual void setValueOf(Handle handle, double value, VRTChannelHistogram& channel) const;
  virtual double largestValueOf(Handle handle) const;

  std::shared_ptr<VRTHistogramPort> histogramPort() const { return _pHistogramPort.lock(); }

  bool focusNextPrevChild(bool next) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  VRTHistogramGutterGeometry geometry() const { return VRTHistogramGutterGeometry(bounds()); }
  Handle handleAt(NSPoint point, const VRTChannelHistogram& channel) const;
  std::vector<Handle> handlesFromLeft() const;  // as they stand by default: the order of the Tab key
  void changeChannel(const std::function<void(VRTChannelHistogram&)>& change);
  void showValue();

  bool useKey(const QKeyEvent& event);
  void moveByKey(Handle handle, double position, int key);
  void letGoOfHandle();
  void setFocusedHandle(Handle handle);

  VRTObjectReference<VRTHistogramPort> _pHistogramPort;
  struct {
    float x = 0;
    float y = 0;
  } _startingLocation;
  Handle _selectedChannel = NoHandle;  // what is being dragged, despite the name
  double _startingValue = 0;           // its position when it was grabbed

  double startingNumber_ = 0;        // what people read of it then
  Handle focusedHandle_ = NoHandle;  // the one that keys move
  bool showsFocus_ = false;          // by the keyboard, not by a click
  VRTGesture gesture_{[this](const VRTGesture::Ending&) { letGoOfHandle(); }};
};

// Black, white and gamma of the input. The gamma handle stands between the two others, in the middle for gamma 1.
class VRTHistogramGutterIn : public VRTHistogramGutter {
 public:
  explicit VRTHistogramGutterIn(NSRect frame, QWidget* parent = nullptr) : VRTHistogramGutter(frame, parent) {}
  QString accessibilityLabel() const override;

 protected:
  std::vector<Handle> handles() const override;
  double positionOf(Handle handle, const VRTChannelHistogram& channel) const override;
  void setPositionOf(Handle handle, double position, VRTChannelHistogram& channel) const override;
  QString nameOf(Handle handle) const override;
  double valueOf(Handle handle, const VRTChannelHistogram& channel) const override;
  void setValueOf(Handle handle, double value, VRTChannelHistogram& channel) const override;
  double largestValueOf(Handle handle) const override;
};

// Black and white of the output.
class VRTHistogramGutterOut : public VRTHistogramGutter {
 public:
  explicit VRTHistogramGutterOut(NSRect frame, QWidget* parent = nullptr) : VRTHistogramGutter(frame, parent) {}
  QString accessibilityLabel() const override;

 protected:
  std::vector<Handle> handles() const override;
  double positionOf(Handle handle, const VRTChannelHistogram& channel) const override;
  void setPositionOf(Handle handle, double position, VRTChannelHistogram& channel) const override;
  QString nameOf(Handle handle) const override;
};
