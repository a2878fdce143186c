// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/Arithmetic.h"
#include "Effects/Support/PixelLayout.h"
#include "Platform/QuartzComposer/QCPort.h"

namespace vorto::effects {

// A straight color as a premultiplied pixel; components that are not finite count as 0.
template <class Layout>
LaidPixel<Layout> pixelOf(const QCColor& color) {
  using Channel = typename Layout::Channel;
  const double alpha = finiteOr(color.alpha, 0);
  LaidPixel<Layout> pixel;
  pixel[Layout::kRed] = quantized<Channel>(finiteOr(color.red, 0) * alpha);
  pixel[Layout::kGreen] = quantized<Channel>(finiteOr(color.green, 0) * alpha);
  pixel[Layout::kBlue] = quantized<Channel>(finiteOr(color.blue, 0) * alpha);
  pixel[Layout::kAlpha] = quantized<Channel>(alpha);
  return pixel;
}

}  // namespace vorto::effects
