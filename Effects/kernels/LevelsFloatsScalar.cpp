// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/LevelsFloats.h"

#include <algorithm>

namespace vorto::effects {
namespace {

float clipped(float value) {
  return value > 0 ? std::min(value, 1.0F) : 0.0F;
}

template <bool clips>
float staged(float value, const FloatStage& stage) {
  if (stage.isNeutral) return value;
  float v = stage.isStep ? (value < stage.blackIn ? 0.0F : 1.0F) : (value - stage.blackIn) / stage.inputSpan;
  if (clips) v = clipped(v);
  if (stage.isLimit) v = v > 0 && v < 1 ? 0.0F : v;
  if (stage.power) v = powered(v, *stage.power);
  v = stage.outputSpan == 0 ? stage.blackOut : stage.blackOut + v * stage.outputSpan;
  return clips ? clipped(v) : v;
}

}  // namespace

template <class Layout>
requires std::is_same_v<Layout, RGBAFloat>
void levelsRowScalar(const float* in, float* out, std::size_t count, const FloatLevels& levels) {
  const FloatStage* const own[] = {&levels.red, &levels.green, &levels.blue};
  const bool keepsColor = levels.keepsColor();
  for (std::size_t i = 0; i < 4 * count; i += 4) {
    const float alpha = in[i + 3];
    const float newAlpha = staged<true>(alpha, levels.alpha);
    const bool isEmpty = !(alpha > 0) && !(newAlpha > 0);
    const bool isKept = isEmpty || (keepsColor && newAlpha == alpha);
    for (int c = 0; c < 3; ++c) {
      const float straight = in[i + c] / (alpha > 0 ? alpha : 1.0F);
      const float made = staged<false>(staged<false>(straight, levels.common), *own[c]) * newAlpha;
      out[i + c] = isKept ? in[i + c] : made;
    }
    out[i + 3] = newAlpha;
  }
}

template void levelsRowScalar<RGBAFloat>(const float*, float*, std::size_t, const FloatLevels&);

}  // namespace vorto::effects
