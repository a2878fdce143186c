// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/Program/ReadPixels.h"

#include "Host/Clips/Program/AvErrors.h"
#include "Host/Clips/Program/ReadOrientation.h"
#include "Host/Messages/Failure.h"

extern "C" {
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <array>
#include <bit>
#include <new>

namespace host {
namespace {

// Chroma at every pixel, and no rounding before the end.
constexpr int kExact = SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT | SWS_FULL_CHR_H_INP;

const AVPixFmtDescriptor& layoutOf(const AVFrame& frame) {
  return *av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
}

bool has(const AVPixFmtDescriptor& layout, std::uint64_t flag) {
  return (layout.flags & flag) != 0;
}

int bitsOf(SampleType sample) {
  return sample == SampleType::UInt8 ? 8 : 16;
}

// Integers of red, green and blue, which are taken as they are.
bool isTakenAsItIs(const AVPixFmtDescriptor& layout) {
  return isRgb(layout) && !has(layout, AV_PIX_FMT_FLAG_FLOAT) && !has(layout, AV_PIX_FMT_FLAG_BAYER);
}

bool isPalette(const AVPixFmtDescriptor& layout) {
  return has(layout, AV_PIX_FMT_FLAG_PAL);
}

SampleSource sourceOf(const AVFrame& frame, const AVPixFmtDescriptor& layout, int component, int wantedBits) {
  const AVComponentDescriptor& place = layout.comp[component];
  SampleSource source;
  source.data = frame.data[place.plane] + place.offset;
  source.rowBytes = frame.linesize[place.plane];
  source.step = place.step;
  const int bits = place.depth + place.shift;
  source.bytes = bits <= 8 ? 1 : bits <= 16 ? 2 : 4;
  const bool isBigEndian = has(layout, AV_PIX_FMT_FLAG_BE);
  source.isSwapped = source.bytes > 1 && isBigEndian != (std::endian::native == std::endian::big);
  // The low byte of a word that comes last.
  if (source.bytes == 1 && isBigEndian) ++source.data;
  source.shift = place.shift;
  source.values = widenedValues(place.depth, wantedBits);
  return source;
}

// Gray that a codec for video says, or is known, to hold in the range of video.
bool isVideoRangeGray(const AVFrame& frame, const AVPixFmtDescriptor& layout) {
  return layout.nb_components < 3 && !isPalette(layout) && frame.color_range == AVCOL_RANGE_MPEG &&
         layout.comp[0].depth >= 8;
}

std::vector<std::uint16_t> valuesOfVideoRange(int bits, int wantedBits) {
  std::vector<std::uint16_t> values(std::size_t{1} << bits);
  const std::int64_t black = std::int64_t{16} << (bits - 8);
  const std::int64_t range = std::int64_t{219} << (bits - 8);
  const std::int64_t full = (std::int64_t{1} << wantedBits) - 1;
  for (std::size_t i = 0; i < values.size(); ++i) {
    const std::int64_t level = std::clamp<std::int64_t>(static_cast<std::int64_t>(i) - black, 0, range);
    values[i] = static_cast<std::uint16_t>((level * full + range / 2) / range);
  }
  return values;
}

// A palette's entries are 32 bits of alpha, red, green and blue, from the top.
std::vector<std::uint16_t> valuesOfPalette(const AVFrame& frame, int shift, int wantedBits) {
  const auto* entries = reinterpret_cast<const std::uint32_t*>(frame.data[1]);
  std::vector<std::uint16_t> values(256);
  for (std::size_t i = 0; i < values.size(); ++i) {
    values[i] = static_cast<std::uint16_t>((entries[i] >> shift & 0xFF) * (wantedBits == 16 ? 257 : 1));
  }
  return values;
}

template <class Sample>
void readAll(const SampleSource (&sources)[4], std::size_t width, std::size_t height, std::byte* pixels) {
  RowReader<Sample> reader(sources, width);
  for (std::size_t y = 0; y < height; ++y) {
    reader.read(y, reinterpret_cast<Sample*>(pixels) + y * width * 4);
  }
}

}  // namespace

PixelKind pixelKindOf(const AVFrame& frame) {
  const AVPixFmtDescriptor& layout = layoutOf(frame);
  int bits = 0;
  for (int i = 0; i < layout.nb_components; ++i) bits = std::max(bits, layout.comp[i].depth);
  const bool hasAlpha = has(layout, AV_PIX_FMT_FLAG_ALPHA) && !isPalette(layout);
  const bool isGrayFrame = layout.nb_components < 3 && !isPalette(layout);
  PixelKind kind;
  kind.sample = bits > 8 ? SampleType::UInt16 : SampleType::UInt8;
  if (isGrayFrame) {
    kind.channels = hasAlpha ? Channels::GrayAlpha : Channels::Gray;
  } else {
    kind.channels = hasAlpha ? Channels::RGBA : Channels::RGB;
  }
  return kind;
}

// Formats with several samples in a byte become one with a byte for each.
void PixelReader::unpackBits(const AVFrame& frame) {
  const AVPixFmtDescriptor& layout = layoutOf(frame);
  const std::size_t width = frame.width;
  const int components = layout.nb_components;
  bits_.resize(width * frame.height * components);
  std::vector<std::uint16_t> row(width);
  const auto** planes = const_cast<const std::uint8_t**>(frame.data);
  for (int component = 0; component < components; ++component) {
    std::uint8_t* samples = bits_.data() + width * frame.height * component;
    for (int y = 0; y < frame.height; ++y, samples += width) {
      av_read_image_line2(row.data(), planes, frame.linesize, &layout, 0, y, component, frame.width, 0, 2);
      std::ranges::transform(row, samples, [](std::uint16_t value) { return static_cast<std::uint8_t>(value); });
    }
    SampleSource& source = sources_[component];
    source.data = samples - width * frame.height;
    source.rowBytes = frame.width;
    source.step = source.bytes = 1;
    source.isSwapped = false;
    source.shift = 0;
  }
  if (frame.format == AV_PIX_FMT_MONOWHITE) std::ranges::reverse(sources_[0].values);
}

void PixelReader::sourcesOfRgb(const AVFrame& frame, const PixelTarget& target) {
  const AVPixFmtDescriptor& layout = layoutOf(frame);
  const int wanted = bitsOf(target.sample);
  for (int i = 0; i < layout.nb_components; ++i) sources_[i] = sourceOf(frame, layout, i, wanted);
  if (has(layout, AV_PIX_FMT_FLAG_BITSTREAM)) unpackBits(frame);
  if (isVideoRangeGray(frame, layout)) sources_[0].values = valuesOfVideoRange(layout.comp[0].depth, wanted);
  if (isPalette(layout)) {
    for (const int i : {2, 1, 0}) {
      sources_[i] = sources_[0];
      sources_[i].values = valuesOfPalette(frame, 16 - 8 * i, wanted);
    }
    sources_[3] = {};
  } else if (layout.nb_components < 3) {
    sources_[3] = layout.nb_components == 2 ? sources_[1] : SampleSource{};
    sources_[2] = sources_[1] = sources_[0];
  }
}

void PixelReader::prepareScaler(const Conversion& conversion) {
  if (conversion_ == conversion) return;
  conversion_.reset();
  const AVPixelFormat made = conversion.sample == SampleType::UInt8 ? AV_PIX_FMT_GBRP : AV_PIX_FMT_GBRP16;
  planes_ = newFrame();
  planes_->format = made;
  planes_->width = conversion.width;
  planes_->height = conversion.height;
  if (av_frame_get_buffer(planes_.get(), 0) < 0) throw std::bad_alloc();

  scaler_.reset(sws_alloc_context());
  if (!scaler_) throw std::bad_alloc();
  const std::pair<const char*, int> options[] = {{"srcw", conversion.width},
                                                 {"srch", conversion.height},
                                                 {"dstw", conversion.width},
                                                 {"dsth", conversion.height},
                                                 {"src_format", conversion.format},
                                                 {"dst_format", made},
                                                 {"sws_flags", kExact},
                                                 {"src_range", conversion.coding.isFullRange ? 1 : 0},
                                                 {"dst_range", 1}};
  for (const auto& [name, value] : options) av_opt_set_int(scaler_.get(), name, value, 0);
  const LoggedError logged;
  if (const int error = sws_init_context(scaler_.get(), nullptr, nullptr); error < 0) {
    throw Failure(ExitCode::Input, "its pixels cannot be converted: " + logged.reason(error));
  }
  const int* coefficients = sws_getCoefficients(conversion.coding.matrix);
  sws_setColorspaceDetails(scaler_.get(), coefficients, conversion.coding.isFullRange ? 1 : 0, coefficients, 1, 0,
                           1 << 16, 1 << 16);
  conversion_ = conversion;
}

void PixelReader::sourcesOfYuv(const AVFrame& frame, const PixelTarget& target) {
  prepareScaler({frame.format, frame.width, frame.height, codingOf(frame), target.sample});
  const int lines =
      sws_scale(scaler_.get(), frame.data, frame.linesize, 0, frame.height, planes_->data, planes_->linesize);
  if (lines != frame.height) throw Failure(ExitCode::Input, "its pixels cannot be converted");
  const AVPixFmtDescriptor& made = layoutOf(*planes_);
  const int wanted = bitsOf(target.sample);
  for (int i = 0; i < 3; ++i) sources_[i] = sourceOf(*planes_, made, i, wanted);
  const AVPixFmtDescriptor& layout = layoutOf(frame);
  sources_[3] = has(layout, AV_PIX_FMT_FLAG_ALPHA) ? sourceOf(frame, layout, 3, wanted) : SampleSource{};
}

void PixelReader::readRows(const AVFrame& frame, const PixelTarget& target, std::byte* pixels) {
  for (SampleSource& source : sources_) source = {};
  if (isTakenAsItIs(layoutOf(frame))) {
    sourcesOfRgb(frame, target);
  } else {
    sourcesOfYuv(frame, target);
  }
  if (!target.hasAlpha) sources_[3] = {};
  if (target.sample == SampleType::UInt8) {
    readAll<std::uint8_t>(sources_, frame.width, frame.height, pixels);
  } else {
    readAll<std::uint16_t>(sources_, frame.width, frame.height, pixels);
  }
}

void PixelReader::read(const AVFrame& frame, const PixelTarget& target, std::byte* pixels) {
  if (target.orientation == 1) {
    readRows(frame, target, pixels);
    return;
  }
  const std::size_t pixelBytes = 4 * bytesPerSample(target.sample);
  turned_.resize(pixelBytes * frame.width * frame.height);
  readRows(frame, target, turned_.data());
  putUpright(turned_.data(), frame.width, frame.height, pixelBytes, target.orientation, pixels);
}

}  // namespace host
