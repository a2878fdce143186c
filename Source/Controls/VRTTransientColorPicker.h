// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/TarnKit/NSColor.h"
#include "Platform/TarnKit/NSEvent.h"
#include "Platform/Visibility.h"

#include <functional>
#include <memory>
#include <optional>

class NSTarnView;
class QWidget;

// What a picker posts to the default notification center when it opens, before any color is reported, and once when all
// is over, colors put back and callbacks made; the sender is the view. Hosts make one step of undo of what changes
// between. When a picker closes because its view died, the end comes when the events at hand have been handled.
inline constexpr const char* kVRTColorPickerDidOpen = "VRTColorPickerDidOpen";
inline constexpr const char* kVRTColorPickerDidClose = "VRTColorPickerDidClose";

// Chooses a color, in one of two windows.
//
// The swatch, for an event of one click: fields of colors that pop up under the pointer, with the old color right below
// it as far as the screen has room, and report the color under the pointer while it moves, hovering or pressed. For
// colors these are a square of saturation and value, a strip of hues that turns the square to another hue and keeps
// saturation and value, and a strip of grays; for grays a ramp. Letting go after a drag, a click, or Enter takes the
// color; Escape, a click outside, or letting go outside puts the old one back.
//
// The panel, for a double click and for events that are no click (by the keyboard): the same fields to press and drag
// in, with the color in hexadecimal and in numbers, an eyedropper, the old color to go back to, and the colors taken
// last. It stands beside the point of the event. Every change is reported at once. Enter and a click outside take the
// color, and so does whatever else closes the panel; Escape puts the old one back.
//
// In both the arrow keys move in the square or the ramp by one 255th, ten times as far with Shift, and Page Up and Page
// Down turn the hue.
//
// One picker is open at a time: opening another one cancels it. When the view that it was opened from dies, it closes
// and calls nobody. The callbacks may delete the view, and may open another picker.
class TARN_EXPORT VRTTransientColorPicker {
 public:
  // Target and action in one. Called for every color reported, and, when the pick is cancelled after that, once more
  // with the old color if there was one.
  using Action = std::function<void(VRTTransientColorPicker&)>;

  // All optional.
  struct Options {
    std::optional<NSColor> oldColor;         // shown as the place where the pick begins
    std::function<void()> didStart;          // when the picker opens
    std::function<void(bool taken)> didEnd;  // once, after the last action; not when the view died
  };

  // All return at once. A null view does nothing. Gray colors have equal components, black on the left and white on the
  // right.
  static void popupColorPickerFrom(NSTarnView* view, const NSEvent& event, Action action, Options options);
  static void popupColorPickerFrom(NSTarnView* view, const NSEvent& event, Action action);
  static void popupGrayscalePickerFrom(NSTarnView* view, const NSEvent& event, Action action, Options options);
  static void popupGrayscalePickerFrom(NSTarnView* view, const NSEvent& event, Action action);

  // The picker that is open; null when none is.
  static VRTTransientColorPicker* current();
  void cancel();  // as Escape does; nothing when it is not open
  // The open picker's window, a swatch's fields inside a margin of 8 points; null when none is open.
  static QWidget* panel();

  // The color reported last; empty before the first.
  std::optional<NSColor> color() const { return color_; }

  ~VRTTransientColorPicker();
  VRTTransientColorPicker(const VRTTransientColorPicker&) = delete;
  VRTTransientColorPicker& operator=(const VRTTransientColorPicker&) = delete;

 private:
  struct Session;
  VRTTransientColorPicker(Action action, Options options);
  static void popup(bool grayscale, NSTarnView* view, const NSEvent& event, Action action, Options options);

  Action action_;
  Options options_;
  std::optional<NSColor> color_;
};
