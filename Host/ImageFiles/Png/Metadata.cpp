// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Png/Metadata.h"

#include "Host/ImageFiles/Exif.h"
#include "Host/ImageFiles/IccModel.h"
#include "Host/ImageFiles/Png/Deflate.h"
#include "Host/ImageFiles/Ratio.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace host {
namespace {

constexpr double kFixedPoint = 100000;  // what gamma and chromaticities are multiplied with
constexpr std::uint32_t kLargestRatio = 1000000;
constexpr std::size_t kLargestProfile = 1 << 24;

double fixedPoint(const PngChunk& chunk, std::size_t index) {
  return pngNumber(&chunk.data[4 * index]) / kFixedPoint;
}

// A name of 1 to 79 characters, a zero, the method 0, and the compressed profile. What is damaged is passed on as it
// is, so that the program can say so.
void readProfile(const PngChunk& chunk, ColorTag* color) {
  if (!color->iccProfile.empty()) return;
  const auto name = chunk.data.first(std::min<std::size_t>(chunk.data.size(), 80));
  const auto end = std::find(name.begin(), name.end(), 0);
  const auto length = static_cast<std::size_t>(end - name.begin());
  Bytes profile;
  if (end != name.end() && length > 0 && chunk.data.size() >= length + 2 && chunk.data[length + 1] == 0) {
    profile = inflated(chunk.data.subspan(length + 2), kLargestProfile);
  }
  if (profile.empty()) {
    profile.assign(chunk.data.begin(), chunk.data.end());
  } else if (profile.size() >= kIccHeaderSize) {
    profile.resize(std::min<std::size_t>(profile.size(), std::max(pngNumber(profile.data()), 1u)));
  }
  color->iccProfile = std::move(profile);
}

void readPrimaries(const PngChunk& chunk, ColorTag* color) {
  if (chunk.data.size() != 32 || color->primaries) return;
  const auto point = [&](std::size_t index) {
    return Chromaticity{fixedPoint(chunk, 2 * index), fixedPoint(chunk, 2 * index + 1)};
  };
  color->primaries = Primaries{point(1), point(2), point(3), point(0)};
}

void readCodePoints(const PngChunk& chunk, ColorTag* color) {
  if (chunk.data.size() != 4 || chunk.data[3] > 1 || color->codePoints) return;
  color->codePoints = CodePoints{chunk.data[0], chunk.data[1], chunk.data[2], chunk.data[3] == 1};
}

// Pixels to the meter, or to an unknown unit.
void readResolution(const PngChunk& chunk, FileMetadata* metadata) {
  if (chunk.data.size() != 9 || metadata->resolution || metadata->pixelAspect) return;
  const std::uint32_t x = pngNumber(&chunk.data[0]);
  const std::uint32_t y = pngNumber(&chunk.data[4]);
  const int unit = chunk.data[8];
  if (x == 0 || y == 0 || unit > 1) return;
  if (unit == 1) metadata->resolution = Resolution{x / 100.0, y / 100.0, Resolution::Unit::Centimeter};
  if (x != y) metadata->pixelAspect = static_cast<double>(y) / x;
}

void appendFixedPoint(double value, Bytes* data) {
  const double largest = std::numeric_limits<std::int32_t>::max();
  appendPngNumber(static_cast<std::uint32_t>(std::clamp(std::round(value * kFixedPoint), 0.0, largest)), data);
}

void appendProfile(const Bytes& profile, Bytes* file) {
  Bytes data{'I', 'C', 'C', 0, 0};
  const Bytes compressed = deflated(profile);
  data.insert(data.end(), compressed.begin(), compressed.end());
  appendPngChunk(pngType("iCCP"), data, file);
}

void appendResolution(const FileMetadata& metadata, Bytes* file) {
  std::array<std::uint32_t, 2> perUnit{0, 0};
  if (metadata.resolution) {
    const double unit = metadata.resolution->unit == Resolution::Unit::Inch ? 100 / 2.54 : 100;
    const std::array<double, 2> perMeter{std::round(metadata.resolution->x * unit),
                                         std::round(metadata.resolution->y * unit)};
    for (std::size_t i = 0; i < 2; ++i) {
      if (perMeter[i] >= 1 && perMeter[i] <= std::numeric_limits<std::int32_t>::max()) {
        perUnit[i] = static_cast<std::uint32_t>(perMeter[i]);
      }
    }
  } else if (const double aspect = metadata.pixelAspect.value_or(1); aspect >= 1e-3 && aspect <= 1e3 && aspect != 1) {
    const auto [height, width] = ratioOf(aspect, kLargestRatio);
    perUnit = {width, height};
  }
  if (perUnit[0] == 0 || perUnit[1] == 0) return;
  Bytes data;
  for (const std::uint32_t number : perUnit) appendPngNumber(number, &data);
  data.push_back(metadata.resolution ? 1 : 0);
  appendPngChunk(pngType("pHYs"), data, file);
}

}  // namespace

bool readPngMetadata(const PngChunk& chunk, FileMetadata* metadata, int* orientation) {
  ColorTag& color = metadata->color;
  switch (chunk.type) {
    case pngType("iCCP"):
      readProfile(chunk, &color);
      return true;
    case pngType("sRGB"):
      if (chunk.data.size() == 1 && chunk.data[0] <= 3 && !color.sRGBIntent) color.sRGBIntent = chunk.data[0];
      return true;
    case pngType("gAMA"):
      if (chunk.data.size() == 4 && pngNumber(chunk.data.data()) > 0 && !color.gamma)
        color.gamma = fixedPoint(chunk, 0);
      return true;
    case pngType("cHRM"):
      readPrimaries(chunk, &color);
      return true;
    case pngType("cICP"):
      readCodePoints(chunk, &color);
      return true;
    case pngType("pHYs"):
      readResolution(chunk, metadata);
      return true;
    case pngType("eXIf"):
      if (metadata->exif.empty()) {
        *orientation = exifOrientation(chunk.data);
        metadata->exif = uprightExif(chunk.data);
      }
      return true;
    default:
      return false;
  }
}

void appendPngMetadata(const FileMetadata& metadata, Channels channels, Bytes* file) {
  const ColorTag& color = metadata.color;
  if (color.codePoints && color.codePoints->matrix == 0) {
    const CodePoints& points = *color.codePoints;
    const Bytes data{points.primaries, points.transfer, 0, static_cast<std::uint8_t>(points.isFullRange)};
    appendPngChunk(pngType("cICP"), data, file);
  }
  if (isProfileFor(color.iccProfile, channels)) {
    appendProfile(color.iccProfile, file);
  } else if (color.sRGBIntent && *color.sRGBIntent <= 3) {
    appendPngChunk(pngType("sRGB"), Bytes{*color.sRGBIntent}, file);
  }
  if (color.gamma && *color.gamma > 0) {
    Bytes data;
    appendFixedPoint(*color.gamma, &data);
    appendPngChunk(pngType("gAMA"), data, file);
  }
  if (color.primaries) {
    Bytes data;
    for (const Chromaticity& point :
         {color.primaries->white, color.primaries->red, color.primaries->green, color.primaries->blue}) {
      appendFixedPoint(point.x, &data);
      appendFixedPoint(point.y, &data);
    }
    appendPngChunk(pngType("cHRM"), data, file);
  }
  appendResolution(metadata, file);
  if (!metadata.exif.empty()) appendPngChunk(pngType("eXIf"), metadata.exif, file);
}

}  // namespace host
