// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/QuartzComposer/QCPatch.h"
#include "Ports/VRTImage.h"
#include "Ports/VRTObjects.h"
#include "Ports/VRTPorts.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixel.h"

#include <algorithm>
#include <initializer_list>
#include <limits>
#include <utility>
#include <vector>

// What effects are made of: attributes, and pixels of the four layouts that flow between patches, as floats.

using Texts = std::initializer_list<std::pair<const char*, const char*>>;

// What an effect of a kind says of itself; `roles` names the ports that play the kind's roles.
inline PropertyList describe(const char* name, const char* text, const char* kind, Texts roles, bool dependsOnTime) {
  PropertyList ports;
  for (const auto& [role, key] : roles) ports.set(role, PropertyList::string(key));
  PropertyList protocols;
  protocols.set(kind, std::move(ports));
  PropertyList attributes;
  attributes.set("name", PropertyList::string(name));
  attributes.set("description", PropertyList::string(text));
  attributes.set("protocols", std::move(protocols));
  attributes.set("dependsOnTime", PropertyList::boolean(dependsOnTime));
  attributes.set("keepsState", PropertyList::boolean(false));
  return attributes;
}

inline PropertyList named(const char* name) {
  PropertyList attributes;
  attributes.set("name", PropertyList::string(name));
  return attributes;
}

inline PropertyList number(const char* name, double minimum, double maximum, double initial) {
  PropertyList attributes = named(name);
  attributes.set("minimum", PropertyList::real(minimum));
  attributes.set("maximum", PropertyList::real(maximum));
  attributes.set("default", PropertyList::real(initial));
  return attributes;
}

inline PropertyList wholeNumber(const char* name, int minimum, int maximum, int initial) {
  PropertyList attributes = named(name);
  attributes.set("minimum", PropertyList::integer(minimum));
  attributes.set("maximum", PropertyList::integer(maximum));
  attributes.set("default", PropertyList::integer(initial));
  return attributes;
}

inline PropertyList choice(const char* name, std::initializer_list<const char*> entries) {
  PropertyList menu = PropertyList::array();
  for (const char* entry : entries) menu.append(PropertyList::string(entry));
  PropertyList attributes = wholeNumber(name, 0, static_cast<int>(entries.size()) - 1, 0);
  attributes.set("menu", std::move(menu));
  return attributes;
}

// Values of 0 to 1; floats may leave that range. Premultiplied, as in images.
struct Color {
  float red = 0, green = 0, blue = 0, alpha = 0;
};

inline Color scaled(Color color, float by) {
  return {color.red * by, color.green * by, color.blue * by, color.alpha * by};
}

inline Color sum(Color a, Color b) {
  return {a.red + b.red, a.green + b.green, a.blue + b.blue, a.alpha + b.alpha};
}

inline Color between(Color a, Color b, float part) {
  return sum(scaled(a, 1 - part), scaled(b, part));
}

// A color that is not premultiplied, under an opacity.
inline Color premultiplied(float red, float green, float blue, float alpha) {
  return {red * alpha, green * alpha, blue * alpha, alpha};
}

// How bright the color is, without its opacity: 0 to 1.
inline float brightness(Color color) {
  const float luma = 0.299F * color.red + 0.587F * color.green + 0.114F * color.blue;
  return color.alpha > 0 ? std::clamp(luma / color.alpha, 0.0F, 1.0F) : 0;
}

// A new gradient of opaque colors at even distances.
inline std::shared_ptr<VRTGradient> gradientOf(const std::vector<Color>& colors) {
  constexpr int linear = 1;
  PropertyList samples = PropertyList::array();
  for (std::size_t i = 0; i < colors.size(); ++i) {
    samples.append(PropertyList::real(colors.size() > 1 ? double(i) / double(colors.size() - 1) : 0));
    samples.append(PropertyList::real(0.5));  // where the middle between this color and the next lies
    samples.append(PropertyList::integer(linear));
    for (const float each : {colors[i].red, colors[i].green, colors[i].blue}) samples.append(PropertyList::real(each));
  }
  PropertyList state;
  state.set("rgbSamples", std::move(samples));
  auto gradient = VRTGradient::gradient();
  gradient->initWithStateValue(state);
  return gradient;
}

