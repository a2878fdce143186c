// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/QuartzComposer/GFNodeManager.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Ports/VRTImage.h"
#include "Ports/VRTObjects.h"
#include "TarnCore/TCBitmap.h"
#include "Tests/Support/Lists.h"

#include <type_traits>
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

// Passes the channels of the pixel with this index, red to alpha, as what they are stored as.
template <class Use>
void withChannels(const VortoBitmap& bitmap, const Layout& layout, std::size_t pixel, Use use) {
  for (std::size_t i = 0; i < 4; ++i) {
    const std::size_t at = pixel * 4 + static_cast<std::size_t>(layout.places[i]);
    void* const data = bitmap.data;
    if (layout.channelBytes == 1) use(i, static_cast<std::uint8_t*>(data)[at]);
    if (layout.channelBytes == 2) use(i, static_cast<std::uint16_t*>(data)[at]);
    if (layout.channelBytes == 4) use(i, static_cast<float*>(data)[at]);
  }
}

inline double anyValue(const Layout& layout, std::mt19937& random) {
  if (layout.code != 9) return static_cast<double>(random() % (static_cast<unsigned>(layout.full) + 1));
  const float inf = std::numeric_limits<float>::infinity();
  const float specials[] = {0, -0.0F, 1, -1, 2, inf, -inf, std::nanf(""), 1e38F, -1e38F, 1e-44F, 0.5F};
  if (random() % 3 == 0) return specials[random() % std::size(specials)];
  return static_cast<float>(random() % 4001) / 1000 - 1;
}

inline Values premultipliedValues(const Layout& layout, std::mt19937& random) {
  const auto upTo = [&](double limit) {
    return layout.code == 9 ? limit * (random() % 1001) / 1000 : static_cast<double>(random() % (unsigned(limit) + 1));
  };
  const double alpha = random() % 4 == 0 ? 0 : random() % 3 == 0 ? layout.full : upTo(layout.full);
  return {upTo(alpha), upTo(alpha), upTo(alpha), alpha};
}

inline Values pixelAt(const VortoBitmap& bitmap, const Layout& layout, std::size_t x, std::size_t y) {
  Values values{};
  withChannels(bitmap, layout, y * bitmap.width + x, [&](std::size_t i, auto& channel) { values[i] = channel; });
  return values;
}

// Row by row.
inline std::vector<Values> pixelsOf(const VortoBitmap& bitmap, const Layout& layout) {
  std::vector<Values> pixels(std::size_t{bitmap.width} * bitmap.height);
  for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = pixelAt(bitmap, layout, i, 0);
  return pixels;
}

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
inline Bitmap makeImage(const Layout& layout, std::uint32_t width, std::uint32_t height,
                        const std::function<Values()>& pixel) {
  Bitmap bitmap(TCCreateBitmap(width, height, layout.code));
  EXPECT_TRUE(bitmap && bitmap->data);
  for (std::size_t at = 0; at < std::size_t{width} * height; ++at) {
    const Values values = pixel();
    withChannels(*bitmap, layout, at, [&](std::size_t i, auto& channel) {
      channel = static_cast<std::remove_reference_t<decltype(channel)>>(values[i]);
    });
  }
  return bitmap;
}

inline Bitmap makeImage(const Layout& layout, std::uint32_t width, std::uint32_t height,
                        const Values& everywhere = {}) {
  return makeImage(layout, width, height, [&] { return everywhere; });
}

enum class Noise {
  Premultiplied,  // every kind of alpha, many of them 0 and 1.0; colors up to alpha
  Anything,       // any value in any channel; floats also negative, huge, infinite and NaN
};

inline Bitmap randomImage(const Layout& layout, std::uint32_t width, std::uint32_t height, Noise noise, unsigned seed) {
  std::mt19937 random(seed);
  return makeImage(layout, width, height, [&] {
    Values values = premultipliedValues(layout, random);
    for (double& value : values) value = noise == Noise::Anything ? anyValue(layout, random) : value;
    return values;
  });
}

