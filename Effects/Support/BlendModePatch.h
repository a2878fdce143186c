// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/EffectPatch.h"

#include <cstddef>

namespace vorto::effects {

// A blend mode: a foreground laid on a background. The result has the size of the background; the foreground lies at
// its upper left corner, what sticks out is cut off, and where it does not reach the background shows. Both images must
// have the same layout.
//
// "inputOpacity" from 0 to 1 scales the foreground, color and alpha, before it is blended; at 0 the result is the
// background itself.
class BlendModePatch : public EffectPatch {
 public:
  static PropertyList describe(const std::string& name, const std::string& description);
  explicit BlendModePatch(PropertyList attributes);

 protected:
  // Blends `count` pixels; the rows do not overlap.
  virtual void blendRow(std::uint32_t formatCode, const void* background, const void* foreground, void* out,
                        std::size_t count) = 0;

 private:
  std::optional<BitmapRef> render(std::string* reason) final;
  void blendWhole(const VortoBitmap& background, const VortoBitmap& foreground, VortoBitmap& out);
  void blendPart(const VortoBitmap& background, const VortoBitmap& foreground, double opacity, VortoBitmap& out);
  std::shared_ptr<QCImagePort> background_;
  std::shared_ptr<QCImagePort> foreground_;
  std::shared_ptr<QCNumberPort> opacity_;
};

}  // namespace vorto::effects
