// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/Bitmaps.h"
#include "Effects/kernels/GaussianLines.h"

namespace vorto::effects {

// The two ways of gaussianBlur() (GaussianBlur.h), on the same terms: by a filter that is a weighted sum, and by a
// recursive one.
bool blurByWeights(const VortoBitmap& in, VortoBitmap& out, const GaussianFilter& filter, GaussianEdges edges,
                   std::string* reason);
bool blurByRecursion(const VortoBitmap& in, VortoBitmap& out, const GaussianFilter& filter, GaussianEdges edges,
                     std::string* reason);

}  // namespace vorto::effects