inline std::vector<std::uint8_t> pixelBytes(const VortoBitmap& bitmap) {
  const auto* bytes = static_cast<const std::uint8_t*>(bitmap.data);
  return {bytes, bytes + std::size_t{bitmap.width} * bitmap.height * bitmap.channels * (bitmap.bitsPerChannel / 8)};
}

// The plug-ins of the build; one manager for the process.
inline GFNodeManager& effects() {
  static const std::shared_ptr<GFNodeManager> manager = [] {
    auto made = std::make_shared<GFNodeManager>();
    made->initWithNamespace("effects under test");
    made->loadPlugInsInFolder(VORTO_TEST_PLUGINS, {"plugin", "qtz"});
    return made;
  }();
  return *manager;
}

// What a port takes: an image, a number, a state or an object. What it refuses is thrown.
using Setting = std::variant<ConstBitmap, double, PropertyList, NSObjectRef>;

inline void set(QCPatch& patch, const std::string& key, const Setting& setting) {
  QCPort* port = patch.portForKey(key);
  std::string reason = "no such port";
  bool isTaken = false;
  if (const auto* image = std::get_if<ConstBitmap>(&setting); image && dynamic_cast<QCImagePort*>(port)) {
    VRTImage::setBitmapOfPort(dynamic_cast<QCImagePort&>(*port), *image);
    isTaken = true;
  } else if (const auto* state = std::get_if<PropertyList>(&setting)) {
    isTaken = port && port->setStateValue(*state, &reason);
  } else if (const auto* object = std::get_if<NSObjectRef>(&setting)) {
    isTaken = port && port->setValue(*object);
  } else if (const auto* number = std::get_if<double>(&setting)) {
    isTaken = port && port->setValue(NSNumber::numberWithDouble(*number));
  }
  if (!isTaken) throw std::runtime_error("cannot set " + key + ": " + reason);
}

// A new instance with these settings.
inline std::shared_ptr<QCPatch> effectNamed(const std::string& name,
                                            const std::vector<std::pair<std::string, Setting>>& settings = {}) {
  auto patch = effects().nodeInstanceWithName(name);
  if (!patch) throw std::runtime_error("there is no effect " + name + " in " VORTO_TEST_PLUGINS);
  for (const auto& [key, setting] : settings) set(*patch, key, setting);
  return patch;
}

struct Outcome {
  bool succeeded;
  std::string reason;
  ConstBitmap image;
};
inline Outcome run(QCPatch& patch) {
  Outcome outcome{};
  outcome.succeeded = patch.executeAtTime(0, &outcome.reason);
  outcome.image = VRTImage::bitmapOfPort(dynamic_cast<QCImagePort&>(*patch.portForKey("outputImage")));
  return outcome;
}

// run() of what must succeed with an image.
inline ConstBitmap rendered(QCPatch& patch) {
  Outcome outcome = run(patch);
  if (!outcome.succeeded || !outcome.image) throw std::runtime_error("no image: " + outcome.reason);
  return outcome.image;
}

// A gradient state of linear segments: position, red, green, blue; and position, alpha.
inline PropertyList linearGradient(const std::vector<std::array<double, 4>>& colors,
                                   const std::vector<std::array<double, 2>>& opacities) {
  const auto samplesOf = [](const auto& stops) {
    PropertyList samples = PropertyList::array();
    for (const auto& stop : stops) {
      for (const double entry : {stop[0], 0.5, 1.0}) samples.append(PropertyList::real(entry));
      for (std::size_t i = 1; i < stop.size(); ++i) samples.append(PropertyList::real(stop[i]));
    }
    return samples;
  };
  return dict({{"rgbSamples", samplesOf(colors)}, {"alphaSamples", samplesOf(opacities)}});
}

// The levels state of no change.
inline PropertyList neutralLevels() {
  return *VRTHistogram::histogram()->stateValue();
}
