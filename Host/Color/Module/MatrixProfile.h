// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Color/Module/CurveTable.h"
#include "Host/Color/Module/Primaries.h"

#include <array>
#include <optional>

namespace host {

// What a profile of a matrix and curves holds. The library evaluates curves that are tables in 16 bits, which light is
// too coarse in, and the other ones slowly; so that the curves are evaluated here.
struct MatrixProfile {
  Matrix matrix{};  // light to the profile connection space; of a gray profile nothing
  bool isGray = false;
  std::array<ChannelCurve, 3> toLight;  // of gray three times the same
  std::array<ChannelCurve, 3> fromLight;
};

// `profile` is the library's, and must outlive what is returned. Nothing for profiles of another kind, and for curves
// that do not rise from 0.
std::optional<MatrixProfile> readMatrixProfile(void* profile);

}  // namespace host
