// SPDX-License-Identifier: BSD-3-Clause
#include "Bindings/Frei0r/In/Pixels.h"

#include "Effects/Support/Arithmetic.h"
#include "Effects/Support/Bitmaps.h"
#include "Effects/Support/PixelLayout.h"

#include <algorithm>
#include <cstring>

namespace vorto::frei0r {
namespace {

using effects::rowOf;

constexpr std::uint32_t kMultiple = 8;

struct Straight {
  std::uint8_t red, green, blue, alpha;
};

std::uint8_t narrow(std::uint8_t value) {
  return value;
}
std::uint8_t narrow(std::uint16_t value) {
  return static_cast<std::uint8_t>((value + 128U) / 257);
}
std::uint8_t narrow(float value) {
  return effects::quantized<std::uint8_t>(value);
}

template <class Channel>
Channel widened(std::uint8_t value) {
  if constexpr (std::is_same_v<Channel, float>) {
    return static_cast<float>(value) / 255;
  } else {
    return static_cast<Channel>(value * (effects::kFull<Channel> / 255));
  }
}

// The straight color of a channel, at the image's own depth.
template <class Channel>
Channel straightOf(Channel color, Channel alpha) {
  if constexpr (std::is_same_v<Channel, float>) {
    return color / alpha;
  } else {
    return effects::straight(color, alpha);
  }
}

template <class Layout, class Channel = typename Layout::Channel>
Straight straightPixel(const Channel* pixel) {
  const Channel alpha = pixel[Layout::kAlpha];
  Straight result{0, 0, 0, narrow(alpha)};
  if (!(alpha > 0)) return result;
  const auto color = [&](int place) {
    return alpha == effects::kOne<Channel> ? narrow(pixel[place]) : narrow(straightOf(pixel[place], alpha));
  };
  result.red = color(Layout::kRed);
  result.green = color(Layout::kGreen);
  result.blue = color(Layout::kBlue);
  return result;
}

template <class Layout, class Channel = typename Layout::Channel>
void storePremultiplied(const Straight& straight, Channel* pixel) {
  const auto alpha = widened<Channel>(straight.alpha);
  pixel[Layout::kRed] = effects::product(widened<Channel>(straight.red), alpha);
  pixel[Layout::kGreen] = effects::product(widened<Channel>(straight.green), alpha);
  pixel[Layout::kBlue] = effects::product(widened<Channel>(straight.blue), alpha);
  pixel[Layout::kAlpha] = alpha;
}

// Where in the four bytes of a frame's pixel red and blue are; green and alpha are second and last.
struct Places {
  explicit Places(ColorModel colors) : red(colors == ColorModel::BGRA ? 2 : 0), blue(2 - red) {}
  int red;
  int blue;
};

// Where the image begins in the frame.
struct Offset {
  Offset(const VortoBitmap& image, const FrameSize& size)
      : left((size.width - image.width) / 2), top((size.height - image.height) / 2) {}
  std::size_t left;
  std::size_t top;
};

template <class Layout>
void narrowRow(const typename Layout::Channel* in, Places places, std::size_t count, std::uint8_t* out) {
  for (std::size_t x = 0; x < count; ++x, in += Layout::kChannels, out += 4) {
    const Straight pixel = straightPixel<Layout>(in);
    out[places.red] = pixel.red;
    out[1] = pixel.green;
    out[places.blue] = pixel.blue;
    out[3] = pixel.alpha;
  }
}

template <class Layout>
void widenRow(const std::uint8_t* in, Places places, std::size_t count, typename Layout::Channel* out) {
  for (std::size_t x = 0; x < count; ++x, in += 4, out += Layout::kChannels) {
    storePremultiplied<Layout>({in[places.red], in[1], in[places.blue], in[3]}, out);
  }
}

}  // namespace

FrameSize frameSizeFor(std::uint32_t width, std::uint32_t height) {
  const auto rounded = [](std::uint32_t edge) { return (edge + kMultiple - 1) / kMultiple * kMultiple; };
  return {rounded(width), rounded(height)};
}

void toFrame(const VortoBitmap& image, ColorModel colors, const FrameSize& size, std::uint32_t* frame) {
  const Offset offset(image, size);
  const Places places(colors);
  for (std::size_t y = 0; y < image.height; ++y) {
    std::uint32_t* const row = frame + (offset.top + y) * size.width;
    effects::withLayout(image.formatCode, [&](auto layout) {
      using Layout = decltype(layout);
      narrowRow<Layout>(rowOf<typename Layout::Channel>(image, y), places, image.width,
                        reinterpret_cast<std::uint8_t*>(row + offset.left));
    });
    std::uint32_t* const end = row + offset.left + image.width;
    std::fill(row, row + offset.left, row[offset.left]);
    std::fill(end, row + size.width, end[-1]);
  }
  const std::size_t last = offset.top + image.height - 1;
  for (std::size_t y = 0; y < size.height; ++y) {
    if (y >= offset.top && y <= last) continue;
    const std::uint32_t* const from = frame + (y < offset.top ? offset.top : last) * size.width;
    std::memcpy(frame + y * size.width, from, size.width * sizeof *frame);
  }
}

void fromFrame(const std::uint32_t* frame, ColorModel colors, const FrameSize& size, VortoBitmap& image) {
  const Offset offset(image, size);
  const Places places(colors);
  for (std::size_t y = 0; y < image.height; ++y) {
    const auto* const row = reinterpret_cast<const std::uint8_t*>(frame + (offset.top + y) * size.width + offset.left);
    effects::withLayout(image.formatCode, [&](auto layout) {
      using Layout = decltype(layout);
      widenRow<Layout>(row, places, image.width, rowOf<typename Layout::Channel>(image, y));
    });
  }
}

}  // namespace vorto::frei0r
