// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Sanitizer.h"
#include "Tests/Host/IccProfiles.h"
#include "Tests/Host/Program.h"
#include "Tests/Host/TestImages.h"

#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include <cmath>

// The formats that pictures come in besides the usual four, and what of a picture's channels a file keeps.

namespace {

struct Format {
  const char* extension;
  const char* libraryName;
  int bits;          // of the picture that goes in
  double tolerance;  // of a value of 0 to 1, of formats that lose
  bool holdsAlpha;
  bool isWrittenByTheLibrary;  // without reading past its own rows, as it does for HEIF
};

class OtherFormats : public testing::TestWithParam<Format> {
 protected:
  void SetUp() override {
    const bool leaks = kHasAddressSanitizer && std::string(GetParam().libraryName) == "heif";
    if (leaks) GTEST_SKIP() << "its encoder never frees some of its memory";
  }
};

// Smooth, so that formats that lose lose little.
TestImage smoothImage(int bits, bool isOpaque) {
  const double full = bits == 8 ? 255 : bits == 16 ? 65535 : 1;
  TestImage image{48, 32, bits, {}};
  for (int y = 0; y < 32; ++y) {
    for (int x = 0; x < 48; ++x) {
      const double alpha = isOpaque ? 1 : x < 24 ? 1 : 0.5;
      const double color[] = {x / 47.0 * alpha, y / 31.0 * alpha, 0.5 * alpha, alpha};
      for (const double value : color) image.samples.push_back(bits == 32 ? value : std::round(value * full));
    }
  }
  return image;
}

double largestDifference(const TestImage& a, const TestImage& b) {
  const double fullOfA = a.bits == 8 ? 255 : a.bits == 16 ? 65535 : 1;
  const double fullOfB = b.bits == 8 ? 255 : b.bits == 16 ? 65535 : 1;
  double largest = a.samples.size() == b.samples.size() ? 0 : 1;
  for (std::size_t i = 0; i < std::min(a.samples.size(), b.samples.size()); ++i) {
    largest = std::max(largest, std::abs(a.samples[i] / fullOfA - b.samples[i] / fullOfB));
  }
  return largest;
}

std::string formatOf(const std::string& path) {
  const auto input = OIIO::ImageInput::open(path);
  return input ? input->format_name() : "none: " + OIIO::geterror();
}

int channelsOf(const std::string& path) {
  const auto input = OIIO::ImageInput::open(path);
  return input ? input->spec().nchannels : -1;
}

// A file that the library itself writes.
bool writeByLibrary(const std::string& path, const char* format, const TestImage& image) {
  const auto output = OIIO::ImageOutput::create(format);
  const OIIO::TypeDesc type = image.bits == 8    ? OIIO::TypeDesc::UINT8
                              : image.bits == 16 ? OIIO::TypeDesc::UINT16
                                                 : OIIO::TypeDesc::FLOAT;
  std::vector<float> colors;
  const double full = image.bits == 8 ? 255 : image.bits == 16 ? 65535 : 1;
  for (std::size_t i = 0; i < image.samples.size(); ++i) {
    if (i % 4 != 3) colors.push_back(static_cast<float>(image.samples[i] / full));
  }
  const OIIO::ImageSpec spec(static_cast<int>(image.width), static_cast<int>(image.height), 3, type);
  return output && output->open(path, spec) && output->write_image(OIIO::TypeDesc::FLOAT, colors.data()) &&
         output->close();
}

}  // namespace

TEST_P(OtherFormats, AreWrittenAndReadAgain) {
  const Format& format = GetParam();
  const TemporaryFolder folder;
  const std::string file = folder.path() + "/picture." + format.extension;
  const TestImage image = smoothImage(format.bits, !format.holdsAlpha);
  writeTiff(folder.path() + "/in.tif", image);
  passThrough(folder.path() + "/in.tif", file);
  EXPECT_EQ(formatOf(file), format.libraryName);
  passThrough(file, folder.path() + "/out.tif", {"--depth", format.bits == 32 ? "float" : std::to_string(format.bits)});
  EXPECT_LE(largestDifference(readTiff(folder.path() + "/out.tif"), image), format.tolerance);
}

