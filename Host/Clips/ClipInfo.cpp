// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/ClipInfo.h"

#include "Host/Clips/MetadataMessage.h"
#include "Host/Messages/Failure.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace host {
namespace {

double inSeconds(std::int64_t first, std::int64_t last, const Rational& timeBase) {
  return (static_cast<double>(last) - static_cast<double>(first)) * timeBase.numerator / timeBase.denominator;
}

// Frames become bitmaps, whose sizes have 32 bits.
bool isSaneSize(const PictureInfo& picture) {
  const std::uint64_t pixels = std::uint64_t{picture.width} * picture.height;
  return pixels > 0 && pixels * 4 * bytesPerSample(picture.sample) < (std::uint64_t{1} << 32);
}

bool isSane(const ClipInfo& info) {
  const PictureInfo& picture = info.picture;
  return isSaneSize(picture) && info.rate.numerator > 0 && info.timeBase.numerator > 0 && !info.times.empty() &&
         std::ranges::is_sorted(info.times, std::less_equal<>()) && info.end > info.times.back() &&
         std::isfinite(info.delay);
}

void put(MessageWriter& message, const PictureInfo& picture) {
  message.value(picture.width);
  message.value(picture.height);
  message.value(picture.sample);
  message.value(picture.depth);
  message.value(picture.alpha);
  message.value(picture.channels);
  put(message, picture.metadata);
}

// One of the values up to the last that clips know.
template <class Enum>
Enum takeEnum(MessageReader& message, Enum last) {
  const auto value = message.value<Enum>();
  if (value < Enum{} || value > last) throw Failure(ExitCode::Unexpected, "a helper process tells what no clip can be");
  return value;
}

PictureInfo takePictureInfo(MessageReader& message) {
  PictureInfo picture;
  picture.width = message.value<std::uint32_t>();
  picture.height = message.value<std::uint32_t>();
  picture.sample = takeEnum(message, SampleType::UInt16);
  picture.depth = takeEnum(message, Depth::Bits16);
  picture.alpha = takeEnum(message, AlphaKind::Straight);
  picture.channels = takeEnum(message, Channels::RGBA);
  picture.metadata = takeMetadata(message);
  return picture;
}

}  // namespace

double ClipInfo::seconds(std::size_t frame) const {
  return inSeconds(times.front(), times.at(frame), timeBase);
}

double ClipInfo::duration() const {
  return inSeconds(times.front(), end, timeBase);
}

void put(MessageWriter& message, const ClipInfo& info) {
  put(message, info.picture);
  put(message, info.rate);
  put(message, info.timeBase);
  message.bytes({reinterpret_cast<const std::uint8_t*>(info.times.data()), info.times.size() * sizeof info.times[0]});
  message.value(info.end);
  message.value(info.delay);
  message.value(static_cast<std::uint8_t>(info.isUneven));
  message.value(static_cast<std::uint8_t>(info.hasAudio));
  message.text(info.codec);
  message.text(info.sampling);
  message.text(info.remark);
}

ClipInfo takeClipInfo(MessageReader& message) {
  ClipInfo info;
  info.picture = takePictureInfo(message);
  info.rate = takeRational(message);
  info.timeBase = takeRational(message);
  const Bytes times = message.bytes();
  info.times.resize(times.size() / sizeof info.times[0]);
  if (!info.times.empty()) std::memcpy(info.times.data(), times.data(), info.times.size() * sizeof info.times[0]);
  info.end = message.value<std::int64_t>();
  info.delay = message.value<double>();
  info.isUneven = message.value<std::uint8_t>() != 0;
  info.hasAudio = message.value<std::uint8_t>() != 0;
  info.codec = message.text();
  info.sampling = message.text();
  info.remark = message.text();
  if (!isSane(info)) throw Failure(ExitCode::Unexpected, "a helper process tells what no clip can be");
  return info;
}

}  // namespace host
