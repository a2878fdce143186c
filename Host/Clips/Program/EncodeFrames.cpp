// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/Program/EncodeFrames.h"

#include "Host/Messages/Failure.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/pixdesc.h>
}

#include <cstring>
#include <new>

namespace host {
namespace {

constexpr int kAlignment = 64;

YuvKind yuvKindOf(const AVPixFmtDescriptor& description, AVColorSpace matrix) {
  YuvKind kind;
  if (matrix == AVCOL_SPC_BT2020_NCL) {
    kind.red = 0.2627;
    kind.blue = 0.0593;
  } else if (matrix == AVCOL_SPC_BT470BG || matrix == AVCOL_SPC_SMPTE170M) {
    kind.red = 0.299;
    kind.blue = 0.114;
  }
  kind.bits = description.comp[0].depth;
  kind.isHalfWide = description.log2_chroma_w > 0;
  kind.isHalfHigh = description.log2_chroma_h > 0;
  return kind;
}

// Blue first, and four bytes a pixel.
template <std::size_t kSamples>
void turnRow(const std::byte* from, std::uint8_t* to, std::size_t width) {
  for (std::size_t x = 0; x < width; ++x) {
    to[4 * x] = static_cast<std::uint8_t>(from[kSamples * x + 2]);
    to[4 * x + 1] = static_cast<std::uint8_t>(from[kSamples * x + 1]);
    to[4 * x + 2] = static_cast<std::uint8_t>(from[kSamples * x]);
    to[4 * x + 3] = kSamples == 4 ? static_cast<std::uint8_t>(from[kSamples * x + 3]) : 0xff;
  }
}

void swapRow(const std::byte* from, std::uint8_t* to, std::size_t size) {
  for (std::size_t i = 0; i + 1 < size; i += 2) {
    to[i] = static_cast<std::uint8_t>(from[i + 1]);
    to[i + 1] = static_cast<std::uint8_t>(from[i]);
  }
}

}  // namespace

EncodeFrames::EncodeFrames(const FrameKind& kind, const AVCodecContext& context, const EncodeColors& colors)
    : kind_(kind), format_(context.pix_fmt), colors_(colors) {
  const int size = av_image_get_buffer_size(format_, context.width, context.height, kAlignment);
  if (size < 0) throw Failure(ExitCode::Output, "frames of that size cannot be written to a clip");
  // Encoders may read a little behind the last row.
  pool_ = av_buffer_pool_init(static_cast<std::size_t>(size) + std::size_t{4} * kAlignment, nullptr);
  if (!pool_) throw std::bad_alloc();
  const AVPixFmtDescriptor& description = *av_pix_fmt_desc_get(format_);
  if ((description.flags & AV_PIX_FMT_FLAG_RGB) != 0) return;
  yuv_.emplace(yuvKindOf(description, colors.matrix), kind.width, channelCount(kind.channels),
               bytesPerSample(kind.sample));
  rowsOfChroma_ = 1 << description.log2_chroma_h;
}

EncodeFrames::~EncodeFrames() {
  av_buffer_pool_uninit(&pool_);
}

AvFrame EncodeFrames::emptyFrame() {
  AvFrame frame = newFrame();
  frame->format = format_;
  frame->width = static_cast<int>(kind_.width);
  frame->height = static_cast<int>(kind_.height);
  frame->color_primaries = colors_.primaries;
  frame->color_trc = colors_.transfer;
  frame->colorspace = colors_.matrix;
  frame->color_range = colors_.range;
  frame->buf[0] = av_buffer_pool_get(pool_);
  if (!frame->buf[0]) throw std::bad_alloc();
  av_image_fill_arrays(frame->data, frame->linesize, frame->buf[0]->data, format_, frame->width, frame->height,
                       kAlignment);
  return frame;
}

void EncodeFrames::packRow(const std::byte* from, std::uint8_t* to) const {
  switch (format_) {
    case AV_PIX_FMT_BGR0:
      return turnRow<3>(from, to, kind_.width);
    case AV_PIX_FMT_BGRA:
      return turnRow<4>(from, to, kind_.width);
    // The encoder of these wants them the other way round.
    case AV_PIX_FMT_RGB48BE:
    case AV_PIX_FMT_RGBA64BE:
      return swapRow(from, to, kind_.rowBytes());
    default:
      std::memcpy(to, from, kind_.rowBytes());
  }
}

void EncodeFrames::convert(const std::byte* pixels, AVFrame& frame) {
  const auto row = [&](int plane, int y) { return frame.data[plane] + std::ptrdiff_t{frame.linesize[plane]} * y; };
  for (int y = 0; y < frame.height; ++y) {
    const std::byte* from = pixels + kind_.rowBytes() * static_cast<std::size_t>(y);
    if (!yuv_) {
      packRow(from, row(0, y));
      continue;
    }
    yuv_->luma(from, row(0, y), y % rowsOfChroma_ == 0);
    const bool isLast = (y + 1) % rowsOfChroma_ == 0 || y + 1 == frame.height;
    if (isLast) yuv_->chroma(row(1, y / rowsOfChroma_), row(2, y / rowsOfChroma_));
    if (frame.data[3]) yuv_->alpha(from, row(3, y));
  }
}

AvFrame EncodeFrames::frame(const std::byte* pixels) {
  AvFrame frame = emptyFrame();
  convert(pixels, *frame);
  return frame;
}

}  // namespace host
