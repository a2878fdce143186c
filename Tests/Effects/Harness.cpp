// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Effects/Harness.h"

#include "Ports/VRTImage.h"
#include "Ports/VRTObjects.h"
#include "Tests/Support/Lists.h"

#include <cmath>
#include <limits>
#include <type_traits>

namespace {

// Passes a channel of a pixel, red to alpha, as what it is stored as.
template <class Use>
void withChannel(const VortoBitmap& bitmap, const Layout& layout, std::size_t x, std::size_t y, int place, Use use) {
  const std::size_t index = (y * bitmap.width + x) * 4 + static_cast<std::size_t>(layout.places[place]);
  void* const data = bitmap.data;
  if (layout.channelBytes == 1) use(static_cast<std::uint8_t*>(data)[index]);
  if (layout.channelBytes == 2) use(static_cast<std::uint16_t*>(data)[index]);
  if (layout.channelBytes == 4) use(static_cast<float*>(data)[index]);
}

double anyValue(const Layout& layout, std::mt19937& random) {
  if (layout.code != 9) return static_cast<double>(random() % (static_cast<unsigned>(layout.full) + 1));
  const float inf = std::numeric_limits<float>::infinity();
  const float specials[] = {0, -0.0F, 1, -1, 2, inf, -inf, std::nanf(""), 1e38F, -1e38F, 1e-44F, 0.5F};
  if (random() % 3 == 0) return specials[random() % std::size(specials)];
  return static_cast<float>(random() % 4001) / 1000 - 1;
}

Values premultipliedValues(const Layout& layout, std::mt19937& random) {
  const auto upTo = [&](double limit) {
    return layout.code == 9 ? limit * (random() % 1001) / 1000 : static_cast<double>(random() % (unsigned(limit) + 1));
  };
  const double alpha = random() % 4 == 0 ? 0 : random() % 3 == 0 ? layout.full : upTo(layout.full);
  return {upTo(alpha), upTo(alpha), upTo(alpha), alpha};
}

}  // namespace

Values pixelAt(const VortoBitmap& bitmap, const Layout& layout, std::size_t x, std::size_t y) {
  Values values{};
  for (int i = 0; i < 4; ++i) withChannel(bitmap, layout, x, y, i, [&](auto& channel) { values[i] = channel; });
  return values;
}

void setPixel(VortoBitmap& bitmap, const Layout& layout, std::size_t x, std::size_t y, const Values& values) {
  for (int i = 0; i < 4; ++i) {
    withChannel(bitmap, layout, x, y, i,
                [&](auto& channel) { channel = static_cast<std::remove_reference_t<decltype(channel)>>(values[i]); });
  }
}

std::vector<Values> pixelsOf(const VortoBitmap& bitmap, const Layout& layout) {
  std::vector<Values> pixels;
  for (std::size_t i = 0; i < std::size_t{bitmap.width} * bitmap.height; ++i) {
    pixels.push_back(pixelAt(bitmap, layout, i % bitmap.width, i / bitmap.width));
  }
  return pixels;
}

Bitmap makeImage(const Layout& layout, std::uint32_t width, std::uint32_t height, const Values& everywhere) {
  Bitmap bitmap(TCCreateBitmap(width, height, layout.code));
  EXPECT_TRUE(bitmap && bitmap->data);
  for (std::size_t i = 0; i < std::size_t{width} * height; ++i) {
    setPixel(*bitmap, layout, i % width, i / width, everywhere);
  }
  return bitmap;
}

Bitmap randomImage(const Layout& layout, std::uint32_t width, std::uint32_t height, Noise noise, unsigned seed) {
  std::mt19937 random(seed);
  Bitmap bitmap = makeImage(layout, width, height);
  for (std::size_t i = 0; i < std::size_t{width} * height; ++i) {
    Values values = premultipliedValues(layout, random);
    if (noise == Noise::Anything) {
      for (double& value : values) value = anyValue(layout, random);
    }
    setPixel(*bitmap, layout, i % width, i / width, values);
  }
  return bitmap;
}

std::vector<std::uint8_t> pixelBytes(const VortoBitmap& bitmap) {
  const auto* bytes = static_cast<const std::uint8_t*>(bitmap.data);
  return {bytes, bytes + std::size_t{bitmap.width} * bitmap.height * bitmap.channels * (bitmap.bitsPerChannel / 8)};
}

GFNodeManager& effects() {
  static const std::shared_ptr<GFNodeManager> manager = [] {
    auto made = std::make_shared<GFNodeManager>();
    made->initWithNamespace("effects under test");
    made->loadPlugInsInFolder(VORTO_TEST_PLUGINS, {"plugin", "qtz"});
    return made;
  }();
  return *manager;
}

std::shared_ptr<QCPatch> effectNamed(const std::string& name) {
  auto patch = effects().nodeInstanceWithName(name);
  if (!patch) throw std::runtime_error("there is no effect " + name + " in " VORTO_TEST_PLUGINS);
  return patch;
}

void setImage(QCPatch& patch, const std::string& key, ConstBitmap bitmap) {
  auto* port = dynamic_cast<QCImagePort*>(patch.portForKey(key));
  if (!port) throw std::runtime_error("there is no image port " + key);
  VRTImage::setBitmapOfPort(*port, std::move(bitmap));
}

void setNumber(QCPatch& patch, const std::string& key, double value) {
  QCPort* port = patch.portForKey(key);
  if (!port || !port->setValue(NSNumber::numberWithDouble(value))) throw std::runtime_error(key + " takes no number");
}

void setState(QCPatch& patch, const std::string& key, const PropertyList& state) {
  QCPort* port = patch.portForKey(key);
  std::string reason;
  if (!port || !port->setStateValue(state, &reason)) throw std::runtime_error(key + " takes no state: " + reason);
}

Outcome run(QCPatch& patch) {
  Outcome outcome{};
  outcome.succeeded = patch.executeAtTime(0, &outcome.reason);
  outcome.image = VRTImage::bitmapOfPort(dynamic_cast<QCImagePort&>(*patch.portForKey("outputImage")));
  return outcome;
}

ConstBitmap rendered(QCPatch& patch) {
  Outcome outcome = run(patch);
  if (!outcome.succeeded || !outcome.image) throw std::runtime_error("no image: " + outcome.reason);
  return outcome.image;
}

PropertyList linearGradient(const std::vector<std::array<double, 4>>& colors,
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

PropertyList neutralLevels() {
  return *VRTHistogram::histogram()->stateValue();
}
