// SPDX-License-Identifier: BSD-3-Clause
#include "Benchmarks/TarnCore/FrameBench.h"

#if VORTO_HAVE_SWSCALE
extern "C" {
#include <libavutil/pixfmt.h>
#include <libswscale/swscale.h>
}

namespace {

using Format = VortoPixelFormat;

AVPixelFormat formatOf(Format::Code code) {
  switch (code) {
    case Format::RGBA8:
      return AV_PIX_FMT_RGBA;
    case Format::ARGB8:
      return AV_PIX_FMT_ARGB;
    case Format::YUV8:
      return AV_PIX_FMT_UYVY422;
    case Format::RGBA16:
      return AV_PIX_FMT_RGBA64;
    case Format::RGB16:
      return AV_PIX_FMT_RGB48;
    case Format::Luminance16:
      return AV_PIX_FMT_GRAY16;
    default:
      return AV_PIX_FMT_NONE;
  }
}

using Context = std::unique_ptr<SwsContext, void (*)(SwsContext*)>;

Context contextFor(const VortoBitmap& to, const VortoBitmap& from) {
  const auto extent = [](std::uint32_t n) { return static_cast<int>(n); };
  return Context(sws_getContext(extent(from.width), extent(from.height), formatOf(from.formatCode), extent(to.width),
                                extent(to.height), formatOf(to.formatCode), SWS_POINT, nullptr, nullptr, nullptr),
                 sws_freeContext);
}

int stride(const VortoBitmap& b) {
  return static_cast<int>(b.width * b.channels * b.bitsPerChannel / 8);
}

}  // namespace

Work swscaleWork(const Row& row) {
  const bool known = row.task == Task::Reorder || row.task == Task::ConvertYUV || row.task == Task::Scale ||
                     row.task == Task::ConvertDepth;
  if (!known || row.inPlace || row.shape == Shape::Cropped) return nullptr;
  if (formatOf(row.destination) == AV_PIX_FMT_NONE || formatOf(row.source) == AV_PIX_FMT_NONE) return nullptr;
  const auto context = std::make_shared<Context>(nullptr, sws_freeContext);
  return [context, flipped = row.flipped](VortoBitmap& to, VortoBitmap& from) {
    if (!*context) *context = contextFor(to, from);
    const int step = flipped ? -stride(from) : stride(from);
    const std::uint8_t* const first[1] = {flipped ? from.data + (from.height - 1) * stride(from) : from.data};
    const int steps[1] = {step};
    std::uint8_t* const out[1] = {to.data};
    const int outSteps[1] = {stride(to)};
    sws_scale(context->get(), first, steps, 0, static_cast<int>(from.height), out, outSteps);
  };
}

#else
Work swscaleWork(const Row&) {
  return nullptr;
}
#endif
