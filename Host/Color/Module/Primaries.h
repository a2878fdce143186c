// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/FileMetadata.h"

#include <array>

namespace host {

using Matrix = std::array<std::array<double, 3>, 3>;  // rows

Matrix product(const Matrix& a, const Matrix& b);
Matrix inverse(const Matrix& matrix);

// From light in the one's primaries to light in the other's, over CIE XYZ; white becomes white, by Bradford's transform
// where the whites differ.
Matrix matrixBetween(const Primaries& from, const Primaries& to);

}  // namespace host
