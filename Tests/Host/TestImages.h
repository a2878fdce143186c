// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

// A picture of four samples a pixel; values are 0 to 255, 0 to 65535, or floats.
struct TestImage {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  int bits = 8;  // 8, 16, 32 (float and half)
  std::vector<double> samples;

  std::array<double, 4> pixel(std::uint32_t x, std::uint32_t y) const;
  bool operator==(const TestImage&) const = default;
};

// Premultiplied, all sorts of values and alphas; the first pixels are opaque, transparent, and half transparent. At 32
// bits some values lie outside 0 to 1 and all are half floats when `halves` is set.
TestImage variedImage(std::uint32_t width, std::uint32_t height, int bits, bool halves = false);
TestImage flatImage(std::uint32_t width, std::uint32_t height, const std::array<double, 4>& pixel);  // 8 bits
TestImage opaque(TestImage image);

// The samples go to the file as they are, whatever it says of its alpha. A file that cannot be written or read fails
// the test.
enum class Alpha { Premultiplied, Straight };
void writeTiff(const std::string& path, const TestImage& image, Alpha alpha = Alpha::Premultiplied,
               int orientation = 1);
void writePng(const std::string& path, const TestImage& image);  // straight
void writeTagged(const std::string& path, const TestImage& image, const std::vector<std::uint8_t>& iccProfile);
// Floats; with a colorInteropID when a name is given.
void writeExr(const std::string& path, const TestImage& image, const std::string& space = "");

std::vector<std::uint8_t> iccProfileOf(const std::string& path);  // empty when there is none

TestImage readImage(const std::string& path);  // the samples as they are in the file, opaque without alpha
TestImage readTiff(const std::string& path);   // the same, of what the program writes: a premultiplied, plain TIFF
