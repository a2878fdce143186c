// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Host/TestImages.h"

#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include <cmath>

namespace {

double fullValue(int bits) {
  return bits == 8 ? 255 : bits == 16 ? 65535 : 1;
}

OIIO::ImageSpec specOf(const TestImage& image) {
  const OIIO::TypeDesc type = image.bits == 8    ? OIIO::TypeDesc::UINT8
                              : image.bits == 16 ? OIIO::TypeDesc::UINT16
                                                 : OIIO::TypeDesc::FLOAT;
  return {static_cast<int>(image.width), static_cast<int>(image.height), 4, type};
}

// The library takes and gives integers as fractions of their full value.
void write(const std::string& path, const TestImage& image, const OIIO::ImageSpec& spec) {
  std::vector<double> fractions = image.samples;
  for (double& value : fractions) value /= fullValue(image.bits);
  const auto output = OIIO::ImageOutput::create(path);
  ASSERT_TRUE(output && output->open(path, spec)) << path << ": " << OIIO::geterror();
  EXPECT_TRUE(output->write_image(OIIO::TypeDesc::DOUBLE, fractions.data()) && output->close()) << output->geterror();
}

}  // namespace

std::array<double, 4> TestImage::pixel(std::uint32_t x, std::uint32_t y) const {
  std::array<double, 4> values{};
  for (std::size_t i = 0; i < 4; ++i) values[i] = samples.at(4 * (std::size_t{y} * width + x) + i);
  return values;
}

TestImage variedImage(std::uint32_t width, std::uint32_t height, int bits, bool halves) {
  TestImage image{width, height, bits, {}};
  std::uint32_t state = 12345;
  const auto random = [&state] {
    state = state * 1664525u + 1013904223u;
    return (state >> 8) / 16777216.0;
  };
  for (std::uint32_t i = 0; i < width * height; ++i) {
    double alpha = i == 0 ? 1 : i == 1 ? 0 : i == 2 ? 0.5 : random();
    alpha = bits == 32 ? std::round(alpha * 256) / 256 : std::round(alpha * fullValue(bits));
    for (int c = 0; c < 3; ++c) {
      double color = random() * alpha;
      if (bits != 32) color = std::round(color);
      if (bits == 32 && halves) color = std::round(color * 512) / 512;
      if (bits == 32 && i == 5) color = c == 0 ? -0.25 : 2.5;
      image.samples.push_back(bits == 32 ? static_cast<float>(color) : color);
    }
    image.samples.push_back(alpha);
  }
  return image;
}

TestImage flatImage(std::uint32_t width, std::uint32_t height, const std::array<double, 4>& pixel) {
  TestImage image{width, height, 8, {}};
  for (std::uint32_t i = 0; i < width * height; ++i)
    image.samples.insert(image.samples.end(), pixel.begin(), pixel.end());
  return image;
}

TestImage opaque(TestImage image) {
  for (std::size_t i = 3; i < image.samples.size(); i += 4) image.samples[i] = fullValue(image.bits);
  return image;
}

void writeTiff(const std::string& path, const TestImage& image, Alpha alpha, int orientation) {
  OIIO::ImageSpec spec = specOf(image);
  spec.attribute("compression", "none");
  spec.attribute("Orientation", orientation);
  if (alpha == Alpha::Straight) spec.attribute("oiio:UnassociatedAlpha", 1);
  write(path, image, spec);
}

void writePng(const std::string& path, const TestImage& image) {
  OIIO::ImageSpec spec = specOf(image);
  spec.attribute("oiio:UnassociatedAlpha", 1);
  write(path, image, spec);
}

void writeTagged(const std::string& path, const TestImage& image, const std::vector<std::uint8_t>& iccProfile) {
  OIIO::ImageSpec spec = specOf(image);
  spec.attribute("ICCProfile", OIIO::TypeDesc(OIIO::TypeDesc::UINT8, static_cast<int>(iccProfile.size())),
                 iccProfile.data());
  write(path, image, spec);
}

void writeExr(const std::string& path, const TestImage& image, const std::string& space) {
  OIIO::ImageSpec spec = specOf(image);
  if (!space.empty()) spec.attribute("colorInteropID", space);
  write(path, image, spec);
}

std::vector<std::uint8_t> iccProfileOf(const std::string& path) {
  const auto input = OIIO::ImageInput::open(path);
  const OIIO::ParamValue* profile = input ? input->spec().find_attribute("ICCProfile") : nullptr;
  if (!profile) return {};
  const auto* bytes = static_cast<const std::uint8_t*>(profile->data());
  return {bytes, bytes + profile->type().size()};
}

TestImage readImage(const std::string& path) {
  OIIO::ImageSpec asStored;
  asStored.attribute("oiio:UnassociatedAlpha", 1);
  const auto input = OIIO::ImageInput::open(path, &asStored);
  if (!input || input->spec().nchannels < 3 || input->spec().nchannels > 4) {
    ADD_FAILURE() << path << " is no color picture " << OIIO::geterror();
    return {};
  }
  const OIIO::ImageSpec& spec = input->spec();
  TestImage image{static_cast<std::uint32_t>(spec.width), static_cast<std::uint32_t>(spec.height), 32, {}};
  if (!spec.format.is_floating_point()) image.bits = static_cast<int>(8 * spec.format.size());
  image.samples.resize(std::size_t{4} * image.width * image.height, 1);
  EXPECT_TRUE(
      input->read_image(0, 0, 0, spec.nchannels, OIIO::TypeDesc::DOUBLE, image.samples.data(), 4 * sizeof(double)))
      << input->geterror();
  if (image.bits == 32) return image;
  for (double& value : image.samples) value = std::round(value * fullValue(image.bits));
  return image;
}

TestImage readTiff(const std::string& path) {
  if (const auto input = OIIO::ImageInput::open(path)) {
    EXPECT_STREQ(input->format_name(), "tiff") << path;
    EXPECT_EQ(input->spec().get_string_attribute("compression"), "none");
    EXPECT_EQ(input->spec().get_int_attribute("oiio:UnassociatedAlpha"), 0) << "stored premultiplied";
  }
  return readImage(path);
}
