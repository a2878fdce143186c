// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Files/FrameStream.h"

#include "Host/Files/FileFormat.h"
#include "Host/Messages/Failure.h"
#include "TarnCore/TCBitmap.h"

#include <cmath>
#include <numeric>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host {
namespace {

std::span<const std::uint8_t> bytesOf(const void* data, std::size_t size) {
  return {static_cast<const std::uint8_t*>(data), size};
}

// ITU-R BT.709-6: the shares of red and blue in luma.
constexpr double kRed = 0.2126;
constexpr double kBlue = 0.0722;

// The planes of a frame, from rows of RGB. A sample of n bits is that of 8 bits times 2 to the n - 8.
template <class Sample>
std::vector<Sample> planesOf(OutputRows& rows, std::size_t width, std::size_t height) {
  constexpr double full = static_cast<double>(static_cast<Sample>(-1));
  constexpr double unit = sizeof(Sample) == 1 ? 1 : 256;
  const std::size_t size = width * height;
  std::vector<Sample> planes(3 * size);
  const auto stored = [](double value) { return static_cast<Sample>(std::floor(value * unit + 0.5)); };
  for (std::size_t y = 0; y < height; ++y) {
    const auto* const row = reinterpret_cast<const Sample*>(rows.row(static_cast<std::uint32_t>(y)));
    for (std::size_t x = 0; x < width; ++x) {
      const double red = row[3 * x] / full;
      const double green = row[3 * x + 1] / full;
      const double blue = row[3 * x + 2] / full;
      const double luma = kRed * red + (1 - kRed - kBlue) * green + kBlue * blue;
      Sample* const out = planes.data() + y * width + x;
      out[0] = stored(16 + 219 * luma);
      out[size] = stored(128 + 224 * (blue - luma) / (2 * (1 - kBlue)));
      out[2 * size] = stored(128 + 224 * (red - luma) / (2 * (1 - kRed)));
    }
  }
  return planes;
}

// Frames per second as a fraction in lowest terms, of thousandths where it is not whole.
std::string fractionOf(double rate) {
  const double thousandths = std::round(rate * 1000);
  if (thousandths < 1 || thousandths > 1e9) {
    throw Failure(ExitCode::Usage, "--rate: a y4m stream takes 0.001 to 1000000 frames per second");
  }
  const auto numerator = static_cast<std::uint32_t>(thousandths);
  const std::uint32_t common = std::gcd(numerator, 1000u);
  return std::to_string(numerator / common) + ":" + std::to_string(1000 / common);
}

std::string y4mHeader(const StreamFrame& frame, const std::string& rate) {
  return "YUV4MPEG2 W" + std::to_string(frame.width) + " H" + std::to_string(frame.height) + " F" + rate +
         " Ip A1:1 C444" + (frame.isDeep ? "p16 XYSCSS=444P16" : "") + " XCOLORRANGE=LIMITED\n";
}

template <class Sample>
std::uint64_t encodeY4M(const OutputPicture& picture, SampleType sample, const BytesTaker& take) {
  OutputRows rows = rowsOf(picture, sample, Channels::RGB, AlphaKind::None);
  constexpr std::string_view start = "FRAME\n";
  take(bytesOf(start.data(), start.size()));
  const auto planes = planesOf<Sample>(rows, picture.bitmap->width, picture.bitmap->height);
  take(bytesOf(planes.data(), planes.size() * sizeof(Sample)));
  return rows.clippedPixels();
}

}  // namespace

std::optional<FrameStreamKind> frameStreamNamed(const std::string& name) {
  if (name == "raw") return FrameStreamKind::Raw;
  if (name == "y4m") return FrameStreamKind::Y4M;
  return std::nullopt;
}

FrameStream::FrameStream(FrameStreamKind kind, double rate)
    : kind_(kind), rate_(kind == FrameStreamKind::Y4M ? fractionOf(rate) : "") {}

std::uint64_t FrameStream::encode(const OutputPicture& picture, const BytesTaker& take) const {
  if (kind_ == FrameStreamKind::Raw) return encodeRaw(picture, take);
  if (streamFrameOf(picture).isDeep) return encodeY4M<std::uint16_t>(picture, SampleType::UInt16, take);
  return encodeY4M<std::uint8_t>(picture, SampleType::UInt8, take);
}

std::uint64_t FrameStream::encodeRaw(const OutputPicture& picture, const BytesTaker& take) const {
  const SampleType sample = sampleTypeOf(picture.depth);
  OutputRows rows = rowsOf(picture, sample, picture.channels, AlphaKind::Straight);
  const std::size_t size = bytesPerSample(sample) * channelCount(picture.channels) * picture.bitmap->width;
  for (std::uint32_t y = 0; y < picture.bitmap->height; ++y) take(bytesOf(rows.row(y), size));
  return rows.clippedPixels();
}

std::string FrameStream::start(const StreamFrame& frame) {
  if (kind_ == FrameStreamKind::Raw) return "";
  const bool isFirst = !first_;
  if (isFirst) first_ = frame;
  if (frame.width != first_->width || frame.height != first_->height) {
    throw Failure(ExitCode::Output, "cannot write to the standard output: the frames of a y4m stream have one size");
  }
  if (frame != *first_) {
    throw Failure(ExitCode::Output, "cannot write to the standard output: the frames of a y4m stream have one depth");
  }
  return isFirst ? y4mHeader(frame, rate_) : "";
}

StreamFrame streamFrameOf(const OutputPicture& picture) {
  return {picture.bitmap->width, picture.bitmap->height, picture.depth != Depth::Bits8};
}

}  // namespace host
