// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/kernels/GradientTable.h"

#include "Channels/kernels/GradientRuns.h"
#include "TarnCore/kernels/Dispatch.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <utility>

// The targets whose vectors have no fixed size cannot be kept in arrays, as the solver does.
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Channels/kernels/GradientTable.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h:
#include <hwy/highway.h>

#include "Channels/kernels/BezierSearch-inl.h"
#include "Channels/kernels/GradientSteps-inl.h"

// A table is made in blocks. The folders fill four planes (alpha, red, green, blue) of 32-bit words, one word per
// position: the bits of the float, or the integer whose low byte or word is wanted. Then the planes are woven into the
// table. Vectors may write beyond the positions they are for, up to the padding of a plane: what lies there belongs to
// the next run or to nobody.
HWY_BEFORE_NAMESPACE();
namespace vorto::kernels::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using Doubles = hn::ScalableTag<double>;
using DoubleVector = hn::Vec<Doubles>;
using Words = hn::ScalableTag<std::uint32_t>;

constexpr std::size_t kLanes = hn::MaxLanes(Doubles());
constexpr std::size_t kVectorsAtOnce = 4;  // hides the latency of the solver's chain of dependent steps
constexpr std::uint32_t kBlock = 1024;
constexpr std::size_t kPadding = kVectorsAtOnce * kLanes;
static_assert(kPadding % hn::MaxLanes(Words()) == 0);  // planes begin aligned

// Calls function(c) for every c below N, each with a c that is known when it is compiled.
template <std::size_t N, class Function>
HWY_INLINE void forEachComponent(Function function) {
  [&]<std::size_t... c>(std::index_sequence<c...>) {
    (function(std::integral_constant<std::size_t, c>()), ...);
  }
  (std::make_index_sequence<N>());
}

struct Planes {
  HWY_ALIGN std::uint32_t words[4][kBlock + kPadding];
};

// Words of a float table.
struct FloatWords {
  static constexpr bool kAreIntegers = false;

  static std::uint32_t word(double component) { return std::bit_cast<std::uint32_t>(gradientFloat(component)); }

  static HWY_INLINE void store(DoubleVector components, std::uint32_t* to) {
    const hn::Rebind<float, Doubles> floats;
    const hn::Rebind<std::uint32_t, Doubles> words;
    hn::StoreU(hn::BitCast(words, hn::DemoteTo(floats, components)), words, to);
  }
};

// Words of a byte or word table.
struct IntegerWords {
  static constexpr bool kAreIntegers = true;

  static std::uint32_t word(double component) {
    return static_cast<std::uint32_t>(gradientInteger(gradientFloat(component)));
  }

  static HWY_INLINE void store(DoubleVector components, std::uint32_t* to) {
    const Doubles d;
    const hn::Rebind<float, Doubles> floats;
    const hn::Rebind<std::int32_t, Doubles> integers;
    const hn::Rebind<std::uint32_t, Doubles> words;
    const auto rounded = hn::PromoteTo(d, hn::DemoteTo(floats, components));
    const auto truncated = hn::DemoteTo(integers, hn::Mul(rounded, hn::Set(d, 255.0)));
    hn::StoreU(hn::BitCast(words, truncated), words, to);
  }
};

// How to divide by the width of a segment.
enum class Division {
  byOne,         // not at all
  byReciprocal,  // by multiplications
  plain,
};

// Quotients over a segment of this place and width can be corrected by remainders when these neither overflow nor lose
// bits below the smallest normal number.
Division divisionFor([[maybe_unused]] double left, double width) {
  if (width == 1.0) return Division::byOne;
#if HWY_NATIVE_FMA
  constexpr double kSmallest = 0x1p-100;
  const bool isExact = width >= kSmallest && width <= 0x1p+100 && (left == 0.0 || std::abs(left) >= kSmallest);
  if (isExact) return Division::byReciprocal;
#endif
  return Division::plain;
}

// Calls function(division) with a division that is known when it is compiled.
template <class Function>
HWY_INLINE void withDivision(const GradientRun& run, Function function) {
  const double left = run.left->position;
  switch (divisionFor(left, run.right->position - left)) {
    case Division::byOne:
      return function(std::integral_constant<Division, Division::byOne>());
    case Division::byReciprocal:
      return function(std::integral_constant<Division, Division::byReciprocal>());
    case Division::plain:
      return function(std::integral_constant<Division, Division::plain>());
  }
}

