// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/PixelLayout.h"

#include <cstddef>
#include <type_traits>

// Blend modes on rows of premultiplied pixels, color and alpha alike.
//
// The modes of the W3C's Compositing and Blending Level 1 mix the straight colors by a function M and lay the result
// over what the other image does not cover. With foreground F under alpha AF and background B under AB, premultiplied:
//
//   result = F (1 - AB) + B (1 - AF) + both,  both = AF AB M(B / AB, F / AF)
//
// which for alpha, where both is AF AB, is AF + AB - AF AB. What stands with each mode is its `both`, multiplied out.
//
// Integer depths round the exact result once, halves up, and stop at 1.0. Where a mode divides or takes a root, color
// is computed in single precision and lies within one unit of the exact result. In either case color stays at or below
// alpha, and outside of Over, Plus, Multiply and Screen a color above its alpha counts as that alpha. Float pixels are
// taken as they are. All results are the same bits on every processor, but for those that are no numbers.
namespace vorto::effects {

// Porter and Duff's "over" and "plus": F + B (1 - AF), and F + B. At integer depths the product is what is rounded.
struct OverMode {};
struct PlusMode {};

struct MultiplyMode {};  // F B
struct ScreenMode {};    // F AB + B AF - F B, so that the result is F + B - F B

struct DarkenMode {};      // min(F AB, B AF)
struct LightenMode {};     // max(F AB, B AF)
struct DifferenceMode {};  // |F AB - B AF|
struct ExclusionMode {};   // F (AB - B) + B (AF - F)
struct HardLightMode {};   // 2 F B where 2 F <= AF, else AF AB - 2 (AF - F) (AB - B)
struct OverlayMode {};     // 2 F B where 2 B <= AB, else AF AB - 2 (AF - F) (AB - B)

struct ColorDodgeMode {};  // 0 where B is 0, else AF AB where F >= AF, else min(AF AB, B AF AF / (AF - F))
struct ColorBurnMode {};   // AF AB where B >= AB, else 0 where F is 0, else AF AB - min(AF AB, (AB - B) AF AF / F)
// With b = B / AB, 0 under no alpha: B AF + (2 F - AF) AB T, where T is b - b b for 2 F <= AF; else ((16 b - 12) b + 4)
// b - b for b <= 1/4; else the square root of b, less b.
struct SoftLightMode {};

// With f = F AB, b = B AF and the functions of the recommendation, whose colors reach up to AF AB here: Lum is 0.3 red
// + 0.59 green + 0.11 blue, Sat the largest component less the smallest.
struct HueMode {};         // SetLum(SetSat(f, Sat(b)), Lum(b))
struct SaturationMode {};  // SetLum(SetSat(b, Sat(f)), Lum(b))
struct ColorMode {};       // SetLum(f, Lum(b))
struct LuminosityMode {};  // SetLum(b, Lum(f))

// Colors whose components are no further apart have no hue.
inline constexpr float kGrey = 1e-30F;

// The modes by the form of their kernels.
template <class... Modes>
struct ModeList {
  static constexpr std::size_t kCount = sizeof...(Modes);

  template <class Mode>
  static constexpr bool kHolds = (std::is_same_v<Mode, Modes> || ...);

  template <class Mode>
  static constexpr std::size_t place() {
    std::size_t place = 0;
    bool isFound = false;
    ((isFound = isFound || std::is_same_v<Mode, Modes>, place += isFound ? 0 : 1), ...);
    return place;
  }
};
using PlainModes = ModeList<OverMode, PlusMode, MultiplyMode, ScreenMode>;
using PolynomialModes = ModeList<DarkenMode, LightenMode, DifferenceMode, ExclusionMode, HardLightMode, OverlayMode>;
using QuotientModes = ModeList<ColorDodgeMode, ColorBurnMode, SoftLightMode>;
using NonSeparableModes = ModeList<HueMode, SaturationMode, ColorMode, LuminosityMode>;

// Calls function(List()) for each of the lists.
template <class Function>
void forEachModeList(Function function) {
  function(PlainModes());
  function(PolynomialModes());
  function(QuotientModes());
  function(NonSeparableModes());
}

// The list that holds a mode.
template <class Mode>
using ModeListOf = std::conditional_t<
    PlainModes::kHolds<Mode>, PlainModes,
    std::conditional_t<PolynomialModes::kHolds<Mode>, PolynomialModes,
                       std::conditional_t<QuotientModes::kHolds<Mode>, QuotientModes, NonSeparableModes>>>;

// Rows in the mode at a place of the list: the kernel and its definition. `count` pixels that do not overlap.
template <class List, class Layout>
struct BlendKernels {
  using Channel = typename Layout::Channel;
  static void row(std::size_t mode, const Channel* background, const Channel* foreground, Channel* out,
                  std::size_t count);
};

template <class List, class Layout>
struct BlendDefinitions {
  using Channel = typename Layout::Channel;
  static void row(std::size_t mode, const Channel* background, const Channel* foreground, Channel* out,
                  std::size_t count);
};

// `count` pixels of RGBA8, ARGB8, RGBA16 or RGBAFloat (PixelLayout.h). The rows do not overlap.
template <class Mode, class Layout>
void blendRow(const typename Layout::Channel* background, const typename Layout::Channel* foreground,
              typename Layout::Channel* out, std::size_t count) {
  using List = ModeListOf<Mode>;
  static_assert(List::template kHolds<Mode>);
  BlendKernels<List, Layout>::row(List::template place<Mode>(), background, foreground, out, count);
}

// The definition.
template <class Mode, class Layout>
void blendRowScalar(const typename Layout::Channel* background, const typename Layout::Channel* foreground,
                    typename Layout::Channel* out, std::size_t count) {
  using List = ModeListOf<Mode>;
  BlendDefinitions<List, Layout>::row(List::template place<Mode>(), background, foreground, out, count);
}

}  // namespace vorto::effects
