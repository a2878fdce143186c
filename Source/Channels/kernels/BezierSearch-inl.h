// SPDX-License-Identifier: BSD-3-Clause
// Where bezierInterp's search ends, found without searching. Included once for each target, hence no guard but this
// one.
#if defined(VORTO_BEZIER_SEARCH_TARGET) == defined(HWY_TARGET_TOGGLE)
#ifdef VORTO_BEZIER_SEARCH_TARGET
#undef VORTO_BEZIER_SEARCH_TARGET
#else
#define VORTO_BEZIER_SEARCH_TARGET
#endif

#include <hwy/highway.h>

#include <cstdint>

HWY_BEFORE_NAMESPACE();
namespace vorto::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// The search for the x controls (0, m, m, 1) tries numbers of 1, 2, 3 ... binary digits, each in the middle of the
// interval that holds the root s of x(s) = t. It ends at the first whose x lies within 1e-7 of t, or with the one of 24
// digits, since 2^-24 is below 1e-7. The numbers whose x lies that near make up an interval around the root; of all in
// it the one with the fewest digits is tried first, and where none has less than 24, the one of 24 is the middle of
// what the interval lies in. So the root and the slope there are enough to know the end, unless an end of the interval
// comes close to a number of 23 digits: then it is uncertain, and the search has to be made.
class BezierSearch {
 public:
  using Doubles = hn::ScalableTag<double>;
  using DoubleVector = hn::Vec<Doubles>;

  // Middles for which x rises steeply enough everywhere: by 3 m (1 - m) at least.
  static bool foresees(double middle) { return middle >= 0.1 && middle <= 0.9; }

  explicit BezierSearch(double middle)
      : _middle3(3.0 * middle), _inverseAt0(1.0 / (3.0 * middle)), _inverseAt1(1.0 / (3.0 - 3.0 * middle)) {}

  // The end of the search for every t; for t beyond 0..1 anything. `isCertain` is false where another number may be it.
  HWY_INLINE DoubleVector endFor(DoubleVector t, hn::Mask<Doubles>& isCertain) const {
    const Doubles d;
    const auto limited = hn::Min(t, hn::Set(d, 1.0));
    const auto near = hn::PromoteTo(d, nearRoot(hn::DemoteTo(Floats(), limited)));
    const auto middle3 = hn::Set(d, _middle3);
    const auto inverse = hn::Div(hn::Set(d, 1.0), slope(d, near, middle3));
    const auto correction = hn::Mul(hn::Sub(place(near, middle3), limited), inverse);
    const auto root = hn::Sub(near, correction);
    const auto reach = hn::Mul(inverse, hn::Set(d, 1e-7));
    isCertain = hn::Lt(hn::Abs(correction), hn::Set(d, 0x1p-20));
    return endWithin(hn::Sub(root, reach), hn::Add(root, reach), isCertain);
  }

 private:
  using Floats = hn::Rebind<float, Doubles>;
  using Bits = hn::RebindToUnsigned<Doubles>;
  static constexpr double kUnits = 0x1p23;  // numbers of 23 digits are integers of these

  // x(s) without the control that is 0, and its derivative.
  template <class Vector>
  static HWY_INLINE Vector place(Vector s, Vector middle3) {
    return hn::Mul(s, hn::MulAdd(s, hn::Sub(s, middle3), middle3));
  }
  template <class D>
  static HWY_INLINE hn::Vec<D> slope(D d, hn::Vec<D> s, hn::Vec<D> middle3) {
    const auto inner = hn::NegMulAdd(hn::Set(d, 2), middle3, hn::Mul(hn::Set(d, 3), s));
    return hn::MulAdd(s, inner, middle3);
  }

  // The root to within 1e-6: from the cubic that has the inverse function's values and slopes at both ends, three
  // steps of Newton's.
  HWY_INLINE hn::Vec<Floats> nearRoot(hn::Vec<Floats> t) const {
    const Floats d;
    const auto middle3 = hn::Set(d, static_cast<float>(_middle3));
    const auto u = hn::Sub(hn::Set(d, 1.0f), t);
    const auto rise = hn::Mul(hn::Mul(t, t), hn::NegMulAdd(hn::Set(d, 2.0f), t, hn::Set(d, 3.0f)));
    const auto bend = hn::Sub(hn::Mul(hn::Set(d, static_cast<float>(_inverseAt0)), u),
                              hn::Mul(hn::Set(d, static_cast<float>(_inverseAt1)), t));
    auto s = hn::MulAdd(hn::Mul(t, u), bend, rise);
    for (int i = 0; i < 3; ++i) s = hn::Sub(s, hn::Div(hn::Sub(place(s, middle3), t), slope(d, s, middle3)));
    return s;
  }

  // Of the numbers between `low` and `high` that lie inside 0..1 the one with the fewest digits, of 24 at most.
  static HWY_INLINE DoubleVector endWithin(DoubleVector low, DoubleVector high, hn::Mask<Doubles>& isCertain) {
    const Doubles d;
    const Bits bits;
    const auto units = hn::Set(d, kUnits);
    const auto first = fixed(hn::Max(hn::Mul(low, units), hn::Set(d, 0.5)), isCertain);
    const auto last = fixed(hn::Min(hn::Mul(high, units), hn::Set(d, kUnits - 0.5)), isCertain);
    // Twice the units, and one, are the numbers of 24 digits in the middle. Below the highest digit in which the two
    // differ, all are left out.
    const auto one = hn::Set(bits, 1);
    const auto middleOfFirst = hn::Or(hn::ShiftRight<kFraction - 1>(first), one);
    const auto middleOfLast = hn::Or(hn::ShiftRight<kFraction - 1>(last), one);
    auto below = hn::Xor(middleOfFirst, middleOfLast);
    below = hn::Or(below, hn::ShiftRight<1>(below));
    below = hn::Or(below, hn::ShiftRight<2>(below));
    below = hn::Or(below, hn::ShiftRight<4>(below));
    below = hn::Or(below, hn::ShiftRight<8>(below));
    below = hn::Or(below, hn::ShiftRight<16>(below));
    const auto digits = hn::And(hn::AndNot(hn::ShiftRight<1>(below), middleOfLast), hn::Set(bits, 0xFFFFFF));
    // Numbers from 2^28 on count 2^-24 in their last place.
    const auto base = hn::Set(d, 0x1p28);
    return hn::Sub(hn::BitCast(d, hn::Or(digits, hn::BitCast(bits, base))), base);
  }

  // A number of units in fixed point; uncertain within two steps of an integer.
  static constexpr int kFraction = 13;
  static HWY_INLINE hn::Vec<Bits> fixed(DoubleVector units, hn::Mask<Doubles>& isCertain) {
    const Doubles d;
    const Bits bits;
    const auto v = hn::BitCast(bits, hn::Add(units, hn::Set(d, 1.5 * 0x1p39)));  // whose last place counts 2^-13
    const auto beyondMargin = hn::And(hn::Add(v, hn::Set(bits, 2)), hn::Set(bits, (1 << kFraction) - 4));
    isCertain = hn::And(isCertain, hn::RebindMask(d, hn::Ne(beyondMargin, hn::Zero(bits))));
    return v;
  }

  double _middle3;
  double _inverseAt0;  // slopes of the inverse function
  double _inverseAt1;
};

}  // namespace vorto::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif
