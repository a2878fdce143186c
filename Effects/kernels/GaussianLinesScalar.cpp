// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/PixelLayout.h"
#include "Effects/kernels/FloatPixels.h"
#include "Effects/kernels/GaussianLines.h"

#include <algorithm>
#include <cmath>
#include <complex>

namespace vorto::effects {
namespace {

// The tail beyond this many sigmas, on both sides together, is 1/4096 of a Gaussian.
constexpr double kSigmasTaken = 3.668;

std::vector<float> sampledGaussian(double sigma) {
  const auto radius = static_cast<std::size_t>(std::max(std::ceil(kSigmasTaken * sigma - 0.5), 0.0));
  std::vector<double> samples(radius + 1);
  double sum = 0;
  for (std::size_t i = 0; i <= radius; ++i) {
    const double x = static_cast<double>(i) / sigma;
    samples[i] = std::exp(-0.5 * x * x);
    sum += i == 0 ? samples[i] : 2 * samples[i];
  }
  std::vector<float> weights;
  weights.reserve(samples.size());
  for (const double sample : samples) weights.push_back(static_cast<float>(sample / sum));
  return weights;
}

// Deriche's constants: (a cos(w x) + b sin(w x)) exp(-d x), twice, for x in sigmas.
struct Term {
  double cosine, sine, frequency, decay;
};
constexpr Term kTerms[2] = {{1.68, 3.735, 0.6318, 1.783}, {-0.6803, -0.2598, 1.997, 1.723}};

GaussianFilter::Complex rounded(std::complex<double> value) {
  return {static_cast<float>(value.real()), static_cast<float>(value.imag())};
}

// The poles are rounded first, so that what they keep for ever adds up to 1 as they are.
std::array<GaussianFilter::Pole, 2> recursivePoles(double sigma) {
  using Complex = std::complex<double>;
  std::array<GaussianFilter::Pole, 2> made{};
  Complex poles[2], factors[2];
  double sum = 0;
  for (std::size_t k = 0; k < 2; ++k) {
    made[k].pole = rounded(std::polar(std::exp(-kTerms[k].decay / sigma), kTerms[k].frequency / sigma));
    poles[k] = {made[k].pole.re, made[k].pole.im};
    factors[k] = {kTerms[k].cosine, -kTerms[k].sine};
    sum += (factors[k] * (1.0 + poles[k]) / (1.0 - poles[k])).real();
  }
  for (std::size_t k = 0; k < 2; ++k) {
    made[k].causal = rounded(factors[k] / sum);
    made[k].anticausal = rounded(factors[k] / sum * poles[k]);
    made[k].steady = rounded(1.0 / (1.0 - poles[k]));
  }
  return made;
}

struct State {
  float re = 0, im = 0;

