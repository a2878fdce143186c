// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/Program/EncodeFrames.h"

#include "Host/Clips/Program/AvErrors.h"
#include "Host/Messages/Failure.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

#include <array>
#include <new>

namespace host {
namespace {

constexpr int kAlignment = 64;

AVPixelFormat packedFormat(const FrameKind& kind) {
  const bool isDeep = kind.sample == SampleType::UInt16;
  if (kind.channels == Channels::RGBA) return isDeep ? AV_PIX_FMT_RGBA64 : AV_PIX_FMT_RGBA;
  return isDeep ? AV_PIX_FMT_RGB48 : AV_PIX_FMT_RGB24;
}

[[noreturn]] void refuse(const char* what) {
  throw Failure(ExitCode::Unexpected, std::string("frames could not be converted: ") + what);
}

AvScaler makeScaler(const FrameKind& kind, AVPixelFormat from, AVPixelFormat to, const EncodeColors& colors) {
  AvScaler scaler(sws_alloc_context());
  if (!scaler) throw std::bad_alloc();
  const auto set = [&](const char* name, int value) { av_opt_set_int(scaler.get(), name, value, 0); };
  set("srcw", static_cast<int>(kind.width));
  set("srch", static_cast<int>(kind.height));
  set("src_format", from);
  set("dstw", static_cast<int>(kind.width));
  set("dsth", static_cast<int>(kind.height));
  set("dst_format", to);
  set("sws_flags", SWS_BILINEAR | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT | SWS_FULL_CHR_H_INP);
  const AVPixFmtDescriptor* description = av_pix_fmt_desc_get(to);
  // Subsampled chroma stands with the left one of two columns, and between two rows.
  if (description->log2_chroma_w > 0) set("dst_h_chr_pos", 0);
  if (description->log2_chroma_h > 0) set("dst_v_chr_pos", 128);
  const int* matrix = sws_getCoefficients(colors.matrix == AVCOL_SPC_RGB ? SWS_CS_DEFAULT : colors.matrix);
  const int isFull = colors.range == AVCOL_RANGE_JPEG ? 1 : 0;
  sws_setColorspaceDetails(scaler.get(), matrix, 1, matrix, isFull, 0, 1 << 16, 1 << 16);
  if (sws_init_context(scaler.get(), nullptr, nullptr) < 0) refuse("no way leads to the encoder's pixels");
  return scaler;
}

}  // namespace

EncodeFrames::EncodeFrames(const FrameKind& kind, const AVCodecContext& context, const EncodeColors& colors)
    : kind_(kind), from_(packedFormat(kind)), to_(context.pix_fmt), colors_(colors) {
  const int size = av_image_get_buffer_size(to_, context.width, context.height, kAlignment);
  if (size < 0) refuse("their size is out of range");
  // Encoders may read a little behind the last row.
  pool_ = av_buffer_pool_init(static_cast<std::size_t>(size) + 4 * kAlignment, nullptr);
  if (!pool_) throw std::bad_alloc();
  if (from_ != to_) scaler_ = makeScaler(kind, from_, to_, colors);
}

EncodeFrames::~EncodeFrames() {
  av_buffer_pool_uninit(&pool_);
}

AvFrame EncodeFrames::emptyFrame() {
  AvFrame frame = newFrame();
  frame->format = to_;
  frame->width = static_cast<int>(kind_.width);
  frame->height = static_cast<int>(kind_.height);
  frame->color_primaries = colors_.primaries;
  frame->color_trc = colors_.transfer;
  frame->colorspace = colors_.matrix;
  frame->color_range = colors_.range;
  frame->buf[0] = av_buffer_pool_get(pool_);
  if (!frame->buf[0]) throw std::bad_alloc();
  av_image_fill_arrays(frame->data, frame->linesize, frame->buf[0]->data, to_, frame->width, frame->height, kAlignment);
  return frame;
}

AvFrame EncodeFrames::frame(const std::byte* pixels) {
  AvFrame frame = emptyFrame();
  const std::array<const std::uint8_t*, 4> source = {reinterpret_cast<const std::uint8_t*>(pixels)};
  const std::array<int, 4> rowBytes = {static_cast<int>(kind_.rowBytes())};
  if (from_ == to_) {
    av_image_copy_plane(frame->data[0], frame->linesize[0], source[0], rowBytes[0], rowBytes[0], frame->height);
  } else if (sws_scale(scaler_.get(), source.data(), rowBytes.data(), 0, frame->height, frame->data, frame->linesize) !=
             frame->height) {
    refuse("the conversion failed");
  }
  return frame;
}

}  // namespace host
