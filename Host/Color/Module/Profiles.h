// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Color/ColorModule.h"

#include <memory>

namespace host {

// Between spaces of which each is a profile or described by primaries and a curve (as Known and Described are):
// relative colorimetric, with black point compensation; values outside 0 to 1 are converted where the profiles are
// matrices and formulas. Throws std::runtime_error for a profile that is damaged.
std::unique_ptr<ColorTransform> makeProfileTransform(const ColorSpace& from, const ColorSpace& to);

// Throws std::runtime_error for a profile that colors cannot be converted from and, unless it is gray, to.
void checkProfile(const ColorSpace& space);

// The profile of a Known or Described space.
Bytes profileOf(const ColorSpace& space);

}  // namespace host
