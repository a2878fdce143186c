// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Host/Program.h"
#include "Tests/Host/TestImages.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

// Pictures that go through bitmaps of each layout, computed here once more from the layouts' definitions.

namespace {

using Pixel = std::array<double, 4>;

struct PixelFormat {
  const char* name;
  int inputBits;
  int outputBits;
  double tolerance;  // of colors, in units of the output's samples
  std::function<void(TestImage&)> expected;
};

void forPixels(TestImage& image, const std::function<void(Pixel&)>& change) {
  for (std::size_t i = 0; i < image.samples.size(); i += 4) {
    Pixel pixel;
    std::copy_n(&image.samples[i], 4, pixel.begin());
    change(pixel);
    std::copy_n(pixel.begin(), 4, &image.samples[i]);
  }
}

void narrowTo8(TestImage& image) {
  for (double& value : image.samples) value = std::round(value / 257);
}

void widenTo16(TestImage& image) {
  for (double& value : image.samples) value *= 257;
}

void luminance(TestImage& image) {
  forPixels(image, [](Pixel& p) { p[0] = p[1] = p[2] = std::round(0.299 * p[0] + 0.587 * p[1] + 0.114 * p[2]); });
}

// To 11 significant bits, ties to even; below 2^-14 in steps of 2^-24.
double nearestHalf(double value) {
  int exponent = 0;
  std::frexp(value, &exponent);
  const double step = std::ldexp(1.0, std::max(exponent - 11, -24));
  return std::nearbyint(value / step) * step;
}

int clamped(int value) {
  return value < 0 ? 0 : value > 255 ? 255 : value;
}

// One row to 4:2:2 and back.
void throughVideo(double* row, std::uint32_t width) {
  for (std::uint32_t x = 0; x < width; x += 2) {
    int rgb[2][3];
    for (std::uint32_t i = 0; i < 2; ++i) {
      for (int c = 0; c < 3; ++c) rgb[i][c] = static_cast<int>(row[4 * std::min(x + i, width - 1) + c]);
    }
    int mean[3];
    for (int c = 0; c < 3; ++c) mean[c] = (rgb[0][c] + rgb[1][c]) / 2;
    // The shift of a negative sum goes down.
    const auto shifted = [](int value) { return static_cast<int>(std::floor(value / 256.0)); };
    const int u = shifted(-38 * mean[0] - 74 * mean[1] + 112 * mean[2]);
    const int v = shifted(112 * mean[0] - 94 * mean[1] - 18 * mean[2]);
    for (std::uint32_t i = 0; i < 2 && x + i < width; ++i) {
      const int y = shifted(66 * rgb[i][0] + 129 * rgb[i][1] + 25 * rgb[i][2]);
      double* const pixel = row + 4 * (x + i);
      pixel[0] = clamped(shifted(298 * y + 409 * v));
      pixel[1] = clamped(shifted(298 * y - 100 * u - 208 * v));
      pixel[2] = clamped(shifted(298 * y + 516 * u));
      pixel[3] = 255;
    }
  }
}

void twiceThroughVideo(TestImage& image) {
  for (std::uint32_t y = 0; y < image.height; ++y) {
    for (int pass = 0; pass < 2; ++pass) throughVideo(&image.samples[std::size_t{4} * image.width * y], image.width);
  }
}

const PixelFormat formats[] = {
    {"rgba8", 16, 8, 0, narrowTo8},
    {"argb8", 16, 8, 0, narrowTo8},
    {"yuv422", 8, 8, 0, twiceThroughVideo},
    {"rgba16", 8, 16, 0, widenTo16},
    {"rgb16", 16, 16, 0, [](TestImage& image) { image = opaque(image); }},
    {"la16", 16, 16, 1, luminance},
    {"l16", 16, 16, 1, [](TestImage& image) { luminance(image), image = opaque(image); }},
    {"rgbahalf", 32, 32, 0,
     [](TestImage& image) {
       for (double& v : image.samples) v = nearestHalf(v);
     }},
    {"rgbafloat", 16, 32, 1e-7,
     [](TestImage& image) {
       for (double& v : image.samples) v /= 65535;
     }},
};

class PixelFormatTest : public testing::TestWithParam<PixelFormat> {};

}  // namespace