// A gradient read once a frame. A port that was emptied holds transparent black.
class GradientTable {
 public:
  explicit GradientTable(const VRTGradientPort& port) : table_(kSteps) {
    const auto gradient = std::dynamic_pointer_cast<VRTGradient>(port.value());
    if (gradient) gradient->getGradientFloat(&table_.front().alpha, kSteps);
  }
  // The color at a position of 0 to 1.
  Color at(float position) const {
    const float place = position > 0 ? std::min(position, 1.0F) * (kSteps - 1) : 0;  // NaN counts as 0
    const Entry& entry = table_[static_cast<std::size_t>(place + 0.5F)];
    return premultiplied(entry.red, entry.green, entry.blue, entry.alpha);
  }

 private:
  static constexpr std::uint32_t kSteps = 4096;
  struct Entry {
    float alpha = 0, red = 0, green = 0, blue = 0;
  };
  std::vector<Entry> table_;
};

// A bitmap whose pixels the caller sets, every one; null, with the reason, when there is no room for it.
inline std::shared_ptr<VortoBitmap> makeBitmap(std::uint32_t width, std::uint32_t height, std::uint32_t formatCode,
                                               std::string* reason) {
  constexpr std::uint64_t most = std::numeric_limits<std::uint32_t>::max() - 65536;  // bytes
  const std::uint64_t pixels = std::uint64_t{width} * height;
  std::shared_ptr<VortoBitmap> bitmap;
  if (pixels <= most / TCPixelLayoutOf(formatCode).bytesPerPixel()) {
    bitmap.reset(TCCreateUnsetBitmap(width, height, formatCode));
  }
  if (bitmap && bitmap->data) return bitmap;
  *reason = "no room for an image of " + std::to_string(width) + " x " + std::to_string(height) + " pixels";
  return nullptr;
}

// Calls work(pixel) with a pixel of the layout's type.
template <class Work>
void withPixelOf(std::uint32_t formatCode, Work work) {
  switch (formatCode) {
    case VortoPixelFormat::ARGB8:
      return work(VortoPixel4<std::uint8_t, VortoPixelInfoARGB8>());
    case VortoPixelFormat::RGBA16:
      return work(VortoPixel4<std::uint16_t, VortoPixelInfoRGBA16>());
    case VortoPixelFormat::RGBAFloat:
      return work(VortoPixel4<float, VortoPixelInfoRGBAFloat>());
    default:
      return work(VortoPixel4<std::uint8_t, VortoPixelInfoRGBA8>());
  }
}

// Transparent beyond the edges.
template <class Pixel>
Color colorAt(const VortoBitmap& bitmap, std::uint32_t x, std::uint32_t y) {
  if (x >= bitmap.width || y >= bitmap.height) return {};
  const Pixel& pixel = reinterpret_cast<const Pixel*>(bitmap.data)[std::size_t{y} * bitmap.width + x];
  return {pixel.getRedfn(), pixel.getGreenfn(), pixel.getBluefn(), pixel.getAlphafn()};
}

// Sets every pixel to color(x, y, colors...): the colors are those that the images `in`, of the same layout, have
// there.
template <class Make, class... Images>
void paint(VortoBitmap& out, Make color, const Images&... in) {
  withPixelOf(out.formatCode, [&](auto layout) {
    using Pixel = decltype(layout);
    auto* pixel = reinterpret_cast<Pixel*>(out.data);
    for (std::uint32_t y = 0; y < out.height; ++y) {
      for (std::uint32_t x = 0; x < out.width; ++x, ++pixel) {
        const Color made = color(x, y, colorAt<Pixel>(in, x, y)...);
        pixel->setRedfn(made.red);
        pixel->setGreenfn(made.green);
        pixel->setBluefn(made.blue);
        pixel->setAlphafn(made.alpha);
      }
    }
  });
}