TEST_P(OtherFormats, HoldTheUsualSpaceSinceTheyCannotStateAnother) {
  const Format& format = GetParam();
  const TemporaryFolder folder;
  const auto at = [&](const std::string& name) { return folder.path() + "/" + name; };
  const std::string file = at(std::string("picture.") + format.extension);
  writeTagged(at("wide.tiff"), flatImage(32, 32, {90, 120, 90, 255}), profileBytes(wideProfile()));
  const std::string space = format.bits == 32 ? "Linear Rec.709" : "sRGB";
  const std::string depth = format.bits == 32 ? "float" : "8";
  const auto rendered = [&](const std::string& path, const Words& options) {
    Words words{"render", "Levels", "--input", at("wide.tiff"), "--output", path, "--depth", depth};
    words.insert(words.end(), options.begin(), options.end());
    return vorto(words).err;
  };
  const std::string said = "vorto: the result is converted from the profile \"Wide\" to " + space + "\n";
  EXPECT_EQ(rendered(file, {}), said);
  EXPECT_TRUE(iccProfileOf(file).empty());
  passThrough(file, at("out.tif"), {"--depth", depth});
  EXPECT_EQ(rendered(at("expected.tif"), {"--output-space", space}), said);
  EXPECT_LE(largestDifference(readTiff(at("out.tif")), readTiff(at("expected.tif"))), std::min(format.tolerance, 0.03));
}

TEST_P(OtherFormats, AreReadAsOthersWriteThem) {
  const Format& format = GetParam();
  if (!format.isWrittenByTheLibrary) return;
  const TemporaryFolder folder;
  const std::string file = folder.path() + "/picture." + format.extension;
  const TestImage image = smoothImage(format.bits, true);
  ASSERT_TRUE(writeByLibrary(file, format.libraryName, image)) << OIIO::geterror();
  passThrough(file, folder.path() + "/out.tif", {"--depth", format.bits == 32 ? "float" : std::to_string(format.bits)});
  EXPECT_LE(largestDifference(readTiff(folder.path() + "/out.tif"), image), format.tolerance);
  writeFile(file, readFile(file).substr(0, 60));
  EXPECT_EQ(vorto({"render", "Levels", "--input", file, "--output", folder.path() + "/no.tif"}).exitCode, 3) << "cut";
}

INSTANTIATE_TEST_SUITE_P(
    Formats, OtherFormats,
    testing::Values(Format{"webp", "webp", 8, 0.15, true, true}, Format{"bmp", "bmp", 8, 0, false, true},
                    Format{"tga", "targa", 8, 0.003, true, true}, Format{"dpx", "dpx", 8, 0, false, true},
                    Format{"hdr", "hdr", 32, 0.01, false, true}, Format{"jp2", "jpeg2000", 8, 0.03, false, true},
                    Format{"heic", "heif", 8, 0.08, false, false}, Format{"ppm", "pnm", 8, 0, false, true},
                    Format{"pnm", "pnm", 16, 0, false, false}, Format{"pfm", "pnm", 32, 1e-6, false, false}),
    [](const auto& row) { return std::string(row.param.extension); });

