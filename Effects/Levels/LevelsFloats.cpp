// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Levels/LevelsFloats.h"

#include <algorithm>

namespace vorto::effects {
namespace {

// Pixels are worked on in runs that stay in the cache, a plane for each channel, so that every step is a loop over
// values.
constexpr std::size_t kRun = 256;
constexpr std::size_t kChannels = 4;

struct Run {
  float alpha[kRun];
  float newAlpha[kRun];
  float color[kRun];
};

void readAlpha(const float* in, std::size_t count, const LevelsStage& curve, Run& run) {
  for (std::size_t i = 0; i < count; ++i) run.alpha[i] = in[kChannels * i + 3];
  std::copy_n(run.alpha, count, run.newAlpha);
  if (!curve.isNeutral()) curve.applyClipped(run.newAlpha, count);
}

// `channel` is that of the first pixel, in both rows.
void applyToColor(const float* channel, float* out, std::size_t count, const LevelsCurve& curve, bool keepsColor,
                  Run& run) {
  for (std::size_t i = 0; i < count; ++i) {
    run.color[i] = channel[kChannels * i] / (run.alpha[i] > 0 ? run.alpha[i] : 1.0F);
  }
  curve.apply(run.color, count);
  for (std::size_t i = 0; i < count; ++i) {
    const bool isEmpty = !(run.alpha[i] > 0) && !(run.newAlpha[i] > 0);
    const bool isKept = isEmpty || (keepsColor && run.newAlpha[i] == run.alpha[i]);
    out[kChannels * i] = isKept ? channel[kChannels * i] : run.color[i] * run.newAlpha[i];
  }
}

}  // namespace

void levelsFloatRow(const float* in, float* out, std::size_t count, const LevelsCurves& curves) {
  const bool keepsColor = curves.red.isNeutral() && curves.green.isNeutral() && curves.blue.isNeutral();
  Run run;
  for (std::size_t done = 0; done < count; done += kRun, in += kChannels * kRun, out += kChannels * kRun) {
    const std::size_t pixels = std::min(kRun, count - done);
    readAlpha(in, pixels, curves.alpha, run);
    applyToColor(in, out, pixels, curves.red, keepsColor, run);
    applyToColor(in + 1, out + 1, pixels, curves.green, keepsColor, run);
    applyToColor(in + 2, out + 2, pixels, curves.blue, keepsColor, run);
    for (std::size_t i = 0; i < pixels; ++i) out[kChannels * i + 3] = run.newAlpha[i];
  }
}

}  // namespace vorto::effects
