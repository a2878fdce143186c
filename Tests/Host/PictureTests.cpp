// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Host/Program.h"
#include "Tests/Host/TestImages.h"

#include <gtest/gtest.h>

#include <cmath>

// What goes into a file comes out of it again, at every depth, and in the terms of the contract: premultiplied, first
// row on top.

namespace {

struct RoundTrip {
  const char* name;
  int bits;             // of the first file
  bool halves;          // its floats are halves
  const char* between;  // the file that the picture takes its way through
  const char* depth;    // wanted; empty for the input's
};

class LosslessRoundTrip : public testing::TestWithParam<RoundTrip> {};

}  // namespace

TEST_P(LosslessRoundTrip, GivesTheSamePixels) {
  const RoundTrip& way = GetParam();
  const TemporaryFolder folder;
  const std::string first = folder.path() + "/first.tif";
  const std::string between = folder.path() + "/between." + way.between;
  const std::string last = folder.path() + "/last.tif";
  const TestImage image = variedImage(37, 23, way.bits, way.halves);
  writeTiff(first, image);
  passThrough(first, between, *way.depth ? Words{"--depth", way.depth} : Words{});
  passThrough(between, last, way.bits == 32 ? Words{} : Words{"--depth", std::to_string(way.bits)});
  EXPECT_EQ(readTiff(last), image);
}

