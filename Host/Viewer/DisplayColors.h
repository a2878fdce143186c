// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Color/ColorConversion.h"
#include "Host/Color/ColorModule.h"
#include "Host/Viewer/ByteLook.h"
#include "Host/Viewer/ViewSettings.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace host {

// What of the settings bears on colors.
struct ColorLook {
  DisplayChoice display;
  double exposure = 0;
  double gamma = 1;
  bool isLuminance = false;  // all three colors become the luminance of the light
  bool operator==(const ColorLook&) const = default;
};

// The way of a picture's colors to the screen. Exposure and luminance take place in light: in linear Rec. 709, or the
// configuration's "scene_linear" before its view.
class DisplayColors {
 public:
  // Colors that are converted load the module for color; the environment names the configuration.
  DisplayColors() = default;
  // With a module of its own, for tests.
  explicit DisplayColors(std::unique_ptr<ColorModule> module) : module_(std::move(module)) {}

  // What is returned is good until the next call.
  ColorWay way(const ColorSpace& space, const ColorLook& look);

  // Of the last call: "Linear Rec.709 -> sRGB" with an arrow, "sRGB", empty for values as they are; and why a picture
  // is shown as it is although another way was chosen, else empty.
  const std::string& text() const { return text_; }
  const std::string& reason() const { return reason_; }

  // Those of the user's configuration; none without one, or when it cannot be read.
  std::vector<DisplayView> views();

 private:
  ColorModule& module();
  void findWay(const ColorSpace& space, const ColorLook& look, bool isInLight);
  void findBytes(const ColorSpace& space, const ColorLook& look, bool isInLight);

  std::unique_ptr<ColorModule> module_;
  std::optional<ColorSpace> space_;  // what the present ways are for
  std::optional<DisplayChoice> display_;
  bool isInLight_ = false;
  std::shared_ptr<ColorTransform> toLight_;    // null where samples are light, or nothing is known of them
  std::shared_ptr<ColorTransform> fromLight_;  // null where they are shown as they are
  std::optional<ColorLook> look_;
  std::unique_ptr<ColorConversion> conversion_;
  std::unique_ptr<ByteLook> bytes_;
  std::string text_;
  std::string reason_;
};

}  // namespace host
