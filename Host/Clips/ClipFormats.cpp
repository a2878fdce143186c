// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/ClipFormats.h"

#include "Host/Messages/CloseNames.h"
#include "Host/Messages/Failure.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <sstream>
#include <string_view>

namespace host {
namespace {

const char* const kPresets = "ultrafast superfast veryfast faster fast medium slow slower veryslow";
const char* const kNumbers8 = "8 7 6 5 4 3 2 1 0";
const char* const kNumbers12 = "12 11 10 9 8 7 6 5 4 3 2 1 0";

const std::array<ClipCodec, 8>& codecs() {
  static const std::array<ClipCodec, 8> kCodecs = {{
      {"h264",
       "H.264",
       false,
       10,
       false,
       "420 422 444",
       kPresets,
       "medium",
       {18, 48.4, 8},
       true,
       2,
       2,
       {{"420", {8, 10}, {}, 2, 2}, {"422", {8, 10}, {}, 2, 1}, {"444", {8, 10}, {}}}},
      {"hevc",
       "HEVC",
       false,
       12,
       false,
       "420 422 444",
       kPresets,
       "medium",
       {20, 50.4, 10},
       true,
       16,
       16,
       {{"420", {8, 10, 12}, {}, 2, 2}, {"422", {8, 10, 12}, {}, 2, 1}, {"444", {8, 10, 12}, {}}}},
      {"vp9",
       "VP9",
       true,
       12,
       false,
       "420 422 444",
       kNumbers8,
       "2",
       {24, 60, 12},
       true,
       1,
       1,
       {{"420", {8, 10, 12}, {8}}, {"422", {8, 10, 12}, {}}, {"444", {8, 10, 12}, {}}}},
      {"av1",
       "AV1",
       false,
       10,
       false,
       "420 422 444",
       kNumbers12,
       "8",
       {30, 63, 19},
       true,
       1,
       1,
       {{"420", {8, 10}, {}}, {"422", {8, 10}, {}}, {"444", {8, 10}, {}}}},
      {"prores",
       "ProRes",
       true,
       10,
       false,
       "422 444",
       "",
       "",
       {},
       true,
       1,
       1,
       {{"422", {10}, {}}, {"444", {10}, {10}}}},
      {"dnxhr",
       "DNxHR",
       false,
       10,
       false,
       "422 444",
       "",
       "",
       {},
       true,
       256,
       120,
       {{"422", {8, 10}, {}}, {"444", {10}, {}}}},
      {"ffv1",
       "FFV1",
       true,
       16,
       true,
       "rgb 444 422 420",
       "",
       "",
       {},
       false,
       1,
       1,
       {{"rgb", {8, 16}, {8, 16}},
        {"444", {8, 10, 12, 16}, {8, 10, 16}},
        {"422", {8, 10, 12, 16}, {8, 10, 16}},
        {"420", {8, 10, 12, 16}, {8, 10, 16}}}},
      {"png", "PNG", true, 16, true, "rgb", "", "", {}, false, 1, 1, {{"rgb", {8, 16}, {8, 16}}}},
  }};
  return kCodecs;
}

constexpr std::array<ClipContainer, 5> kContainers = {{
    {"MP4", "mp4 m4v", "h264 hevc av1 vp9", true, false},
    {"QuickTime", "mov", "prores h264 hevc dnxhr png", true, false},
    {"Matroska", "mkv", "h264 hevc vp9 av1 prores ffv1 png", true, true},
    {"WebM", "webm", "vp9 av1", true, true},
    {"AVI", "avi", "ffv1 png", false, false},
}};

std::vector<std::string> words(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> result;
  for (std::string word; stream >> word;) result.push_back(word);
  return result;
}

bool isOneOf(const std::string& word, const std::string& text) {
  return std::ranges::count(words(text), word) > 0;
}

std::string sizeText(std::uint32_t width, std::uint32_t height) {
  return std::to_string(width) + " x " + std::to_string(height);
}

const ClipCodec* codecNamed(const std::string& name) {
  const auto found = std::ranges::find(codecs(), std::string_view(name), &ClipCodec::name);
  return found == codecs().end() ? nullptr : &*found;
}

bool mayHoldAlpha(const ClipContainer& container, const ClipCodec& codec) {
  return codec.holdsAlpha && (codec.name != std::string_view("vp9") || container.holdsVp9Alpha);
}

const ClipLayout& layoutOf(const ClipCodec& codec, const std::string& sampling) {
  return *std::ranges::find(codec.layouts, sampling, &ClipLayout::sampling);
}

bool fits(const ClipLayout& layout, const FrameKind& kind) {
  return kind.width % layout.widthStep == 0 && kind.height % layout.heightStep == 0;
}

// The layout that the settings say, or else the usual one of those that hold what the frames have.
const ClipLayout& chosenLayout(const ClipCodec& codec, const ClipSettings& settings, bool needsAlpha) {
  if (!settings.sampling.empty()) return layoutOf(codec, settings.sampling);
  const auto found = std::ranges::find_if(
      codec.layouts, [&](const ClipLayout& layout) { return !needsAlpha || !layout.alphaBits.empty(); });
  return found == codec.layouts.end() ? codec.layouts.front() : *found;
}

void checkSize(const ClipCodec& codec, const ClipLayout& layout, const FrameKind& kind) {
  const std::string title = codec.title;
  const std::string found = ", and these are " + sizeText(kind.width, kind.height);
  if (kind.width < codec.smallestWidth || kind.height < codec.smallestHeight) {
    throw Failure(ExitCode::Usage, title + " takes frames of " + sizeText(codec.smallestWidth, codec.smallestHeight) +
                                       " pixels and more" + found);
  }
  if (fits(layout, kind)) return;
  const std::string even = layout.heightStep == 1 ? "an even width" : "an even width and height";
  const auto up = [](std::uint32_t size, std::uint32_t step) { return (size + step - 1) / step * step; };
  std::string others;
  for (const ClipLayout& other : codec.layouts) {
    if (fits(other, kind)) others += std::string(" or --sampling ") + other.sampling;
  }
  throw Failure(ExitCode::Usage, title + " with --sampling " + layout.sampling + " takes frames of " + even + found +
                                     ": give --size " + std::to_string(up(kind.width, layout.widthStep)) + "x" +
                                     std::to_string(up(kind.height, layout.heightStep)) + others);
}

void checkAlpha(const ClipContainer& container, const ClipCodec& codec, const ClipLayout& layout) {
  if (!mayHoldAlpha(container, codec)) {
    throw Failure(ExitCode::Usage, std::string(codec.title) + " in " + container.name + " holds no alpha");
  }
  if (!layout.alphaBits.empty()) return;
  throw Failure(ExitCode::Usage, std::string(codec.title) + " with --sampling " + layout.sampling + " holds no alpha");
}

// The smallest that is enough, or else the largest.
int nearestBits(const std::vector<int>& held, int wanted) {
  const auto found = std::ranges::find_if(held, [&](int bits) { return bits >= wanted; });
  return found == held.end() ? held.back() : *found;
}

}  // namespace

const ClipContainer* clipContainerNamed(std::string extension) {
  for (char& c : extension) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  const auto found = std::ranges::find_if(
      kContainers, [&](const ClipContainer& container) { return isOneOf(extension, container.extensions); });
  return found == kContainers.end() ? nullptr : &*found;
}

const ClipContainer* clipContainerOf(const std::string& path) {
  const std::string extension = std::filesystem::path(path).extension().string();
  return extension.empty() ? nullptr : clipContainerNamed(extension.substr(1));
}

const ClipCodec& clipCodecIn(const ClipContainer& container, const std::string& name) {
  const std::vector<std::string> held = words(container.codecs);
  if (name.empty()) return *codecNamed(held.front());
  const ClipCodec* codec = codecNamed(name);
  if (!codec) {
    std::vector<std::string> known;
    for (const ClipCodec& each : codecs()) known.emplace_back(each.name);
    throw Failure(ExitCode::Usage, "--codec " + name + ": give " + joinedNames(known, " or "));
  }
  if (!isOneOf(name, container.codecs)) {
    throw Failure(ExitCode::Usage,
                  std::string(container.name) + " does not hold " + name + ": it takes " + joinedNames(held, " or "));
  }
  return *codec;
}

void checkClipSettings(const ClipCodec& codec, const ClipSettings& settings) {
  const std::string name = codec.name;
  const auto check = [&](const char* option, const std::string& value, const std::string& known) {
    if (value.empty() || isOneOf(value, known)) return;
    const std::string wanted =
        known.empty() ? name + " knows none" : name + " takes " + joinedNames(words(known), " or ");
    throw Failure(ExitCode::Usage, std::string(option) + " " + value + ": " + wanted);
  };
  check("--sampling", settings.sampling, codec.samplings);
  check("--speed", settings.speed, codec.speeds);
  if (settings.quality == -1) return;
  const std::string given = "--quality " + std::to_string(settings.quality);
  if (!codec.takesQuality) throw Failure(ExitCode::Usage, given + ": " + name + " loses nothing, and knows none");
  if (settings.quality < 1 || settings.quality > 100) throw Failure(ExitCode::Usage, given + ": give 1 to 100");
}

bool holdsAlpha(const ClipContainer& container, const ClipSettings& settings) {
  const ClipCodec& codec = clipCodecIn(container, settings.codec);
  checkClipSettings(codec, settings);
  return mayHoldAlpha(container, codec) && !chosenLayout(codec, settings, true).alphaBits.empty();
}

ClipStorage clipStorage(const ClipContainer& container, const ClipSettings& settings, const FrameKind& kind, int bits) {
  const ClipCodec& codec = clipCodecIn(container, settings.codec);
  checkClipSettings(codec, settings);
  const bool needsAlpha = hasAlpha(kind.channels);
  const ClipLayout& layout = chosenLayout(codec, settings, needsAlpha);
  if (needsAlpha) checkAlpha(container, codec, layout);
  checkSize(codec, layout, kind);
  const bool isDeep = kind.sample != SampleType::UInt8;
  int wanted = isDeep ? bits : 8;
  if (layout.sampling == std::string_view("rgb")) wanted = isDeep ? 16 : 8;
  if (!codec.isLossless && wanted > 12) wanted = 10;
  return {layout.sampling, nearestBits(needsAlpha ? layout.alphaBits : layout.bits, wanted), needsAlpha};
}

}  // namespace host
