// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Color/Module/Primaries.h"

namespace host {

Matrix product(const Matrix& a, const Matrix& b) {
  Matrix result{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) result[i][j] = a[i][0] * b[0][j] + a[i][1] * b[1][j] + a[i][2] * b[2][j];
  }
  return result;
}

Matrix inverse(const Matrix& m) {
  const auto minor = [&](std::size_t i, std::size_t j) {
    const std::size_t r = (i + 1) % 3;
    const std::size_t s = (i + 2) % 3;
    const std::size_t c = (j + 1) % 3;
    const std::size_t d = (j + 2) % 3;
    return m[r][c] * m[s][d] - m[r][d] * m[s][c];
  };
  const double determinant = m[0][0] * minor(0, 0) + m[0][1] * minor(0, 1) + m[0][2] * minor(0, 2);
  Matrix result{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) result[j][i] = minor(i, j) / determinant;
  }
  return result;
}

namespace {

using Vector = std::array<double, 3>;

Vector applied(const Matrix& m, const Vector& v) {
  Vector result{};
  for (std::size_t i = 0; i < 3; ++i) result[i] = m[i][0] * v[0] + m[i][1] * v[1] + m[i][2] * v[2];
  return result;
}

Vector xyzOf(const Chromaticity& point) {  // of luminance 1
  return {point.x / point.y, 1, (1 - point.x - point.y) / point.y};
}

// SMPTE RP 177: the primaries in such amounts that together they are white.
Matrix matrixToXyz(const Primaries& primaries) {
  const Chromaticity points[] = {primaries.red, primaries.green, primaries.blue};
  Matrix matrix{};
  for (std::size_t j = 0; j < 3; ++j) {
    matrix[0][j] = points[j].x;
    matrix[1][j] = points[j].y;
    matrix[2][j] = 1 - points[j].x - points[j].y;
  }
  const Vector amounts = applied(inverse(matrix), xyzOf(primaries.white));
  for (Vector& row : matrix) {
    for (std::size_t j = 0; j < 3; ++j) row[j] *= amounts[j];
  }
  return matrix;
}

// ICC.1, annex E: the cone responses of Bradford, scaled from the one white to the other.
Matrix adaptation(const Chromaticity& from, const Chromaticity& to) {
  constexpr Matrix bradford{{{0.8951, 0.2664, -0.1614}, {-0.7502, 1.7135, 0.0367}, {0.0389, -0.0685, 1.0296}}};
  const Vector fromCones = applied(bradford, xyzOf(from));
  const Vector toCones = applied(bradford, xyzOf(to));
  Matrix scale{};
  for (std::size_t i = 0; i < 3; ++i) scale[i][i] = toCones[i] / fromCones[i];
  return product(inverse(bradford), product(scale, bradford));
}

}  // namespace

Matrix matrixBetween(const Primaries& from, const Primaries& to) {
  Matrix matrix = matrixToXyz(from);
  if (!(from.white == to.white)) matrix = product(adaptation(from.white, to.white), matrix);
  return product(inverse(matrixToXyz(to)), matrix);
}

}  // namespace host