TEST(Channels, StayAsFewAsTheyWereWhereTheResultIsSo) {
  const TemporaryFolder folder;
  const auto at = [&](const std::string& name) { return folder.path() + "/" + name; };
  writeTiff(at("rgba.tif"), TestImage{1, 1, 8, {9, 9, 9, 255}});
  writeTiff(at("colors.tif"), TestImage{3, 1, 8, {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255}});
  passThrough(at("colors.tif"), at("luma.pnm"), {"--channels", "gray"});
  EXPECT_EQ(readFile(at("luma.pnm")), "P5\n3 1\n255\n\x4C\x96\x1D") << "0.299, 0.587, 0.114";
  passThrough(at("rgba.tif"), at("gray.png"), {"--channels", "gray"});
  passThrough(at("rgba.tif"), at("rgb.png"), {"--channels", "rgb"});
  const auto channelsAfter = [&](const Words& words) {
    Words arguments{"render"};
    arguments.insert(arguments.end(), words.begin(), words.end());
    arguments.insert(arguments.end(), {"--output", at("out.png")});
    vortoSucceeds(arguments);
    return channelsOf(at("out.png"));
  };
  EXPECT_EQ(channelsAfter({"Levels", "--input", at("gray.png")}), 1);
  EXPECT_EQ(channelsAfter({"Levels", "--input", at("rgb.png")}), 3);
  EXPECT_EQ(channelsAfter({"Levels", "--input", at("rgba.tif")}), 4);
  EXPECT_EQ(channelsAfter({"Levels", "--input", at("gray.png"), "--channels", "gray+alpha"}), 2);
  EXPECT_EQ(channelsAfter({"Over", "--input", at("gray.png"), at("rgb.png")}), 3);
  EXPECT_EQ(channelsAfter({"Gradient Map", "--input", at("gray.png"), "--set", "gradient=#f00 0%, #00f 100%"}), 3);
  EXPECT_EQ(channelsAfter({"Transform", "--input", at("rgb.png"), "--set", "translate x=1"}), 4) << "no longer opaque";
}

TEST(Layers, AreNamedAfterTheFile) {
  const TemporaryFolder folder;
  const std::string file = folder.path() + "/layers.exr";
  OIIO::ImageSpec spec(1, 1, 6, OIIO::TypeDesc::HALF);
  spec.channelnames = {"R", "G", "B", "glow.R", "glow.G", "glow.B"};
  const auto output = OIIO::ImageOutput::create(file);
  const float samples[] = {0.25F, 0.25F, 0.25F, 0.5F, 0.75F, 1.0F};
  ASSERT_TRUE(output && output->open(file, spec) && output->write_image(OIIO::TypeDesc::FLOAT, samples) &&
              output->close());
  passThrough(file + ":glow", folder.path() + "/out.tif", {"--depth", "float"});
  EXPECT_EQ(readTiff(folder.path() + "/out.tif").samples, (std::vector<double>{0.5, 0.75, 1, 1}));
  const ProgramRun run = vorto({"render", "Levels", "--input", file + ":shade", "--output", folder.path() + "/no.tif"});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_NE(run.err.find("layers.exr:shade"), std::string::npos) << run.err;
  EXPECT_NE(run.err.find("glow"), std::string::npos) << "those that there are: " << run.err;
}

TEST(Metadata, ExifClaimsNoFormerSpace) {
  const TemporaryFolder folder;
  const auto at = [&](const std::string& name) { return folder.path() + "/" + name; };
  OIIO::ImageSpec spec(1, 1, 3, OIIO::TypeDesc::UINT8);
  spec.attribute("Exif:ColorSpace", 1);
  spec.attribute("Artist", "A");
  const auto output = OIIO::ImageOutput::create("in.jpg");
  const float samples[] = {0.5F, 0.5F, 0.5F};
  ASSERT_TRUE(output && output->open(at("in.jpg"), spec) && output->write_image(OIIO::TypeDesc::FLOAT, samples) &&
              output->close());
  const struct {
    Words options;
    int space;
  } rows[] = {
      {{}, 1},
      {{"--output-space", "Rec.2020"}, 0xFFFF},
      {{"--input-space", "Display P3"}, 0xFFFF},
      {{"--input-space", "Display P3", "--output-space", "sRGB"}, 1},
      {{"--working-space", "raw"}, 1},
  };
  for (const auto& row : rows) {
    Words words{"render", "Levels", "--input", at("in.jpg"), "--output", at("out.jpg")};
    words.insert(words.end(), row.options.begin(), row.options.end());
    vorto(words);
    const auto written = OIIO::ImageInput::open(at("out.jpg"));
    ASSERT_TRUE(written);
    const OIIO::ImageSpec& out = written->spec();
    EXPECT_EQ(out.get_int_attribute("Exif:ColorSpace", -1), row.space);
    EXPECT_EQ(out.get_string_attribute("Artist"), "A");
  }
}

