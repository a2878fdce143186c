// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "TarnCore/TCBitmap.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

class QCImagePort;

namespace vorto::effects {

using BitmapRef = std::shared_ptr<const VortoBitmap>;

// The image that flows into a port, null when there is none. Nothing, with the reason, when effects cannot read it
// (another layout, another class of image, pixels that are not all in memory). Reasons may be null here and below.
std::optional<BitmapRef> inputBitmap(const QCImagePort& port, std::string* reason);

// The images of two ports, either of which may be null. False, with the reason, when one cannot be read or their
// layouts differ.
bool inputPair(const QCImagePort& first, const QCImagePort& second, BitmapRef& a, BitmapRef& b, std::string* reason);

// A new bitmap with unset pixels; null, with the reason, when there is no memory for it or the layout is not one of
// ours.
std::shared_ptr<VortoBitmap> makeBitmap(std::uint64_t width, std::uint64_t height, std::uint32_t formatCode,
                                        std::string* reason);

// The whole of an image, cut off or filled with transparent black at its right and lower edges; the image itself when
// it has that size already. Null with the reason as in makeBitmap().
BitmapRef fittedBitmap(const BitmapRef& bitmap, std::uint32_t width, std::uint32_t height, std::string* reason);

// "1920 x 1080 RGBA, 16-bit" for messages.
std::string describeBitmap(const VortoBitmap& bitmap);

std::size_t rowBytes(const VortoBitmap& bitmap);

// How the pixels of images of one size are gone through: in one run, where no rows are padded, else row by row. Run y
// begins with row y.
struct PixelRuns {
  template <class... Others>
  explicit PixelRuns(const VortoBitmap& first, const Others&... others)
      : PixelRuns(first, ((first.rowPadding == 0) && ... && (others.rowPadding == 0))) {}

  std::size_t count;
  std::size_t pixels;  // of each

 private:
  PixelRuns(const VortoBitmap& bitmap, bool isOne)
      : count(isOne ? 1 : bitmap.height),
        pixels(isOne ? std::size_t{bitmap.width} * bitmap.height : std::size_t{bitmap.width}) {}
};

template <class Channel>
const Channel* rowOf(const VortoBitmap& bitmap, std::size_t y) {
  return reinterpret_cast<const Channel*>(static_cast<const std::uint8_t*>(bitmap.data) + y * rowBytes(bitmap));
}

template <class Channel>
Channel* rowOf(VortoBitmap& bitmap, std::size_t y) {
  return reinterpret_cast<Channel*>(static_cast<std::uint8_t*>(bitmap.data) + y * rowBytes(bitmap));
}

}  // namespace vorto::effects
