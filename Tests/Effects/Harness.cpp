// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Effects/Harness.h"

#include "Ports/VRTImage.h"
#include "Ports/VRTObjects.h"
#include "Tests/Support/Lists.h"

#include <type_traits>

namespace {

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
  withChannels(bitmap, layout, y * bitmap.width + x, [&](std::size_t i, auto& channel) { values[i] = channel; });
  return values;
}

std::vector<Values> pixelsOf(const VortoBitmap& bitmap, const Layout& layout) {
  std::vector<Values> pixels(std::size_t{bitmap.width} * bitmap.height);
  for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = pixelAt(bitmap, layout, i, 0);
  return pixels;
}

Bitmap makeImage(const Layout& layout, std::uint32_t width, std::uint32_t height,
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

Bitmap makeImage(const Layout& layout, std::uint32_t width, std::uint32_t height, const Values& everywhere) {
  return makeImage(layout, width, height, [&] { return everywhere; });
}

Bitmap randomImage(const Layout& layout, std::uint32_t width, std::uint32_t height, Noise noise, unsigned seed) {
  std::mt19937 random(seed);
  return makeImage(layout, width, height, [&] {
    Values values = premultipliedValues(layout, random);
    for (double& value : values) value = noise == Noise::Anything ? anyValue(layout, random) : value;
    return values;
  });
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

void set(QCPatch& patch, const std::string& key, const Setting& setting) {
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

std::shared_ptr<QCPatch> effectNamed(const std::string& name,
                                     const std::vector<std::pair<std::string, Setting>>& settings) {
  auto patch = effects().nodeInstanceWithName(name);
  if (!patch) throw std::runtime_error("there is no effect " + name + " in " VORTO_TEST_PLUGINS);
  for (const auto& [key, setting] : settings) set(*patch, key, setting);
  return patch;
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
