// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/GaussianBlurPasses.h"

#include <algorithm>

namespace vorto::effects {

bool isNoBlur(double sigma) {
  if (!(sigma > 0)) return true;
  return sigma < 1 && gaussianFilter(sigma).radius() == 0;
}

bool gaussianBlur(const VortoBitmap& in, double sigma, GaussianEdges edges, const TakeBlurred& take,
                  std::string* reason) {
  const GaussianFilter filter = gaussianFilter(std::min(sigma, kLargestSigma));
  return filter.weights.empty() ? blurByRecursion(in, filter, edges, take, reason)
                                : blurByWeights(in, filter, edges, take, reason);
}

}  // namespace vorto::effects