  void step(float x, const GaussianFilter::Complex& pole) {
    const float real = x + (pole.re * re - pole.im * im);
    im = pole.re * im + pole.im * re;
    re = real;
  }
  float real(const GaussianFilter::Complex& factor) const { return factor.re * re - factor.im * im; }
};

State steadyState(const GaussianFilter::Pole& pole, float x, GaussianEdges edges) {
  if (edges == GaussianEdges::Transparent) return {};
  return {x * pole.steady.re, x * pole.steady.im};
}

void recursiveLine(const GaussianFilter& filter, const float* in, float* out, std::size_t count, std::size_t lanes,
                   GaussianEdges edges) {
  const auto& [first, second] = filter.poles;
  State a = steadyState(first, in[0], edges), b = steadyState(second, in[0], edges);
  for (std::size_t i = 0; i < count; ++i) {
    a.step(in[i * lanes], first.pole);
    b.step(in[i * lanes], second.pole);
    out[i * lanes] = a.real(first.causal) + b.real(second.causal);
  }
  const float last = in[(count - 1) * lanes];
  a = steadyState(first, last, edges), b = steadyState(second, last, edges);
  for (std::size_t i = count; i-- > 0;) {
    out[i * lanes] = out[i * lanes] + (a.real(first.anticausal) + b.real(second.anticausal));
    a.step(in[i * lanes], first.pole);
    b.step(in[i * lanes], second.pole);
  }
}

void weightedLine(const std::vector<float>& weights, const float* in, float* out, std::size_t count,
                  std::size_t lanes) {
  for (std::size_t i = 0; i < count; ++i) {
    const float* const middle = in + i * lanes;
    float sum = weights[0] * middle[0];
    for (std::size_t k = 1; k < weights.size(); ++k) {
      sum = sum + weights[k] * (*(middle - k * lanes) + middle[k * lanes]);
    }
    out[i * lanes] = sum;
  }
}

float loaded(float value) {
  const float limited = std::min(std::max(value, -kGaussianCeiling), kGaussianCeiling);
  return (value == value ? limited : 0.0F) + kGaussianFloor;
}

template <class Channel>
float loaded(Channel value) {
  return static_cast<float>(value) + kGaussianFloor;
}

// Of floats, what the floor has left of nothing.
template <class Channel>
Channel stored(float value, float alpha) {
  const bool isNothing = std::is_same_v<Channel, float> && std::abs(value) < 2 * kGaussianFloor;
  return isNothing ? Channel{0} : storedChannel<Channel>(value, alpha);
}

}  // namespace

GaussianFilter gaussianFilter(double sigma) {
  GaussianFilter filter;
  if (sigma > kLargestDirectSigma) {
    filter.poles = recursivePoles(sigma);
  } else {
    filter.weights = sampledGaussian(sigma);
  }
  return filter;
}

void gaussianLinesScalar(const GaussianFilter& filter, const float* in, float* out, std::size_t count,
                         std::size_t lanes, GaussianEdges edges) {
  for (std::size_t lane = 0; lane < lanes; ++lane) {
    if (filter.weights.empty()) {
      recursiveLine(filter, in + lane, out + lane, count, lanes, edges);
    } else {
      weightedLine(filter.weights, in + lane, out + lane, count, lanes);
    }
  }
}

template <class Channel>
void gaussianLoadScalar(const Channel* const* rows, std::size_t rowCount, std::size_t pixels, float* lines,
                        std::size_t lanes) {
  for (std::size_t x = 0; x < pixels; ++x) {
    for (std::size_t row = 0; row < rowCount; ++row) {
      for (std::size_t c = 0; c < 4; ++c) lines[x * lanes + 4 * row + c] = loaded(rows[row][4 * x + c]);
    }
  }
}

template <class Layout>
void gaussianStoreScalar(const float* lines, std::size_t lanes, std::size_t rowCount, std::size_t pixels,
                         typename Layout::Channel* out, std::size_t rowBytes) {
  using Channel = typename Layout::Channel;
  for (std::size_t row = 0; row < rowCount; ++row) {
    auto* const pixel = reinterpret_cast<Channel*>(reinterpret_cast<std::uint8_t*>(out) + row * rowBytes);
    const float* const line = lines + row * lanes;
    for (std::size_t i = 0; i < 4 * pixels; ++i) {
      pixel[i] = stored<Channel>(line[i], line[i / 4 * 4 + Layout::kAlpha]);
    }
  }
}

using Byte = std::uint8_t;
using Word = std::uint16_t;
template void gaussianLoadScalar(const Byte* const*, std::size_t, std::size_t, float*, std::size_t);
template void gaussianLoadScalar(const Word* const*, std::size_t, std::size_t, float*, std::size_t);
template void gaussianLoadScalar(const float* const*, std::size_t, std::size_t, float*, std::size_t);
template void gaussianStoreScalar<RGBA8>(const float*, std::size_t, std::size_t, std::size_t, Byte*, std::size_t);
template void gaussianStoreScalar<ARGB8>(const float*, std::size_t, std::size_t, std::size_t, Byte*, std::size_t);
template void gaussianStoreScalar<RGBA16>(const float*, std::size_t, std::size_t, std::size_t, Word*, std::size_t);
template void gaussianStoreScalar<RGBAFloat>(const float*, std::size_t, std::size_t, std::size_t, float*, std::size_t);

}  // namespace vorto::effects