// The positions of a run: i * step for ascending i, a vector at a time, as fractions t of the run's segment. By
// reciprocal: the quotient by the rounded reciprocal is at most two units off, one correction by its exact remainder
// leaves it within one, and another one from there gives the rounded quotient (Markstein, 1990).
template <Division division>
class Fractions {
 public:
  Fractions(const GradientRun& run, std::uint32_t first, double step)
      : _index(hn::Iota(Doubles(), static_cast<double>(first))),
        _step(hn::Set(Doubles(), step)),
        _left(hn::Set(Doubles(), run.left->position)),
        _width(hn::Set(Doubles(), run.right->position - run.left->position)),
        _reciprocal(hn::Set(Doubles(), 1.0 / (run.right->position - run.left->position))) {}

  HWY_INLINE DoubleVector next() {
    const DoubleVector position = hn::Mul(_index, _step);
    _index = hn::Add(_index, hn::Set(Doubles(), static_cast<double>(kLanes)));
    const DoubleVector distance = hn::Sub(position, _left);
    if constexpr (division == Division::byOne) return distance;
    if constexpr (division == Division::plain) return hn::Div(distance, _width);
    return corrected(distance, corrected(distance, hn::Mul(distance, _reciprocal)));
  }

 private:
  HWY_INLINE DoubleVector corrected(DoubleVector distance, DoubleVector quotient) const {
    const DoubleVector remainder = hn::NegMulAdd(quotient, _width, distance);
    return hn::MulAdd(remainder, _reciprocal, quotient);
  }

  DoubleVector _index;
  DoubleVector _step;
  DoubleVector _left;
  DoubleVector _width;
  DoubleVector _reciprocal;
};

void fillWords(std::uint32_t word, std::uint32_t* to, std::uint32_t count) {
  const Words words;
  const auto value = hn::Set(words, word);
  std::uint32_t i = 0;
  for (; i + hn::Lanes(words) <= count; i += static_cast<std::uint32_t>(hn::Lanes(words)))
    hn::StoreU(value, words, to + i);
  for (; i < count; ++i) to[i] = word;
}

// One folder's half of the planes, N components wide.
template <class WordKind, std::size_t N>
class FolderPlanes {
 public:
  FolderPlanes(GradientEntries entries, const GradientComponent (&components)[N], std::uint32_t count)
      : _entries(entries),
        _components(components),
        _step(gradientStep(count)),
        _last(static_cast<double>(count - 1)),
        _runs(entries, components, count) {}

  // Fills the planes for the positions [first, first + count).
  void fill(std::uint32_t first, std::uint32_t count, Planes& planes, std::size_t firstPlane) {
    for (std::uint32_t done = 0; done < count;) {
      const GradientRun& run = _runs.runAt(first + done);
      const std::uint32_t length = std::min(run.end - (first + done), count - done);
      std::uint32_t* to[N];
      for (std::size_t c = 0; c < N; ++c) to[c] = planes.words[firstPlane + c] + done;
      fillRun(run, first + done, length, to);
      done += length;
    }
  }

 private:
  using Targets = std::uint32_t* const (&)[N];

  void fillRun(const GradientRun& run, std::uint32_t first, std::uint32_t count, Targets to) const {
    switch (run.rule) {
      case GradientRun::Rule::unwritten:
        for (std::size_t c = 0; c < N; ++c) fillWords(0, to[c], count);
        break;
      case GradientRun::Rule::constant:
        for (std::size_t c = 0; c < N; ++c) fillWords(WordKind::word(value(run.left, c)), to[c], count);
        break;
      case GradientRun::Rule::linear:
        fillLinear(run, first, count, to);
        break;
      case GradientRun::Rule::smooth:
        withDivision(run, [&](auto division) { fillSmooth<division>(run, first, count, to); });
        break;
      case GradientRun::Rule::definition:
        fillByDefinition(first, count, to);
        break;
    }
  }

  double value(const GradientEntry* entry, std::size_t c) const { return entry->sample.*_components[c]; }

  void fillByDefinition(std::uint32_t first, std::uint32_t count, Targets to) const {
    for (std::uint32_t i = 0; i < count; ++i) {
      double out[N] = {};
      evaluateGradient(_entries, _components, static_cast<double>(first + i) * _step, out);
      for (std::size_t c = 0; c < N; ++c) to[c][i] = WordKind::word(out[c]);
    }
  }

