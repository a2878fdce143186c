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

// A swatch image that pops up centred under the pointer, kept on the screen, and reports the color under the pointer
// while it moves, hovering or pressed. Letting go after a drag, a click, or Enter takes the color; Escape, a click
// outside, or letting go outside puts the old one back. The arrow keys move a place in the swatch, ten times as far
// with Shift.
//
// One picker is open at a time: opening another one cancels it. When the view that it was opened from dies, it closes
// and calls nobody. The callbacks may delete the view, and may open another picker.
class TARN_EXPORT VRTTransientColorPicker {
 public:
  // Target and action in one. Called for every color reported, and, when the pick is cancelled after that, once more
  // with the old color if there was one.
  using Action = std::function<void(VRTTransientColorPicker&)>;

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
  // The open picker's window, with the swatch inside a margin of 6 points; null when none is open.
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