INSTANTIATE_TEST_SUITE_P(
    Formats, LosslessRoundTrip,
    testing::Values(RoundTrip{"Png8", 8, false, "png", ""}, RoundTrip{"Png16", 16, false, "png", ""},
                    RoundTrip{"Tiff8", 8, false, "tiff", ""}, RoundTrip{"Tiff16", 16, false, "TIF", ""},
                    RoundTrip{"TiffFloat", 32, false, "tif", ""}, RoundTrip{"ExrFloat", 32, false, "exr", ""},
                    RoundTrip{"ExrHalf", 32, true, "exr", "half"}, RoundTrip{"ExrFrom8", 8, false, "exr", ""},
                    RoundTrip{"ExrFrom16", 16, false, "exr", ""}, RoundTrip{"Png16From8", 8, false, "png", "16"},
                    RoundTrip{"TiffFloatFrom16", 16, false, "tif", "float"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Depth, FollowsTheInputAndTheFormat) {
  const TemporaryFolder folder;
  const auto bitsAfter = [&](const std::string& file, int bits, const Words& arguments) {
    writeTiff(folder.path() + "/in.tif", variedImage(4, 3, bits));
    passThrough(folder.path() + "/in.tif", folder.path() + file, arguments);
    return readImage(folder.path() + file).bits;
  };
  EXPECT_EQ(bitsAfter("/a.png", 8, {}), 8);
  EXPECT_EQ(bitsAfter("/a.png", 16, {}), 16);
  EXPECT_EQ(bitsAfter("/a.png", 32, {}), 16);
  EXPECT_EQ(bitsAfter("/a.jpg", 32, {}), 8);
  EXPECT_EQ(bitsAfter("/a.exr", 8, {}), 32);
  EXPECT_EQ(bitsAfter("/a.tif", 32, {"--depth", "8"}), 8);
  EXPECT_EQ(bitsAfter("/a.tif", 8, {"--depth", "half"}), 32);
}

TEST(Depth, NarrowingRoundsToTheNearest) {
  const TemporaryFolder folder;
  TestImage image = opaque(TestImage{4, 1, 16, std::vector<double>(16, 0)});
  const double values[] = {0, 128, 129, 32767, 32768, 65406, 65407, 65535, 257, 385, 386, 25700};
  const double expected[] = {0, 0, 1, 127, 128, 254, 255, 255, 1, 1, 2, 100};
  for (std::size_t i = 0; i < 12; ++i) image.samples[i / 3 * 4 + i % 3] = values[i];
  writeTiff(folder.path() + "/in.tif", image);
  passThrough(folder.path() + "/in.tif", folder.path() + "/out.tif", {"--depth", "8"});
  const TestImage out = readTiff(folder.path() + "/out.tif");
  for (std::size_t i = 0; i < 12; ++i) EXPECT_EQ(out.samples.at(i / 3 * 4 + i % 3), expected[i]) << values[i];
}

TEST(Depth, FloatsAreCutToTheRangeOfIntegers) {
  const TemporaryFolder folder;
  TestImage image{2, 1, 32, {-0.5, 1.5, NAN, 1, INFINITY, 0.5, -INFINITY, 1}};
  writeTiff(folder.path() + "/in.tif", image);
  passThrough(folder.path() + "/in.tif", folder.path() + "/out.tif", {"--depth", "16"});
  const std::vector<double> expected{0, 65535, 0, 65535, 65535, 32768, 0, 65535};
  EXPECT_EQ(readTiff(folder.path() + "/out.tif").samples, expected);
}

TEST(Alpha, StraightFilesAreMultiplied) {
  const TemporaryFolder folder;
  // Straight pixels: opaque, transparent with a color, and two between.
  const TestImage straight{4, 1, 8, {200, 100, 7, 255, 200, 100, 7, 0, 255, 128, 1, 128, 200, 100, 50, 51}};
  const std::vector<double> expected{200, 100, 7, 255, 0, 0, 0, 0, 128, 64, 1, 128, 40, 20, 10, 51};
  writePng(folder.path() + "/in.png", straight);
  passThrough(folder.path() + "/in.png", folder.path() + "/png.tif");
  EXPECT_EQ(readTiff(folder.path() + "/png.tif").samples, expected);
  writeTiff(folder.path() + "/in.tif", straight, Alpha::Straight);
  passThrough(folder.path() + "/in.tif", folder.path() + "/tiff.tif");
  EXPECT_EQ(readTiff(folder.path() + "/tiff.tif").samples, expected);
  // In the depth that is rendered, not in that of the file.
  for (const std::string depth : {"16", "float"}) {
    passThrough(folder.path() + "/in.png", folder.path() + "/deep.tif", {"--depth", depth});
    const TestImage deep = readTiff(folder.path() + "/deep.tif");
    const double full = depth == "16" ? 65535 : 1;
    for (std::size_t i = 0; i < straight.samples.size(); ++i) {
      const double alpha = i % 4 == 3 ? 255 : straight.samples[i / 4 * 4 + 3];
      EXPECT_NEAR(deep.samples[i] / full, straight.samples[i] * alpha / (255.0 * 255), 1.1 / 65535) << depth << i;
    }
  }
}

TEST(Alpha, JpegShowsThePictureOverBlack) {
  const TemporaryFolder folder;
  writeTiff(folder.path() + "/in.tif", flatImage(16, 16, {60, 60, 60, 128}));
  passThrough(folder.path() + "/in.tif", folder.path() + "/out.jpg");
  passThrough(folder.path() + "/out.jpg", folder.path() + "/out.tif");
  for (const auto value : readTiff(folder.path() + "/out.tif").pixel(8, 8))
    EXPECT_TRUE(value == 255 || std::abs(value - 60) <= 2) << value;
}

TEST(Orientation, PicturesAreReadUpright) {
  const TemporaryFolder folder;
  // Stored as rows "12", "34", "56"; what each tag makes of them.
  const struct {
    int tag;
    std::uint32_t width;
    std::vector<double> upright;
  } rows[] = {{1, 2, {1, 2, 3, 4, 5, 6}}, {2, 2, {2, 1, 4, 3, 6, 5}}, {3, 2, {6, 5, 4, 3, 2, 1}},
              {4, 2, {5, 6, 3, 4, 1, 2}}, {5, 3, {1, 3, 5, 2, 4, 6}}, {6, 3, {5, 3, 1, 6, 4, 2}},
              {7, 3, {6, 4, 2, 5, 3, 1}}, {8, 3, {2, 4, 6, 1, 3, 5}}};
  TestImage stored{2, 3, 8, {}};
  for (int i = 1; i <= 6; ++i) stored.samples.insert(stored.samples.end(), {double(i), 0, 0, 255});
  const auto frame = [&](const char* name, int tag) { return folder.path() + name + std::to_string(tag) + ".tif"; };
  for (const auto& row : rows) writeTiff(frame("/in.", row.tag), stored, Alpha::Premultiplied, row.tag);
  passThrough(folder.path() + "/in.%d.tif", folder.path() + "/out.%d.tif");
  for (const auto& row : rows) {
    const TestImage out = readTiff(frame("/out.", row.tag));
    EXPECT_EQ(out.width, row.width) << row.tag;
    std::vector<double> reds;
    for (std::size_t i = 0; i < out.samples.size(); i += 4) reds.push_back(out.samples[i]);
    EXPECT_EQ(reds, row.upright) << row.tag;
  }
}

TEST(Size, ScalesByNearestNeighbourWhereThatIsWanted) {
  const TemporaryFolder folder;
  const TestImage image = variedImage(5, 3, 16);
  writeTiff(folder.path() + "/in.tif", image);
  passThrough(folder.path() + "/in.tif", folder.path() + "/out.tif", {"--size", "7x2", "--filter", "nearest"});
  const TestImage out = readTiff(folder.path() + "/out.tif");
  ASSERT_EQ(out.width, 7u);
  ASSERT_EQ(out.height, 2u);
  for (std::uint32_t y = 0; y < 2; ++y) {
    for (std::uint32_t x = 0; x < 7; ++x) {
      EXPECT_EQ(out.pixel(x, y), image.pixel(x * 5 / 7, y * 3 / 2)) << x << ' ' << y;
    }
  }
}

// Red on blue, each flat, so that the place of every pixel shows.
TEST(Size, InputsOfOtherSizesFindTheirPlace) {
  const TemporaryFolder folder;
  const auto at = [&](const char* name) { return folder.path() + "/" + name; };
  writeTiff(at("back.tif"), flatImage(6, 4, {0, 0, 255, 255}));
  writeTiff(at("front.tif"), flatImage(2, 2, {255, 0, 0, 255}));
  const struct {
    Words options;
    std::vector<std::string> rows;  // '#' red, '.' blue, ' ' empty
  } cases[] = {
      {{}, {"......", "..##..", "..##..", "......"}},
      {{"--place", "top-right"}, {"....##", "....##", "......", "......"}},
      {{"--place", "bottom"}, {"......", "......", "..##..", "..##.."}},
      {{"--place", "5,-1"}, {".....#", "......", "......", "......"}},
      {{"--place", "fit"}, {".####.", ".####.", ".####.", ".####."}},
      {{"--place", "fill"}, {"######", "######", "######", "######"}},
      {{"--size", "4x4"}, {"####", "####", "####", "####"}},
      {{"--size", "4x4", "--place", "left"}, {"....", "##..", "##..", "...."}},
      {{"--size", "3x4", "--fit", "fit", "--place", "0,0"}, {"## ", "##.", "...", "   "}},
  };
  for (const auto& [options, rows] : cases) {
    Words arguments{"render", "Over", "--input", at("back.tif"), at("front.tif"), "--output", at("out.tif")};
    arguments.insert(arguments.end(), options.begin(), options.end());
    vortoSucceeds(arguments);
    const TestImage out = readTiff(at("out.tif"));
    std::vector<std::string> seen(out.height);
    for (std::uint32_t y = 0; y < out.height; ++y) {
      for (std::uint32_t x = 0; x < out.width; ++x) {
        const auto pixel = out.pixel(x, y);
        seen[y] += pixel[3] == 0 ? ' ' : pixel[0] == 255 ? '#' : pixel[2] == 255 ? '.' : '?';
      }
    }
    EXPECT_EQ(seen, rows) << testing::PrintToString(options);
  }
}

// What pipes carry, byte for byte.
TEST(Streams, CarryPicturesAndFrames) {
  const TemporaryFolder folder;
  const auto at = [&](const char* name) { return folder.path() + "/" + name; };
  writeTiff(at("in.0.tif"), TestImage{2, 1, 8, {255, 255, 255, 255, 100, 0, 0, 255}});
  writeTiff(at("in.1.tif"), TestImage{2, 1, 8, {0, 0, 0, 255, 100, 0, 0, 255}});
  const auto streamed = [&](const Words& options) {
    Words arguments{"render", "Levels", "--output", "-"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return vorto(arguments).out;
  };
  const std::string one = at("in.0.tif");
  EXPECT_EQ(streamed({"--input", one, "--format", "raw", "--channels", "rgba"}),
            std::string("\xFF\xFF\xFF\xFF\x64\0\0\xFF", 8));
  // Floats stay the light that they are.
  writeTiff(at("light.tif"), TestImage{1, 1, 32, {0.25, 2, -1, 1}});
  passThrough(at("light.tif"), at("light.exr"));
  const float light[] = {0.25F, 2, -1};
  EXPECT_EQ(streamed({"--input", at("light.exr"), "--format", "raw", "--channels", "rgb"}),
            std::string(reinterpret_cast<const char*>(light), sizeof light));
  // BT.709 in video range: white is 235, 128, 128; 100/255 of red is 16 + 219 x 0.0834, ...
  EXPECT_EQ(streamed({"--input", at("in.%d.tif"), "--format", "y4m", "--rate", "29.97"}),
            "YUV4MPEG2 W2 H1 F2997:100 Ip A1:1 C444 XCOLORRANGE=LIMITED\n"
            "FRAME\n\xEB\x22\x80\x76\x80\xAC"
            "FRAME\n\x10\x22\x80\x76\x80\xAC");
  EXPECT_EQ(streamed({"--input", one, "--format", "ppm"}), std::string("P6\n2 1\n255\n\xFF\xFF\xFF\x64\0\0", 17));
}

// Generators are told their depth through a port, the others by their input.
TEST(Render, EveryKindOfEffectMakesAPictureOfTheWantedDepth) {
  const TemporaryFolder folder;
  const std::string coffee = VORTO_PHOTOS "/coffee.png";
  const std::string rocket = VORTO_PHOTOS "/rocket.jpg";
  const struct {
    const char* depth;
    Words effect;
  } commands[] = {{"8", {"Gradient Map", "--input", coffee}},
                  {"16", {"Levels", "--input", coffee}},
                  {"float", {"Duotone", "--input", rocket}},
                  {"16", {"Over", "--input", coffee, rocket}},
                  {"half", {"Multiply", "--input", coffee, rocket}},
                  {"8", {"Dissolve", "--input", coffee, "--input", rocket, "--time", "0.25"}},
                  {"float", {"Gradient Wipe", "--input", coffee, rocket, "--time", "0.5"}},
                  {"16", {"Gradient Ramp"}},
                  {"8", {"Checkerboard"}},
                  {"16", {"Checkerboard"}},
                  {"half", {"Checkerboard"}},
                  {"float", {"Checkerboard"}}};
  for (const auto& [depth, effect] : commands) {
    Words command = effect;
    command.insert(command.begin(), "render");
    command.insert(command.end(), {"--size", "60x40", "--output", folder.path() + "/out.tif", "--depth", depth,
                                   "--working-space", "raw"});
    vortoSucceeds(command);
    const TestImage image = readTiff(folder.path() + "/out.tif");
    EXPECT_EQ(image.width, 60u) << effect[0];
    EXPECT_EQ(image.height, 40u) << effect[0];
    EXPECT_EQ(std::to_string(image.bits), depth[0] == 'f' || depth[0] == 'h' ? "32" : depth) << effect[0];
  }
}

TEST(Render, InputsKeepTheirRoles) {
  const TemporaryFolder folder;
  const std::string red = folder.path() + "/red.tif";
  const std::string blue = folder.path() + "/blue.tif";
  const std::string out = folder.path() + "/out.tif";
  writeTiff(red, TestImage{1, 1, 8, {255, 0, 0, 255}});
  writeTiff(blue, TestImage{1, 1, 8, {0, 0, 255, 255}});
  const auto firstPixel = [&](Words arguments) {
    arguments.insert(arguments.begin(), "render");
    arguments.insert(arguments.end(), {"--output", out});
    vortoSucceeds(arguments);
    return readTiff(out).pixel(0, 0);
  };
  const std::array<double, 4> isRed{255, 0, 0, 255};
  const std::array<double, 4> isBlue{0, 0, 255, 255};
  EXPECT_EQ(firstPixel({"Over", "--input", red, blue}), isBlue) << "the background comes first";
  EXPECT_EQ(firstPixel({"Dissolve", "--input", red, blue, "--time", "0"}), isRed);
  EXPECT_EQ(firstPixel({"Dissolve", "--input", red, blue, "--time", "1"}), isBlue);
}

TEST(Render, APictureOutsideTheRolesDecidesNeitherSizeNorDepth) {
  const TemporaryFolder folder;
  const auto at = [&](const char* name) { return folder.path() + "/" + name; };
  writeTiff(at("red.tif"), flatImage(6, 4, {255, 0, 0, 255}));
  writeTiff(at("blue.tif"), flatImage(6, 4, {0, 0, 255, 255}));
  writeTiff(at("shape.tif"), TestImage{2, 1, 16, {65535, 65535, 65535, 65535, 0, 0, 0, 65535}});
  vortoSucceeds({"render", "Gradient Wipe", "--input", at("red.tif"), at("blue.tif"), "--time", "0.5", "--set",
                 "shapeImage=" + at("shape.tif"), "--output", at("out.tif")});
  const TestImage out = readTiff(at("out.tif"));
  EXPECT_EQ(std::tuple(out.width, out.height, out.bits), std::tuple(6u, 4u, 8));
  EXPECT_EQ(out.pixel(0, 0), (std::array<double, 4>{255, 0, 0, 255})) << "white last";
  EXPECT_EQ(out.pixel(5, 3), (std::array<double, 4>{0, 0, 255, 255})) << "black first";
}

TEST(Render, ValuesReachThePorts) {
  const TemporaryFolder folder;
  const std::string out = folder.path() + "/out.tif";
  const auto corner = [&](const Words& settings) {
    Words arguments{"render", "Checkerboard", "--size", "4x4", "--output", out, "--working-space", "raw"};
    for (const std::string& setting : settings) arguments.insert(arguments.end(), {"--set", setting});
    vortoSucceeds(arguments);
    return readTiff(out);
  };
  const std::array<double, 4> color{0x10, 0x80, 0xFF, 255};
  EXPECT_EQ(corner({"inputColorA=#1080ff"}).pixel(0, 0), color) << "by key";
  EXPECT_EQ(corner({"inputColorA=rgb(16 128 255)"}).pixel(0, 0), color) << "as in gradients";
  EXPECT_EQ(corner({"First Color=#1080FF"}).pixel(0, 0), color) << "by name";
  EXPECT_EQ(corner({"colora=#1080ffff"}).pixel(0, 0), color) << "by key without input";
  const std::array<double, 4> halfRed{128, 0, 0, 128};
  EXPECT_EQ(corner({"inputColorA=1,0,0,0.5"}).pixel(0, 0), halfRed) << "premultiplied";
  EXPECT_EQ(corner({"inputColorA=#1080ff", "inputCellSize=2"}).pixel(2, 2), color);
  EXPECT_NE(corner({"inputColorA=#1080ff", "inputCellSize=2"}).pixel(2, 0), color);
  EXPECT_EQ(corner({"inputDepth=16-bit"}).bits, 16) << "by the menu's name";
  EXPECT_EQ(corner({"inputDepth=2"}).bits, 32) << "by number";
}
