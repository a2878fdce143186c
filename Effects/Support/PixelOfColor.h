// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/GradientTable.h"
#include "Platform/QuartzComposer/QCObject.h"

namespace vorto::effects {

// A straight color as a premultiplied pixel; components that are not finite count as 0. At integer depths colors stop
// at alpha.
template <class Layout>
LaidPixel<Layout> pixelOfColor(const QCColor& color) {
  using Channel = typename Layout::Channel;
  const double alpha = finiteOr(color.alpha, 0);
  LaidPixel<Layout> pixel;
  pixel[Layout::kAlpha] = quantized<Channel>(alpha);
  const auto premultiplied = [&](double component) {
    const auto stored = quantized<Channel>(finiteOr(component, 0) * alpha);
    return std::is_same_v<Channel, float> ? stored : std::min(stored, pixel[Layout::kAlpha]);
  };
  pixel[Layout::kRed] = premultiplied(color.red);
  pixel[Layout::kGreen] = premultiplied(color.green);
  pixel[Layout::kBlue] = premultiplied(color.blue);
  return pixel;
}

}  // namespace vorto::effects
