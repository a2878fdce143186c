#include "Host/Bitmaps.h"

#include "Host/Failure.h"
#include "Host/Pixels.h"
#include "TarnCore/TCBitmap.h"

#include <cmath>
#include <cstring>
#include <utility>
#include <vector>

namespace host {
namespace {

constexpr std::uint32_t LargestEdge = 1u << 26;  // a row's bits fit 32 bits

std::uint32_t formatCodeOf(SampleType sample) {
  switch (sample) {
    case SampleType::UInt8:
      return 0;
    case SampleType::UInt16:
      return 4;
    case SampleType::Float:
      break;
  }
  return 9;
}

std::string sizeText(std::uint32_t width, std::uint32_t height) {
  return std::to_string(width) + " x " + std::to_string(height);
}

std::shared_ptr<VortoBitmap> newBitmap(std::uint32_t width, std::uint32_t height, std::uint32_t formatCode,
                                       const std::string& what) {
  std::shared_ptr<VortoBitmap> bitmap(TCCreateBitmap(width, height, formatCode));
  if (!bitmap || !bitmap->data) {
    throw Failure(ExitCode::Unexpected, what + ": there is no memory for " + sizeText(width, height) + " pixels");
  }
  return bitmap;
}

std::size_t pixelSizeOf(const VortoBitmap& bitmap) {
  return std::size_t{bitmap.bitsPerChannel} / 8 * bitmap.channels;
}

void checkSize(std::uint32_t width, std::uint32_t height, SampleType sample, const std::string& what) {
  const std::uint64_t pixels = std::uint64_t{width} * height;
  if (pixels <= LargestBitmapBytes / (4 * bytesPerSample(sample)) && width <= LargestEdge && height <= LargestEdge)
    return;
  throw Failure(ExitCode::Input,
                what + ": " + sizeText(width, height) + " pixels at this depth are more than a bitmap can hold");
}

SampleType sampleTypeOfBitmap(const VortoBitmap& bitmap, const std::string& what) {
  switch (bitmap.formatCode) {
    case 0:
    case 1:
      return SampleType::UInt8;
    case 4:
      return SampleType::UInt16;
    case 9:
      return SampleType::Float;
    default:
      throw Failure(ExitCode::Effect, what + " gave an image of pixel format " + std::to_string(bitmap.formatCode) +
                                          ", which effects do not exchange");
  }
}

void rotateAlphaToTheEnd(std::span<std::uint8_t> samples) {
  for (std::size_t i = 0; i < samples.size(); i += 4) {
    const std::uint8_t alpha = samples[i];
    samples[i] = samples[i + 1];
    samples[i + 1] = samples[i + 2];
    samples[i + 2] = samples[i + 3];
    samples[i + 3] = alpha;
  }
}

// For each target index the source index of the nearest-neighbour rule.
std::vector<std::size_t> nearestIndexes(std::uint32_t source, std::uint32_t target) {
  std::vector<std::size_t> indexes(target);
  const double ratio = static_cast<double>(source) / target;
  for (std::uint32_t i = 0; i < target; ++i) {
    indexes[i] = static_cast<std::size_t>(std::floor(static_cast<double>(i) * ratio + 1e-7));
    if (indexes[i] >= source) indexes[i] = source - 1;  // what the bias adds may count when a source is very small
  }
  return indexes;
}

}  // namespace

BitmapRef makeBitmap(ImagePixels image, SampleType sample, const std::string& what) {
  checkSize(image.width, image.height, sample, what);
  premultiply(image);
  image = converted(std::move(image), sample);
  const auto bitmap = newBitmap(image.width, image.height, formatCodeOf(sample), what);
  std::memcpy(bitmap->data, image.bytes.get(), image.sampleCount() * bytesPerSample(sample));
  return bitmap;
}

ImagePixels pixelsOfBitmap(const VortoBitmap& bitmap, const std::string& what) {
  ImagePixels image;
  image.width = bitmap.width;
  image.height = bitmap.height;
  image.sample = sampleTypeOfBitmap(bitmap, what);
  const std::size_t size = image.sampleCount() * bytesPerSample(image.sample);
  if (size == 0 || size > bitmap.accessibleBytes()) throw Failure(ExitCode::Effect, what + " gave an empty image");
  allocatePixels(image);
  std::memcpy(image.bytes.get(), bitmap.data, size);
  if (bitmap.formatCode == 1) rotateAlphaToTheEnd(image.samples<std::uint8_t>());
  return image;
}

BitmapRef scaledBitmap(const BitmapRef& bitmap, std::uint32_t width, std::uint32_t height) {
  if (bitmap->width == width && bitmap->height == height) return bitmap;
  checkSize(width, height, sampleTypeOfBitmap(*bitmap, "an effect"), "the result");
  const auto scaled = newBitmap(width, height, bitmap->formatCode, "the result");
  const std::size_t pixelSize = pixelSizeOf(*bitmap);
  const auto columns = nearestIndexes(bitmap->width, width);
  const auto rows = nearestIndexes(bitmap->height, height);
  std::uint8_t* to = scaled->data;
  for (const std::size_t row : rows) {
    const std::uint8_t* from = bitmap->data + row * bitmap->width * pixelSize;
    for (const std::size_t column : columns) {
      std::memcpy(to, from + column * pixelSize, pixelSize);
      to += pixelSize;
    }
  }
  return scaled;
}

}  // namespace host
