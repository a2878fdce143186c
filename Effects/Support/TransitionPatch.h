// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/EffectPatch.h"

namespace vorto::effects {

// A transition from image A to image B as "inputTime" goes from 0 to 1. The result is exactly A at time 0 (and before,
// and at a time that is no number) and exactly B at time 1 (and after). It has the size of A: B lies at the upper left
// corner, cut off or with transparent black where it does not reach. Both images must have the same layout.
class TransitionPatch : public EffectPatch {
 public:
  static PropertyList describe(const std::string& name, const std::string& description);
  explicit TransitionPatch(PropertyList attributes);

 protected:
  // Checks what the transition needs besides its images, at every time. False, with the reason, when it cannot; the
  // reason may be null.
  virtual bool prepare(std::string* reason);

  // Fills out, at least one pixel, at a time strictly between 0 and 1; the three bitmaps are alike.
  virtual void mix(const VortoBitmap& a, const VortoBitmap& b, double time, VortoBitmap& out) = 0;

 private:
  std::optional<BitmapRef> render(std::string* reason) final;
  std::shared_ptr<QCImagePort> imageA_;
  std::shared_ptr<QCImagePort> imageB_;
  std::shared_ptr<QCNumberPort> time_;
};

}  // namespace vorto::effects
