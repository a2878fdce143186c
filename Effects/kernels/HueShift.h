// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>

// Changes straight colors in hue, saturation and lightness: the hexcone model of J. Foley and A. van Dam, Fundamentals
// of Interactive Computer Graphics, 1982, 17.4 (VortoColor's HSL, but for the blue on the way back, which is the
// textbook's here). A color above 1 is brought into the model by its largest component, and back. Negative components
// count as 0, and so does NaN. Alpha stays; a pixel without alpha stays, but for
// integer colors, which stop at alpha.
namespace vorto::effects {

struct HueShift {
  float sextants;    // added to the hue, from 0 to below 6
  float saturation;  // a factor, not negative; the saturation stops at 1
  float lightScale;  // the lightness is multiplied by this,
  float lightness;   // and this is added; together at most 1
};

// `count` pixels of RGBA8, ARGB8, RGBA16 or RGBAFloat (PixelLayout.h). The rows do not overlap.
template <class Layout>
void hueShiftRow(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count, HueShift shift);

// The definition.
template <class Layout>
void hueShiftRowScalar(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count,
                       HueShift shift);

}  // namespace vorto::effects
