// SPDX-License-Identifier: BSD-3-Clause
// Integers along a line, by adding. Included once for each target, hence no guard but this one.
#if defined(VORTO_GRADIENT_STEPS_TARGET) == defined(HWY_TARGET_TOGGLE)
#ifdef VORTO_GRADIENT_STEPS_TARGET
#undef VORTO_GRADIENT_STEPS_TARGET
#else
#define VORTO_GRADIENT_STEPS_TARGET
#endif

#include <hwy/highway.h>

#include <cmath>
#include <cstddef>
#include <cstdint>

HWY_BEFORE_NAMESPACE();
namespace vorto::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// One component of a table: start + i x rise at index i, from 0 to 255, as 8.24 bits in words that wrap. A table's
// numbers are cut off after several roundings, of which that of the component to single precision is the largest; all
// of them and those of the steps come to less than 2^-16. So the integer is certain where a step lies further than
// kMargin from integers.
class GradientSteps {
 public:
  static constexpr std::uint32_t kLength = 64;  // steps from one start, at most

  GradientSteps() = default;
  GradientSteps(double start, double rise) : _start(start), _rise(rise) {}
  static GradientSteps constant(std::uint32_t integer) { return {static_cast<double>(integer) + 0.5, 0.0}; }

  std::uint32_t at(std::uint32_t index) const {
    return fixed(_start + static_cast<double>(index) * _rise) + (std::uint32_t{1} << kMarginBit);
  }
  std::uint32_t rise() const { return fixed(_rise); }

  // Adds the margin beforehand: what lies within it around an integer has only zeros between the integer and the two
  // lowest margins.
  static constexpr int kMarginBit = 24 - 15;
  static constexpr std::uint32_t kBeyondMargin = (std::uint32_t{1} << 24) - (std::uint32_t{2} << kMarginBit);

 private:
  static std::uint32_t fixed(double v) { return static_cast<std::uint32_t>(std::llrint(v * 0x1p24)); }

  double _start = 0.0;
  double _rise = 0.0;
};

// Stores the integers of N components for `count` indices from `first` on, in whole vectors. False when one of them
// is not certain: then what was stored is of no use.
template <std::size_t N>
HWY_INLINE bool takeSteps(const GradientSteps (&steps)[N], std::uint32_t first, std::uint32_t count,
                          std::uint32_t* const (&to)[N]) {
  const hn::ScalableTag<std::uint32_t> d;
  const auto lanes = static_cast<std::uint32_t>(hn::Lanes(d));
  const auto beyondMargin = hn::Set(d, GradientSteps::kBeyondMargin);
  auto least = hn::Set(d, GradientSteps::kBeyondMargin);
  for (std::size_t c = 0; c < N; ++c) {
    const std::uint32_t rise = steps[c].rise();
    auto value = hn::Add(hn::Set(d, steps[c].at(first)), hn::Mul(hn::Iota(d, 0), hn::Set(d, rise)));
    const auto step = hn::Set(d, rise * lanes);
    for (std::uint32_t i = 0; i < count; i += lanes) {
      hn::StoreU(hn::ShiftRight<24>(value), d, to[c] + i);
      least = hn::Min(least, hn::And(value, beyondMargin));
      value = hn::Add(value, step);
    }
  }
  return hn::AllFalse(d, hn::Eq(least, hn::Zero(d)));
}

}  // namespace vorto::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif
