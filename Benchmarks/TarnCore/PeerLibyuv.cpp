// SPDX-License-Identifier: BSD-3-Clause
#include "Benchmarks/TarnCore/FrameBench.h"

#if VORTO_HAVE_LIBYUV
#include <libyuv.h>

namespace {

using Format = VortoPixelFormat;
using Convert = int (*)(const std::uint8_t*, int, std::uint8_t*, int, int, int);

// Four bytes are little-endian words there: "ARGB" has alpha last in memory.
constexpr std::uint8_t kToARGB[16] = {3, 0, 1, 2, 7, 4, 5, 6, 11, 8, 9, 10, 15, 12, 13, 14};
constexpr std::uint8_t kToRGBA[16] = {1, 2, 3, 0, 5, 6, 7, 4, 9, 10, 11, 8, 13, 14, 15, 12};
constexpr std::uint8_t kLastTwice[16] = {3, 3, 3, 3, 7, 7, 7, 7, 11, 11, 11, 11, 15, 15, 15, 15};
constexpr std::uint8_t kFirstTwice[16] = {0, 0, 0, 0, 4, 4, 4, 4, 8, 8, 8, 8, 12, 12, 12, 12};

int pixelBytes(const VortoBitmap& b) {
  return static_cast<int>(b.channels * b.bitsPerChannel / 8);
}
int stride(const VortoBitmap& b) {
  return static_cast<int>(b.width) * pixelBytes(b);
}
bool isBytes(Format::Code code) {
  return code == Format::RGBA8 || code == Format::ARGB8;
}
// Where the source of a part begins.
const std::uint8_t* start(const Row& row, const VortoBitmap& source) {
  return row.shape == Shape::Cropped ? source.data + 120 * stride(source) + 240 * pixelBytes(source) : source.data;
}

Work converting(const Row& row, Convert convert) {
  return [row, convert](VortoBitmap& to, VortoBitmap& from) {
    const int rows = static_cast<int>(to.height);
    convert(start(row, from), stride(from), to.data, stride(to), static_cast<int>(to.width),
            row.flipped ? -rows : rows);
  };
}

Work shuffling(const Row& row, const std::uint8_t* order) {
  return [flipped = row.flipped, order](VortoBitmap& to, VortoBitmap& from) {
    const int rows = static_cast<int>(to.height);
    libyuv::ARGBShuffle(from.data, stride(from), to.data, stride(to), order, static_cast<int>(to.width),
                        flipped ? -rows : rows);
  };
}

Work copying(const Row& row) {
  return [row](VortoBitmap& to, VortoBitmap& from) {
    const int rows = static_cast<int>(to.height);
    libyuv::CopyPlane(start(row, from), stride(from), to.data, stride(to), stride(to), row.flipped ? -rows : rows);
  };
}

// Alpha comes first here, so that the pixels are turned before.
Work toYUV() {
  const auto turned = std::make_shared<std::vector<std::uint8_t>>();
  return [turned](VortoBitmap& to, VortoBitmap& from) {
    const int width = static_cast<int>(to.width);
    const int rows = static_cast<int>(to.height);
    turned->resize(std::size_t{from.width} * from.height * 4);
    libyuv::ARGBShuffle(from.data, stride(from), turned->data(), stride(from), kToRGBA, width, rows);
    libyuv::ARGBToUYVY(turned->data(), stride(from), to.data, stride(to), width, rows);
  };
}

void scaleBytes(VortoBitmap& to, VortoBitmap& from) {
  libyuv::ARGBScale(from.data, stride(from), static_cast<int>(from.width), static_cast<int>(from.height), to.data,
                    stride(to), static_cast<int>(to.width), static_cast<int>(to.height), libyuv::kFilterNone);
}

void scaleWords(VortoBitmap& to, VortoBitmap& from) {
  libyuv::ScalePlane_16(reinterpret_cast<const std::uint16_t*>(from.data), stride(from) / 2,
                        static_cast<int>(from.width), static_cast<int>(from.height),
                        reinterpret_cast<std::uint16_t*>(to.data), stride(to) / 2, static_cast<int>(to.width),
                        static_cast<int>(to.height), libyuv::kFilterNone);
}

Work depth(const Row& row) {
  if (!isBytes(row.source) || !isBytes(row.destination)) return nullptr;
  if (row.shape == Shape::Scaled) return scaleBytes;  // without a change of order
  return row.source == row.destination ? copying(row) : shuffling(row, kToARGB);
}

}  // namespace

Work libyuvWork(const Row& row) {
  const bool bytes = isBytes(row.source);
  const bool alphaFirst = row.source == Format::ARGB8;
  switch (row.task) {
    case Task::DuplicateAlpha:
      return bytes ? shuffling(row, alphaFirst ? kFirstTwice : kLastTwice) : nullptr;
    case Task::Premultiply:
      return converting(row, libyuv::ARGBAttenuate);
    case Task::Unpremultiply:
      return bytes ? converting(row, libyuv::ARGBUnattenuate) : nullptr;
    case Task::Reorder:
      return bytes ? shuffling(row, alphaFirst ? kToRGBA : kToARGB) : nullptr;
    case Task::Copy:
      return copying(row);
    case Task::ConvertYUV:
      return row.source == Format::YUV8 ? converting(row, libyuv::UYVYToARGB) : toYUV();
    case Task::Scale:
      if (bytes || row.source == Format::LuminanceAlpha16) return scaleBytes;
      return row.source == Format::Luminance16 ? scaleWords : nullptr;
    case Task::ConvertDepth:
      return depth(row);
    default:
      return nullptr;
  }
}

#else
Work libyuvWork(const Row&) {
  return nullptr;
}
#endif
