// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/QuartzComposer/GFNodeManager.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "TarnCore/TCBitmap.h"

#include <variant>

using Bitmap = std::shared_ptr<VortoBitmap>;
using ConstBitmap = std::shared_ptr<const VortoBitmap>;

// A layout that effects take, described here once more so that a mistake in the effects' own description shows.
struct Layout {
  std::uint32_t code;
  std::size_t channelBytes;
  std::array<int, 4> places;  // of red, green, blue, alpha
  double full;                // what 1.0 is
  const char* name;
};
inline constexpr std::array<Layout, 4> layouts{{
    {0, 1, {0, 1, 2, 3}, 255, "RGBA8"},
    {1, 1, {1, 2, 3, 0}, 255, "ARGB8"},
    {4, 2, {0, 1, 2, 3}, 65535, "RGBA16"},
    {9, 4, {0, 1, 2, 3}, 1, "RGBAFloat"},
}};

// Red, green, blue, alpha in the layout's own units: 0 to 255, 0 to 65535, or as they are.
using Values = std::array<double, 4>;
Values pixelAt(const VortoBitmap& bitmap, const Layout& layout, std::size_t x, std::size_t y);
std::vector<Values> pixelsOf(const VortoBitmap& bitmap, const Layout& layout);  // row by row

// Expects every pixel within the tolerance of wanted(x, y), in the layout's units.
template <class Wanted>
void expectPixels(const ConstBitmap& image, const Layout& layout, double tolerance, Wanted wanted) {
  for (std::size_t i = 0; i < std::size_t{image->width} * image->height; ++i) {
    const std::size_t x = i % image->width, y = i / image->width;
    const Values got = pixelAt(*image, layout, x, y), want = wanted(x, y);
    for (int c = 0; c < 4; ++c) {
      ASSERT_NEAR(got[c], want[c], tolerance) << layout.name << ": channel " << c << " at " << x << ", " << y;
    }
  }
}

// An image with each pixel as the function gives it, row by row; of one color, or of random ones.
Bitmap makeImage(const Layout& layout, std::uint32_t width, std::uint32_t height, const std::function<Values()>& pixel);
Bitmap makeImage(const Layout& layout, std::uint32_t width, std::uint32_t height, const Values& everywhere = {});
enum class Noise {
  Premultiplied,  // every kind of alpha, many of them 0 and 1.0; colors up to alpha
  Anything,       // any value in any channel; floats also negative, huge, infinite and NaN
};
Bitmap randomImage(const Layout& layout, std::uint32_t width, std::uint32_t height, Noise noise, unsigned seed);
std::vector<std::uint8_t> pixelBytes(const VortoBitmap& bitmap);

// The plug-ins of the build; one manager for the process.
GFNodeManager& effects();

// What a port takes: an image, a number, a state or an object. What it refuses is thrown.
using Setting = std::variant<ConstBitmap, double, PropertyList, NSObjectRef>;
void set(QCPatch& patch, const std::string& key, const Setting& setting);
// A new instance with these settings.
std::shared_ptr<QCPatch> effectNamed(const std::string& name,
                                     const std::vector<std::pair<std::string, Setting>>& settings = {});

struct Outcome {
  bool succeeded;
  std::string reason;
  ConstBitmap image;
};
Outcome run(QCPatch& patch);
// run() of what must succeed with an image.
ConstBitmap rendered(QCPatch& patch);

// A gradient state of linear segments: position, red, green, blue; and position, alpha.
PropertyList linearGradient(const std::vector<std::array<double, 4>>& colors,
                            const std::vector<std::array<double, 2>>& opacities);
// The levels state of no change.
PropertyList neutralLevels();
