// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/PixelLayout.h"
#include "Effects/kernels/FloatPixels.h"
#include "Effects/kernels/HueShift.h"

namespace vorto::effects {
namespace {

struct Color {
  float red, green, blue;
};

// Hue in sextants, 0 to 6.
struct HSL {
  float hue, saturation, lightness;
};

float positive(float value) {
  return value > 0 ? value : 0.0F;
}

float wrapped(float sextants) {
  return sextants >= 6 ? sextants - 6 : sextants;
}

HSL toHSL(const Color& c) {
  const float most = std::max(std::max(c.red, c.green), c.blue);
  const float least = std::min(std::min(c.red, c.green), c.blue);
  const float sum = most + least, range = most - least;
  if (!(range > 0)) return {0, 0, sum * 0.5F};
  const float lightness = sum * 0.5F;
  const float saturation = range / (lightness <= 0.5F ? sum : 2 - sum);
  const float difference = most == c.red ? c.green - c.blue : most == c.green ? c.blue - c.red : c.red - c.green;
  const float offset = most == c.red ? (difference < 0 ? 6.0F : 0.0F) : most == c.green ? 2.0F : 4.0F;
  return {difference / range + offset, saturation, lightness};
}

float component(float low, float range, float sextants) {
  return low + range * std::min(std::max(std::min(sextants, 4 - sextants), 0.0F), 1.0F);
}

Color toRGB(const HSL& c) {
  const float product = c.lightness * c.saturation;
  const float high = c.lightness <= 0.5F ? c.lightness + product : (c.lightness + c.saturation) - product;
  const float low = 2 * c.lightness - high;
  const float range = high - low;
  return {component(low, range, wrapped(c.hue + 2)), component(low, range, c.hue),
          component(low, range, wrapped(c.hue + 4))};
}

}  // namespace

template <class Layout>
void hueShiftRowScalar(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count,
                       HueShift shift) {
  using Channel = typename Layout::Channel;
  for (std::size_t i = 0; i < count; ++i, in += 4, out += 4) {
    const auto alpha = static_cast<float>(in[Layout::kAlpha]);
    const Color color{static_cast<float>(in[Layout::kRed]), static_cast<float>(in[Layout::kGreen]),
                      static_cast<float>(in[Layout::kBlue])};
    // What goes up to `unit` is a straight color of 0 to 1.
    const float most = std::max(std::max(positive(color.red), positive(color.green)), positive(color.blue));
    const float unit = std::max(most, alpha);
    const float share = 1 / unit;
    HSL hsl = toHSL({positive(color.red * share), positive(color.green * share), positive(color.blue * share)});
    hsl.hue = wrapped(wrapped(hsl.hue) + shift.sextants);
    hsl.saturation = std::min(hsl.saturation * shift.saturation, 1.0F);
    hsl.lightness = hsl.lightness * shift.lightScale + shift.lightness;
    const Color made = toRGB(hsl);
    const bool isShown = alpha > 0;
    out[Layout::kRed] = storedChannel<Channel>(isShown ? made.red * unit : color.red, alpha);
    out[Layout::kGreen] = storedChannel<Channel>(isShown ? made.green * unit : color.green, alpha);
    out[Layout::kBlue] = storedChannel<Channel>(isShown ? made.blue * unit : color.blue, alpha);
    out[Layout::kAlpha] = in[Layout::kAlpha];
  }
}

using Byte = std::uint8_t;
using Word = std::uint16_t;
template void hueShiftRowScalar<RGBA8>(const Byte*, Byte*, std::size_t, HueShift);
template void hueShiftRowScalar<ARGB8>(const Byte*, Byte*, std::size_t, HueShift);
template void hueShiftRowScalar<RGBA16>(const Word*, Word*, std::size_t, HueShift);
template void hueShiftRowScalar<RGBAFloat>(const float*, float*, std::size_t, HueShift);

}  // namespace vorto::effects