  void fillLinear(const GradientRun& run, std::uint32_t first, std::uint32_t count, Targets to) const {
    constexpr std::uint32_t kFew = 16;  // for which it is not worth the preparation
    if (WordKind::kAreIntegers && count > kFew && takesSteps(run)) {
      fillSteps(run, first, count, to);
    } else {
      fillLine(run, first, count, to);
    }
  }

  // Position by position as defined.
  void fillLine(const GradientRun& run, std::uint32_t first, std::uint32_t count, Targets to) const {
    withDivision(run, [&](auto division) { fillLine<division>(run, first, count, to); });
  }

  template <Division division>
  void fillLine(const GradientRun& run, std::uint32_t first, std::uint32_t count, Targets to) const {
    const Doubles d;
    DoubleVector start[N];
    DoubleVector rise[N];
    for (std::size_t c = 0; c < N; ++c) {
      start[c] = hn::Set(d, value(run.left, c));
      rise[c] = hn::Set(d, value(run.right, c) - value(run.left, c));
    }
    Fractions<division> fractions(run, first, _step);
    for (std::uint32_t i = 0; i < count; i += kLanes) {
      const DoubleVector t = fractions.next();
      forEachComponent<N>([&](auto c) { WordKind::store(hn::Add(start[c], hn::Mul(t, rise[c])), to[c] + i); });
    }
  }

  // Whether GradientSteps may be taken: from 0 to 1 and over segments in which rounding moves no position noticeably.
  bool takesSteps(const GradientRun& run) const {
    const double left = run.left->position;
    const double right = run.right->position;
    const auto isUnit = [](double v) { return v >= 0.0 && v <= 1.0; };
    bool areUnits = left >= -1.0 && right <= 2.0 && right - left >= 0x1p-16;
    for (std::size_t c = 0; c < N; ++c) {
      areUnits = areUnits && isUnit(value(run.left, c)) && isUnit(value(run.right, c));
    }
    return areUnits;
  }

  // By steps where they are certain. Tables whose values are integers again and again are not certain again and again,
  // so what follows is made as defined as well.
  void fillSteps(const GradientRun& run, std::uint32_t first, std::uint32_t count, Targets to) const {
    GradientSteps steps[N];
    const double perPosition = _step / (run.right->position - run.left->position);
    for (std::size_t c = 0; c < N; ++c) {
      const double rise = (value(run.right, c) - value(run.left, c)) * 255.0;
      if (rise == 0.0) {
        steps[c] = GradientSteps::constant(WordKind::word(value(run.left, c)));
      } else {
        const double start = value(run.left, c) * 255.0 - run.left->position * _last * (rise * perPosition);
        steps[c] = GradientSteps(start, rise * perPosition);
      }
    }
    for (std::uint32_t done = 0; done < count;) {
      std::uint32_t length = std::min(GradientSteps::kLength, count - done);
      std::uint32_t* place[N];
      for (std::size_t c = 0; c < N; ++c) place[c] = to[c] + done;
      if (!takeSteps<N>(steps, first + done, length, place)) {
        length = std::min(8 * GradientSteps::kLength, count - done);
        fillLine(run, first + done, length, place);
      }
      done += length;
    }
  }

  template <Division division>
  void fillSmooth(const GradientRun& run, std::uint32_t first, std::uint32_t count, Targets to) const {
    Fractions<division> fractions(run, first, _step);
    const double middle = run.left->sample.middle;
    if (BezierSearch::foresees(middle)) {
      const BezierSearch search(middle);
      for (std::uint32_t i = 0; i < count; i += kLanes) {
        const DoubleVector t[1] = {fractions.next()};
        hn::Mask<Doubles> isCertain;
        DoubleVector s[1] = {search.endFor(t[0], isCertain)};
        if (HWY_UNLIKELY(!hn::AllTrue(Doubles(), isCertain))) solve(middle, t, s);
        storeCurve(run, s[0], to, i);
      }
      return;
    }
    for (std::uint32_t i = 0; i < count; i += kVectorsAtOnce * kLanes) {
      DoubleVector t[kVectorsAtOnce];
      DoubleVector s[kVectorsAtOnce];
      for (DoubleVector& fraction : t) fraction = fractions.next();
      solve(middle, t, s);
      for (std::size_t v = 0; v < kVectorsAtOnce; ++v) storeCurve(run, s[v], to, i + v * kLanes);
    }
  }

