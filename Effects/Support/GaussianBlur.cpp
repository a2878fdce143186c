// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/GaussianBlur.h"

#include "Effects/Support/GaussianBlurPasses.h"

#include <algorithm>

namespace vorto::effects {

bool isNoBlur(double sigma) {
  if (!(sigma > 0)) return true;
  return sigma < 1 && gaussianFilter(sigma).radius() == 0;
}

bool gaussianBlur(const VortoBitmap& in, VortoBitmap& out, double sigma, GaussianEdges edges, std::string* reason) {
  const GaussianFilter filter = gaussianFilter(std::min(sigma, kLargestSigma));
  return filter.weights.empty() ? blurByRecursion(in, out, filter, edges, reason)
                                : blurByWeights(in, out, filter, edges, reason);
}

}  // namespace vorto::effects
