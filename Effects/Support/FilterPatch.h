// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/EffectPatch.h"

#include <cstddef>

namespace vorto::effects {

// A filter: one image in "inputImage", one out. An image of no pixels is its own result.
class FilterPatch : public EffectPatch {
 public:
  static PropertyList describe(const std::string& name, const std::string& description);
  explicit FilterPatch(PropertyList attributes);

 protected:
  // The result for an image of at least one pixel that effects can read: the image itself where the parameters change
  // nothing. Null, with the reason (which may be null), when it fails.
  virtual BitmapRef filtered(const BitmapRef& in, std::string* reason) = 0;

 private:
  std::optional<BitmapRef> render(std::string* reason) final;
  std::shared_ptr<QCImagePort> image_;
};

// A filter that makes each pixel of the pixel in its place alone.
class PointFilterPatch : public FilterPatch {
 protected:
  using FilterPatch::FilterPatch;

  // Prepares the parameters for a frame; false where they change nothing.
  virtual bool prepare() = 0;
  // `count` pixels, with the parameters as prepared; the rows do not overlap.
  virtual void filterRow(std::uint32_t formatCode, const void* in, void* out, std::size_t count) = 0;

 private:
  BitmapRef filtered(const BitmapRef& in, std::string* reason) final;
};

}  // namespace vorto::effects