  // bezierInterp's search for the x controls (0, m, m, 1). It does not depend on the component. The fractions of a run
  // are never negative, so every search starts at 0; the step is the same for all, and reaches the tolerance before the
  // 32nd halving. A search that has come close enough keeps its candidate.
  template <std::size_t vectors>
  static HWY_INLINE void solve(double middle, const DoubleVector (&t)[vectors], DoubleVector (&candidate)[vectors]) {
    const Doubles d;
    const DoubleVector one = hn::Set(d, 1.0);
    const DoubleVector middle3 = hn::Set(d, 3.0 * middle);
    const DoubleVector tolerance = hn::Set(d, 1e-7);
    DoubleVector kept[vectors];
    hn::Mask<Doubles> searching[vectors];
    for (std::size_t v = 0; v < vectors; ++v) {
      kept[v] = hn::Zero(d);
      candidate[v] = hn::Zero(d);
      searching[v] = hn::Eq(one, one);
    }
    double step = 1.0;
    do {
      step *= 0.5;
      const DoubleVector steps = hn::Set(d, step);
      for (std::size_t v = 0; v < vectors; ++v) {
        const DoubleVector s = hn::Add(kept[v], steps);
        const DoubleVector u = hn::Sub(one, s);
        const DoubleVector u2 = hn::Mul(u, u);
        const DoubleVector s2 = hn::Mul(s, s);
        // The first control is 0 and the last one 1, which leave nothing to add and nothing to multiply.
        const DoubleVector x =
            hn::Add(hn::Add(hn::Mul(hn::Mul(middle3, u2), s), hn::Mul(hn::Mul(middle3, u), s2)), hn::Mul(s2, s));
        const DoubleVector f = hn::Sub(x, t[v]);
        kept[v] = hn::IfThenElse(hn::Le(f, hn::Zero(d)), s, kept[v]);
        candidate[v] = hn::IfThenElse(searching[v], s, candidate[v]);
        searching[v] = hn::AndNot(hn::Lt(hn::Abs(f), tolerance), searching[v]);
      }
    } while (step >= 1e-7);
  }

  HWY_INLINE void storeCurve(const GradientRun& run, DoubleVector s, Targets to, std::size_t offset) const {
    const Doubles d;
    const DoubleVector u = hn::Sub(hn::Set(d, 1.0), s);
    const DoubleVector u2 = hn::Mul(u, u);
    const DoubleVector s2 = hn::Mul(s, s);
    const DoubleVector u3 = hn::Mul(u2, u);
    const DoubleVector s3 = hn::Mul(s2, s);
    forEachComponent<N>([&](auto c) {
      const double a = value(run.left, c);
      const double b = value(run.right, c);
      const DoubleVector first = hn::Mul(hn::Set(d, a), u3);
      const DoubleVector second = hn::Mul(hn::Mul(hn::Set(d, 3.0 * a), u2), s);
      const DoubleVector third = hn::Mul(hn::Mul(hn::Set(d, 3.0 * b), u), s2);
      const DoubleVector fourth = hn::Mul(hn::Set(d, b), s3);
      WordKind::store(hn::Add(hn::Add(hn::Add(first, second), third), fourth), to[c] + offset);
    });
  }

  GradientEntries _entries;
  const GradientComponent (&_components)[N];
  double _step;
  double _last;  // the index at 1
  GradientRuns _runs;
};

// Weave as many positions as a vector has words into 4 components each.

HWY_INLINE void weave(const Planes& planes, std::size_t at, std::uint8_t* out) {
  const Words words;
  const auto byte = hn::Set(words, 0xFF);
  const auto alpha = hn::And(hn::Load(words, planes.words[0] + at), byte);
  const auto red = hn::ShiftLeft<8>(hn::And(hn::Load(words, planes.words[1] + at), byte));
  const auto green = hn::ShiftLeft<16>(hn::And(hn::Load(words, planes.words[2] + at), byte));
  const auto blue = hn::ShiftLeft<24>(hn::Load(words, planes.words[3] + at));
  const hn::ScalableTag<std::uint8_t> bytes;
  hn::StoreU(hn::BitCast(bytes, hn::Or(hn::Or(alpha, red), hn::Or(green, blue))), bytes, out);
}