TEST(Metadata, LossesAreToldOnceWhenWanted) {
  const TemporaryFolder folder;
  const auto at = [&](const std::string& name) { return folder.path() + "/" + name; };
  OIIO::ImageSpec spec(1, 1, 3, OIIO::TypeDesc::HALF);
  const unsigned code[] = {0x01020304, 0};
  spec.attribute("smpte:TimeCode", OIIO::TypeTimeCode, code);
  spec.attribute("shot", "A 12");
  for (const char* name : {"in.1.exr", "in.2.exr"}) {
    const auto output = OIIO::ImageOutput::create(at(name));
    const float samples[] = {0, 0, 0};
    ASSERT_TRUE(output && output->open(at(name), spec) && output->write_image(OIIO::TypeDesc::FLOAT, samples) &&
                output->close());
  }
  const auto told = [&](const std::string& out, const Words& options) {
    Words arguments{"render",  "Levels",        "--working-space", "raw",
                    "--input", at("in.%d.exr"), "--output",        out == "-" ? out : at(out)};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return vorto(arguments).err;
  };
  EXPECT_EQ(told("out.%d.png", {"--verbose"}),
            "vorto: PNG does not hold the time code, the attribute capDate or the attribute shot of the first input\n");
  EXPECT_EQ(told("out.%d.png", {}), "");
  EXPECT_EQ(told("out.%d.exr", {"--verbose"}), "");
  EXPECT_EQ(told("out.%d.webp", {"--verbose"}),
            "vorto: WebP does not hold the time code, the attribute capDate or the attribute shot of the first input\n")
      << "square pixels are all that it knows";
  EXPECT_EQ(told("-", {"--verbose", "--format", "y4m"}),
            "vorto: a stream does not hold the time code, the attribute capDate or the attribute shot of the first "
            "input\n");
  const auto kept = OIIO::ImageInput::open(at("out.2.exr"));
  ASSERT_TRUE(kept);
  EXPECT_EQ(kept->spec().get_string_attribute("shot"), "A 12");
  const OIIO::ParamValue* const keptCode = kept->spec().find_attribute("smpte:TimeCode");
  ASSERT_TRUE(keptCode);
  EXPECT_EQ(static_cast<const unsigned*>(keptCode->data())[0], code[0]);
}

// A picture that is turned, or scaled, has another size than its camera wrote.
TEST(Metadata, ExifTellsTheSizeThatIsWritten) {
  const TemporaryFolder folder;
  const auto at = [&](const std::string& name) { return folder.path() + "/" + name; };
  OIIO::ImageSpec spec(40, 24, 3, OIIO::TypeDesc::UINT8);
  spec.attribute("Orientation", 6);
  spec.attribute("Exif:PixelXDimension", 40);
  spec.attribute("Exif:PixelYDimension", 24);
  const std::vector<std::uint8_t> samples(std::size_t{40} * 24 * 3);
  const auto output = OIIO::ImageOutput::create(at("in.jpg"));
  ASSERT_TRUE(output && output->open(at("in.jpg"), spec) &&
              output->write_image(OIIO::TypeDesc::UINT8, samples.data()) && output->close());
  const auto run = vorto({"render", "Levels", "--input", at("in.jpg"), "--output", at("out.jpg")});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  const auto written = OIIO::ImageInput::open(at("out.jpg"));
  ASSERT_TRUE(written);
  EXPECT_EQ(written->spec().width, 24);
  EXPECT_EQ(written->spec().get_int_attribute("Exif:PixelXDimension"), 24);
  EXPECT_EQ(written->spec().get_int_attribute("Exif:PixelYDimension"), 40);
}
