// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>

// How people look at a picture: plain values, which can be kept as text. Nothing of it changes the picture.
namespace host {

enum class ZoomMode {
  Fit,     // the whole picture; enlarged by whole factors alone
  Fill,    // the picture covers everything
  Factor,  // `zoom` device pixels a pixel
};

enum class CompareMode { Result, Before, Split };
enum class SplitDirection { SideBySide, Stacked };  // before is at the left, or above

// What of the pixels is shown. One channel is shown as gray and opaque: red, green and blue premultiplied, as they
// flow; alpha as it is, whatever is done to colors. Luminance is 0.2126 red + 0.7152 green + 0.0722 blue of the light,
// of values that nothing is known of as they are.
enum class ChannelView { Color, Red, Green, Blue, Alpha, Luminance };

// What is seen where a picture is transparent.
enum class Ground { Checkerboard, Black, Gray, White, Color };

// How samples become those of the screen, which is taken to be sRGB.
struct DisplayChoice {
  enum class Kind {
    Standard,  // the light that they stand for, in sRGB
    Off,       // as they are
    View,      // a display and a view of the user's OpenColorIO configuration
  };
  Kind kind = Kind::Standard;
  std::string display, view;  // of View
  bool operator==(const DisplayChoice&) const = default;
};

struct ViewSettings {
  static constexpr double kLeastZoom = 1.0 / 64;
  static constexpr double kMostZoom = 64;
  static constexpr double kMostExposure = 16;  // stops, either way
  static constexpr double kLeastGamma = 0.1;
  static constexpr double kMostGamma = 10;

  ZoomMode zoomMode = ZoomMode::Fit;
  double zoom = 1;                      // of Factor
  double centerX = 0.5, centerY = 0.5;  // what of the picture is in the middle, in parts of its sides; of Factor
  CompareMode compare = CompareMode::Result;
  SplitDirection splitDirection = SplitDirection::SideBySide;
  double split = 0.5;  // where before ends, in parts of the picture's side
  ChannelView channels = ChannelView::Color;
  double exposure = 0;  // stops, in light
  double gamma = 1;     // of the screen's samples: they are raised to 1 / gamma
  DisplayChoice display;
  Ground ground = Ground::Checkerboard;
  std::uint32_t groundColor = 0x808080;  // 0xRRGGBB; of Ground::Color
  bool pixelGrid = true;                 // from a zoom of 8 on
  bool operator==(const ViewSettings&) const = default;
};

// A line for each value that is not the usual one. What is read may be anything: lines that are not understood are
// skipped, numbers are limited to their ranges.
std::string settingsText(const ViewSettings& settings);
ViewSettings settingsFromText(const std::string& text);

}  // namespace host
