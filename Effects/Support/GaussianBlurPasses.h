// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/GaussianBlur.h"

namespace vorto::effects {

using TakeBlurred = std::function<void(const BlurredBlock&)>;

// The two ways of gaussianBlur(), on the same terms: by a filter that is a weighted sum, and by a recursive one.
bool blurByWeights(const VortoBitmap& in, const GaussianFilter& filter, GaussianEdges edges, const TakeBlurred& take,
                   std::string* reason);
bool blurByRecursion(const VortoBitmap& in, const GaussianFilter& filter, GaussianEdges edges, const TakeBlurred& take,
                     std::string* reason);

}  // namespace vorto::effects
