// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

// Gaussian filters of lines that lie side by side: value `i` of line `k` is at [i * lanes + k].
//
// A small sigma is computed as it is defined, as a weighted sum with the Gaussian's samples, normalised; what is left
// out of its tails is less than 1/4096 of the whole. Above kLargestDirectSigma the filter is recursive, and costs the
// same for every sigma: R. Deriche, "Recursively implementing the Gaussian and its derivatives" (INRIA research report
// 1893, 1993), fourth order, as the sum of a causal and an anticausal part, each the real part of two complex poles.
// Either part starts as if the line went on for ever, so that nothing is lost at the ends. A signal within 0 to 1 comes
// out within 0.0003 of the weighted sum.
namespace vorto::effects {

// What lies outside a line: zeros, or its first and last value.
enum class GaussianEdges { Transparent, Repeat };

struct GaussianFilter {
  // s(i) = x(i) + (re + i im) s(i - 1); the filter's causal part is the real part of causal s(i), its anticausal part
  // that of anticausal t(i + 1) with t from the other end. At x = 1 for ever, s = t is steady.
  struct Complex {
    float re, im;
  };
  struct Pole {
    Complex pole, causal, anticausal, steady;
  };
  std::array<Pole, 2> poles{};
  // In the middle and outwards, of the weighted sum; empty where the filter is recursive.
  std::vector<float> weights;

  // How many values beyond either end of a line the weighted sum takes.
  std::size_t radius() const { return weights.empty() ? 0 : weights.size() - 1; }
};

inline constexpr double kLargestDirectSigma = 3;

// Sigma is in values, above 0 and at most some thousands. One so small that the radius is 0 leaves lines as they are.
GaussianFilter gaussianFilter(double sigma);

// Of what lines come in multiples: kGaussianLanes lines; or a row of pixels, which is four lines, in
// kGaussianRowPixels.
inline constexpr std::size_t kGaussianLanes = 32;
inline constexpr std::size_t kGaussianRowPixels = 16;

// Filters `count` values of `lanes` lines. A weighted sum takes radius() values more at `in` before and after each
// line; it alone takes a row of pixels. A recursive filter needs no more, but `edges`. `out` is other memory. Values
// must not be infinite or NaN.
void gaussianLines(const GaussianFilter& filter, const float* in, float* out, std::size_t count, std::size_t lanes,
                   GaussianEdges edges);

// Pixels of four channels from rows into lines: four lanes a row, a value a pixel. Channels keep their units and their
// order, but get kGaussianFloor added, so that what fades away does not end in denormal numbers, which are slow; floats
// that are NaN count as 0, and their magnitude stops at kGaussianCeiling.
template <class Channel>
void gaussianLoad(const Channel* const* rows, std::size_t rowCount, std::size_t pixels, float* lines,
                  std::size_t lanes);

inline constexpr float kGaussianFloor = 0x1p-80F;
inline constexpr float kGaussianCeiling = 0x1p96F;

// Lines into rows of up to lanes / 4 pixels, a line a channel; `rowBytes` is the distance of rows in bytes. Integers
// round to the nearest, within 0 to alpha. Floats whose magnitude is below twice kGaussianFloor become 0.
template <class Layout>
void gaussianStore(const float* lines, std::size_t lanes, std::size_t rowCount, std::size_t pixels,
                   typename Layout::Channel* out, std::size_t rowBytes);

// The definitions.
void gaussianLinesScalar(const GaussianFilter& filter, const float* in, float* out, std::size_t count,
                         std::size_t lanes, GaussianEdges edges);
template <class Channel>
void gaussianLoadScalar(const Channel* const* rows, std::size_t rowCount, std::size_t pixels, float* lines,
                        std::size_t lanes);
template <class Layout>
void gaussianStoreScalar(const float* lines, std::size_t lanes, std::size_t rowCount, std::size_t pixels,
                         typename Layout::Channel* out, std::size_t rowBytes);

}  // namespace vorto::effects
