// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

// ICC profiles of a matrix and one curve, made byte by byte.
struct TestProfile {
  std::string model = "RGB ";
  std::string connection = "XYZ ";
  std::array<std::array<double, 3>, 3> columns{};  // XYZ of red, green and blue under D50
  double gamma = 0;                                // of the curve, unless there is a table
  std::vector<std::uint16_t> table;
  std::string description = "Test";
};

// The figures of A98: gamma 563 / 256, its primaries under D50.
inline TestProfile wideProfile() {
  TestProfile profile;
  profile.columns = {{{0.60974, 0.31111, 0.01947}, {0.20528, 0.62567, 0.06087}, {0.14919, 0.06322, 0.74457}}};
  profile.gamma = 2.19921875;
  profile.description = "Wide";
  return profile;
}

inline std::array<std::array<double, 3>, 3> sRgbColumns() {
  return {{{0.43607, 0.22249, 0.01392}, {0.38515, 0.71687, 0.09708}, {0.14307, 0.06061, 0.71410}}};
}

std::vector<std::uint8_t> profileBytes(const TestProfile& profile);
