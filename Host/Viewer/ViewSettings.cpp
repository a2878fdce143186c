// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Viewer/ViewSettings.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <span>
#include <sstream>
#include <string_view>

namespace host {
namespace {

// In the order of the enumerations.
constexpr const char* kZoomModes[] = {"fit", "fill", "factor"};
constexpr const char* kCompareModes[] = {"result", "before", "split"};
constexpr const char* kSplitDirections[] = {"side-by-side", "stacked"};
constexpr const char* kChannels[] = {"color", "red", "green", "blue", "alpha", "luminance"};
constexpr const char* kGrounds[] = {"checkerboard", "black", "gray", "white", "color"};
constexpr const char* kDisplays[] = {"standard", "off", "view"};
constexpr const char* kSwitch[] = {"off", "on"};

std::string numberText(double value) {
  char text[32];
  return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

class SettingsWriter {
 public:
  template <class Value>
  void choice(const char* key, Value value, Value usual, std::span<const char* const> names) {
    if (value != usual) line(key, names[static_cast<std::size_t>(value)]);
  }
  void number(const char* key, double value, double usual) {
    if (value != usual) line(key, numberText(value));
  }
  // Names of a configuration: nothing that would end the line.
  void line(const char* key, std::string value) {
    std::replace(value.begin(), value.end(), '\n', ' ');
    text += std::string(key) + ' ' + value + '\n';
  }
  std::string text;
};

class SettingsReader {
 public:
  SettingsReader(std::string_view key, std::string_view value) : key_(key), value_(value) {}

  template <class Value>
  void choice(const char* key, Value* value, std::span<const char* const> names) const {
    if (key_ != key) return;
    const auto found = std::find(names.begin(), names.end(), value_);
    if (found != names.end()) *value = static_cast<Value>(found - names.begin());
  }
  void number(const char* key, double* value, double least, double most) const {
    if (key_ != key) return;
    double read = 0;
    const char* const end = value_.data() + value_.size();
    const auto result = std::from_chars(value_.data(), end, read);
    if (result.ec == std::errc() && result.ptr == end && std::isfinite(read)) *value = std::clamp(read, least, most);
  }
  void text(const char* key, std::string* value) const {
    if (key_ == key) *value = value_;
  }

 private:
  std::string_view key_;
  std::string_view value_;
};

void readLine(const SettingsReader& line, ViewSettings* settings) {
  line.choice("zoom-mode", &settings->zoomMode, kZoomModes);
  line.number("zoom", &settings->zoom, ViewSettings::kLeastZoom, ViewSettings::kMostZoom);
  line.number("center-x", &settings->centerX, 0, 1);
  line.number("center-y", &settings->centerY, 0, 1);
  line.choice("compare", &settings->compare, kCompareModes);
  line.choice("split-direction", &settings->splitDirection, kSplitDirections);
  line.number("split", &settings->split, 0, 1);
  line.choice("channels", &settings->channels, kChannels);
  line.number("exposure", &settings->exposure, -ViewSettings::kMostExposure, ViewSettings::kMostExposure);
  line.number("gamma", &settings->gamma, ViewSettings::kLeastGamma, ViewSettings::kMostGamma);
  line.choice("transform", &settings->display.kind, kDisplays);
  line.text("display", &settings->display.display);
  line.text("view", &settings->display.view);
  line.choice("ground", &settings->ground, kGrounds);
  double color = settings->groundColor;
  line.number("ground-color", &color, 0, 0xFFFFFF);
  settings->groundColor = static_cast<std::uint32_t>(color);
  line.choice("pixel-grid", &settings->pixelGrid, kSwitch);
}

}  // namespace

std::string settingsText(const ViewSettings& settings) {
  const ViewSettings usual;
  SettingsWriter writer;
  writer.choice("zoom-mode", settings.zoomMode, usual.zoomMode, kZoomModes);
  writer.number("zoom", settings.zoom, usual.zoom);
  writer.number("center-x", settings.centerX, usual.centerX);
  writer.number("center-y", settings.centerY, usual.centerY);
  writer.choice("compare", settings.compare, usual.compare, kCompareModes);
  writer.choice("split-direction", settings.splitDirection, usual.splitDirection, kSplitDirections);
  writer.number("split", settings.split, usual.split);
  writer.choice("channels", settings.channels, usual.channels, kChannels);
  writer.number("exposure", settings.exposure, usual.exposure);
  writer.number("gamma", settings.gamma, usual.gamma);
  writer.choice("transform", settings.display.kind, usual.display.kind, kDisplays);
  if (!settings.display.display.empty()) writer.line("display", settings.display.display);
  if (!settings.display.view.empty()) writer.line("view", settings.display.view);
  writer.choice("ground", settings.ground, usual.ground, kGrounds);
  writer.number("ground-color", settings.groundColor, usual.groundColor);
  writer.choice("pixel-grid", settings.pixelGrid, usual.pixelGrid, kSwitch);
  return writer.text;
}

ViewSettings settingsFromText(const std::string& text) {
  ViewSettings settings;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t space = line.find(' ');
    if (space == std::string::npos) continue;
    const std::string_view whole = line;
    readLine({whole.substr(0, space), whole.substr(space + 1)}, &settings);
  }
  return settings;
}

}  // namespace host