HWY_INLINE void weave(const Planes& planes, std::size_t at, std::uint16_t* out) {
  const Words words;
  const auto half = hn::Set(words, 0xFFFF);
  const auto alpha = hn::And(hn::Load(words, planes.words[0] + at), half);
  const auto red = hn::ShiftLeft<16>(hn::Load(words, planes.words[1] + at));
  const auto green = hn::And(hn::Load(words, planes.words[2] + at), half);
  const auto blue = hn::ShiftLeft<16>(hn::Load(words, planes.words[3] + at));
  HWY_ALIGN std::uint32_t woven[2 * hn::MaxLanes(words)];
  hn::StoreInterleaved2(hn::Or(alpha, red), hn::Or(green, blue), words, woven);
  std::memcpy(out, woven, sizeof(woven));
}

HWY_INLINE void weave(const Planes& planes, std::size_t at, float* out) {
  const hn::ScalableTag<float> floats;
  const Words words;
  const auto plane = [&](std::size_t c) { return hn::BitCast(floats, hn::Load(words, planes.words[c] + at)); };
  hn::StoreInterleaved4(plane(0), plane(1), plane(2), plane(3), floats, out);
}

template <class Stored>
void weaveBlock(const Planes& planes, std::uint32_t count, Stored* out) {
  constexpr std::size_t kTogether = hn::MaxLanes(Words());
  std::size_t i = 0;
  for (; i + kTogether <= count; i += kTogether) weave(planes, i, out + i * 4);
  if (i < count) {
    HWY_ALIGN Stored rest[kTogether * 4];
    weave(planes, i, rest);
    std::memcpy(out + i * 4, rest, (count - i) * 4 * sizeof(Stored));
  }
}

template <class WordKind, class Stored>
void makeTable(GradientEntries color, GradientEntries opacity, Stored* out, std::uint32_t count) {
  // A machine without vectors.
  if constexpr (HWY_TARGET == HWY_SCALAR) return gradientTableDefinition(color, opacity, out, count);

  FolderPlanes<WordKind, 3> colorPlanes(color, kColorComponents, count);
  FolderPlanes<WordKind, 1> opacityPlanes(opacity, kOpacityComponents, count);
  Planes planes;
  for (std::uint32_t first = 0; first < count;) {
    const std::uint32_t length = std::min(kBlock, count - first);
    opacityPlanes.fill(first, length, planes, 0);
    colorPlanes.fill(first, length, planes, 1);
    weaveBlock(planes, length, out + std::size_t{first} * 4);
    first += length;
  }
}

void makeTable8(GradientEntries color, GradientEntries opacity, std::uint8_t* out, std::uint32_t count) {
  makeTable<IntegerWords>(color, opacity, out, count);
}

void makeTable16(GradientEntries color, GradientEntries opacity, std::uint16_t* out, std::uint32_t count) {
  makeTable<IntegerWords>(color, opacity, out, count);
}

void makeTableFloat(GradientEntries color, GradientEntries opacity, float* out, std::uint32_t count) {
  makeTable<FloatWords>(color, opacity, out, count);
}

}  // namespace vorto::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vorto::kernels {
namespace {

// The planes are woven as words.
static_assert(std::endian::native == std::endian::little);

// A single position has no step, and is not a number.
bool byDefinition(std::uint32_t count) {
  return useScalar() || count < 2;
}

}  // namespace

HWY_EXPORT(makeTable8);
HWY_EXPORT(makeTable16);
HWY_EXPORT(makeTableFloat);

void gradientTable(GradientEntries color, GradientEntries opacity, std::uint8_t* out, std::uint32_t count) {
  if (byDefinition(count)) return gradientTableDefinition(color, opacity, out, count);
  HWY_DYNAMIC_DISPATCH(makeTable8)(color, opacity, out, count);
}

void gradientTable(GradientEntries color, GradientEntries opacity, std::uint16_t* out, std::uint32_t count) {
  if (byDefinition(count)) return gradientTableDefinition(color, opacity, out, count);
  HWY_DYNAMIC_DISPATCH(makeTable16)(color, opacity, out, count);
}

void gradientTable(GradientEntries color, GradientEntries opacity, float* out, std::uint32_t count) {
  if (byDefinition(count)) return gradientTableDefinition(color, opacity, out, count);
  HWY_DYNAMIC_DISPATCH(makeTableFloat)(color, opacity, out, count);
}

}  // namespace vorto::kernels
#endif  // HWY_ONCE
