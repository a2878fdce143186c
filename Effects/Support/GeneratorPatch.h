// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/EffectPatch.h"

namespace vorto::effects {

// A generator: hosts say how large an image they want, and how deep, on the ports "inputWidth", "inputHeight" (pixels)
// and "inputDepth" (0: 8-bit RGBA, 1: 16-bit RGBA, 2: float RGBA).
class GeneratorPatch : public EffectPatch {
 public:
  // The attributes of a generator.
  static PropertyList describe(const std::string& name, const std::string& description);

 protected:
  using EffectPatch::EffectPatch;
  void addSizePorts();  // called last by constructors, so that the parameters come first

  // Fills a bitmap of at least one pixel.
  virtual void fill(VortoBitmap& out) = 0;

 private:
  std::optional<BitmapRef> render(std::string* reason) final;
  std::shared_ptr<QCIndexPort> width_;
  std::shared_ptr<QCIndexPort> height_;
  std::shared_ptr<QCIndexPort> depth_;
};

}  // namespace vorto::effects