TEST_P(PixelFormatTest, HoldsWhatItsLayoutCan) {
  const PixelFormat& format = GetParam();
  const TemporaryFolder folder;
  const auto frame = [&](const char* name, int number) {
    return folder.path() + name + std::to_string(number) + ".tif";
  };
  std::vector<TestImage> images;
  for (const std::uint32_t width : {8u, 7u, 1u}) images.push_back(variedImage(width, 6, format.inputBits));
  for (int i = 0; i < 3; ++i) writeTiff(frame("/in.", i), images[static_cast<std::size_t>(i)]);
  passThrough(folder.path() + "/in.%d.tif", folder.path() + "/out.%d.tif", {"--pixel-format", format.name});
  for (int frameNumber = 0; frameNumber < 3; ++frameNumber) {
    TestImage& image = images[static_cast<std::size_t>(frameNumber)];
    const TestImage out = readTiff(frame("/out.", frameNumber));
    EXPECT_EQ(out.bits, format.outputBits);
    ASSERT_EQ(out.samples.size(), image.samples.size());
    format.expected(image);
    for (std::size_t i = 0; i < image.samples.size(); ++i)
      ASSERT_NEAR(out.samples[i], image.samples[i], i % 4 == 3 && format.outputBits != 32 ? 0 : format.tolerance)
          << "width " << image.width << ", sample " << i;
  }
}

INSTANTIATE_TEST_SUITE_P(Host, PixelFormatTest, testing::ValuesIn(formats),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(PixelFormats, AreKnownByNameInTheHelp) {
  const std::string help = vortoSucceeds({"render", "--help"}).out;
  for (const PixelFormat& format : formats) EXPECT_NE(help.find("\n  " + std::string(format.name)), std::string::npos);
}

TEST(PixelFormats, OfAGeneratorAreThoseOfItsResult) {
  const TemporaryFolder folder;
  const std::string out = folder.path() + "/out.tif";
  vortoSucceeds({"render", "Checkerboard", "--size", "20x10", "--pixel-format", "l16", "--set", "first color=#ff0000",
                 "--set", "second color=#00ff00", "--output", out});
  const TestImage image = readTiff(out);
  EXPECT_EQ(image.bits, 16);
  const double ofRed = 0.299 * 65535;
  const double ofGreen = 0.587 * 65535;
  EXPECT_NEAR(image.samples[0], ofRed, 1);
  for (std::size_t i = 0; i < image.samples.size(); i += 4) {
    const double value = image.samples[i];
    ASSERT_NEAR(value, value < (ofRed + ofGreen) / 2 ? ofRed : ofGreen, 1);
    ASSERT_EQ(image.samples[i + 1], value);
    ASSERT_EQ(image.samples[i + 2], value);
    ASSERT_EQ(image.samples[i + 3], 65535);
  }
}

TEST(OutputAlpha, IsKeptFilledOrShown) {
  const TemporaryFolder folder;
  const std::string in = folder.path() + "/in.tif";
  const std::string out = folder.path() + "/out.tif";
  for (const int bits : {8, 16, 32}) {
    const TestImage image = variedImage(9, 4, bits);
    writeTiff(in, image);
    passThrough(in, out, {"--alpha", "keep"});
    EXPECT_EQ(readTiff(out), image);
    passThrough(in, out, {"--alpha", "opaque"});
    EXPECT_EQ(readTiff(out), opaque(image));
    TestImage gray = image;
    forPixels(gray, [](Pixel& p) { p[0] = p[1] = p[2] = p[3]; });
    passThrough(in, out, {"--alpha", "gray"});
    EXPECT_EQ(readTiff(out), gray);
  }
}
