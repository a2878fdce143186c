// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

// Pictures that the tests write and read with code of their own: uncompressed TIFF (what the program writes too) and
// PNG with stored blocks. Four samples a pixel; values are 0 to 255, 0 to 65535, or floats.
struct TestImage {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  int bits = 8;  // 8, 16, 32 (float)
  std::vector<double> samples;

  std::array<double, 4> pixel(std::uint32_t x, std::uint32_t y) const;
  bool operator==(const TestImage&) const = default;
};

// Premultiplied, all sorts of values and alphas; the first pixels are opaque, transparent, and half transparent. At 32
// bits some values lie outside 0 to 1 and all are half floats when `halves` is set.
TestImage variedImage(std::uint32_t width, std::uint32_t height, int bits, bool halves = false);
TestImage opaque(TestImage image);

enum class TiffAlpha { Premultiplied = 1, Straight = 2 };
void writeTiff(const std::string& path, const TestImage& image, TiffAlpha alpha = TiffAlpha::Premultiplied,
               int orientation = 1);
TestImage readTiff(const std::string& path);  // fails the test for anything but what writeTiff() and the program write

void writePng(const std::string& path, const TestImage& image);  // 8 or 16 bits, straight alpha
