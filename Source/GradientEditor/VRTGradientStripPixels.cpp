// SPDX-License-Identifier: BSD-3-Clause
#include "GradientEditor/VRTGradientStripPixels.h"

namespace {

struct Entry {
  std::uint8_t alpha, red, green, blue;
};

// The rounded quotient color * alpha / 255 without a division.
std::uint8_t timesAlpha(std::uint8_t color, std::uint8_t alpha) {
  const unsigned x = unsigned{color} * alpha + 128;
  return static_cast<std::uint8_t>((x + (x >> 8)) >> 8);
}

template <class Convert>
void convertEach(std::uint8_t* entries, std::uint32_t count, Convert convert) {
  for (std::uint8_t* pixel = entries; count != 0; --count, pixel += 4) {
    convert(Entry{pixel[0], pixel[1], pixel[2], pixel[3]}, pixel);
  }
}

void store(std::uint8_t* pixel, std::uint8_t red, std::uint8_t green, std::uint8_t blue, std::uint8_t alpha) {
  pixel[0] = red;
  pixel[1] = green;
  pixel[2] = blue;
  pixel[3] = alpha;
}

}  // namespace

void VRTConvertGradientEntries(std::uint8_t* entries, std::uint32_t count, std::int32_t renderMode) {
  switch (renderMode) {
    case VRTGradientRenderPremultiplied:
      convertEach(entries, count, [](Entry e, std::uint8_t* pixel) {
        store(pixel, timesAlpha(e.red, e.alpha), timesAlpha(e.green, e.alpha), timesAlpha(e.blue, e.alpha), e.alpha);
      });
      break;
    case VRTGradientRenderOpaque:
      convertEach(entries, count, [](Entry e, std::uint8_t* pixel) { store(pixel, e.red, e.green, e.blue, 255); });
      break;
    case VRTGradientRenderAlpha:
      convertEach(entries, count, [](Entry e, std::uint8_t* pixel) { store(pixel, e.alpha, e.alpha, e.alpha, 255); });
      break;
    default:
      break;
  }
}
