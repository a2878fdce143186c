// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Host/Program.h"
#include "Tests/Host/TestImages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

// The inspector's screenshots, drawn without a display.

namespace {

struct Size {
  std::uint32_t width, height;
};

TestImage screenshot(Words arguments, const std::string& path) {
  arguments.insert(arguments.begin(), "inspect");
  arguments.insert(arguments.end(), {"--screenshot", path});
  EXPECT_EQ(vortoSucceeds(arguments).out, "");
  return readTiff(path);
}

std::size_t at(const TestImage& image, std::uint32_t x, std::uint32_t y) {
  return (std::size_t{y} * image.width + x) * 4;
}

bool isAt(const TestImage& part, const TestImage& whole, std::uint32_t left, std::uint32_t top) {
  for (std::uint32_t y = 0; y < part.height; ++y) {
    const auto* row = part.samples.data() + at(part, 0, y);
    if (!std::equal(row, row + std::size_t{4} * part.width, whole.samples.data() + at(whole, left, top + y)))
      return false;
  }
  return true;
}

bool contains(const TestImage& whole, const TestImage& part) {
  for (std::uint32_t y = 0; y + part.height <= whole.height; ++y) {
    for (std::uint32_t x = 0; x + part.width <= whole.width; ++x) {
      if (isAt(part, whole, x, y)) return true;
    }
  }
  return false;
}

// The x of every pixel of exactly this color.
std::vector<std::uint32_t> columnsOf(const TestImage& image, std::array<double, 3> color) {
  std::vector<std::uint32_t> columns;
  for (std::size_t i = 0; i < image.samples.size(); i += 4) {
    if (std::equal(color.begin(), color.end(), image.samples.begin() + static_cast<std::ptrdiff_t>(i))) {
      columns.push_back(static_cast<std::uint32_t>(i / 4 % image.width));
    }
  }
  return columns;
}

std::string gradientOfOneColor(double red, double green, double blue) {
  std::string numbers;
  for (const double number : {0.0, 0.5, 1.0, red, green, blue})
    numbers += "<real>" + std::to_string(number) + "</real>";
  std::replace(numbers.begin(), numbers.end(), ',', '.');
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict><key>rgbSamples</key><array>" +
         numbers + "</array></dict></plist>\n";
}

}  // namespace

TEST(Inspect, ShowsThePictureThatRenderGives) {
  const TemporaryFolder folder;
  const std::string& path = folder.path();
  const Words effect{"Levels", "--input", VORTO_PHOTOS "/coffee.png", "--state",
                     "levels=" VORTO_DOCUMENTS "/contrast.levels"};
  Words render{"render"};
  render.insert(render.end(), effect.begin(), effect.end());
  render.insert(render.end(), {"--output", path + "/rendered.tif"});
  vortoSucceeds(render);
  const TestImage rendered = readTiff(path + "/rendered.tif");
  Words light = effect;
  light.insert(light.end(), {"--appearance", "light", "--scale", "1"});
  const TestImage shot = screenshot(light, path + "/shot.tif");
  ASSERT_GT(shot.width, rendered.width);
  ASSERT_GT(shot.height, rendered.height);
  EXPECT_TRUE(contains(shot, rendered)) << "pixel for pixel";
}

TEST(Inspect, ShowsTheHistogramOfTheImageThatFlows) {
  const TemporaryFolder folder;
  const std::string& path = folder.path();
  const std::array<double, 3> bar{25, 29, 38};
  const auto barColumns = [&](double gray) {
    writeTiff(path + "/in.tif", flatImage(64, 48, {gray, gray, gray, 255}));
    return columnsOf(
        screenshot({"Levels", "--input", path + "/in.tif", "--scale", "1", "--appearance", "dark"}, path + "/shot.tif"),
        bar);
  };
  const auto dark = barColumns(0);
  const auto bright = barColumns(255);
  ASSERT_FALSE(dark.empty());
  ASSERT_FALSE(bright.empty());
  const auto between = *std::min_element(bright.begin(), bright.end()) - *std::max_element(dark.begin(), dark.end());
  EXPECT_GT(between, 150u) << "the histogram is about 210 wide";
  EXPECT_LT(between, 218u);
}

TEST(Inspect, ShowsAStateAloneInBothAppearancesAndAtEveryScale) {
  const TemporaryFolder folder;
  const std::string state = folder.path() + "/green.plist";
  writeFile(state, gradientOfOneColor(0, 1, 0));
  Size one{};
  for (const std::string scale : {"1", "1.5", "2"}) {
    for (const std::string appearance : {"light", "dark"}) {
      const TestImage shot = screenshot({"--state", "gradient=" + state, "--scale", scale, "--appearance", appearance},
                                        folder.path() + "/shot.tif");
      const double factor = scale == "1" ? 1 : scale == "2" ? 2 : 1.5;
      if (factor == 1) one = {shot.width, shot.height};
      EXPECT_NEAR(shot.width, one.width * factor, 1);
      EXPECT_NEAR(shot.height, one.height * factor, 1);
      const double ground = shot.pixel(1, 1)[0];
      EXPECT_TRUE(appearance == "light" ? ground > 200 : ground < 80) << ground;
      const auto green = columnsOf(shot, {0, 255, 0});
      EXPECT_GT(static_cast<double>(green.size()), 200 * 15 * factor * factor) << "the strip and its gutter";
      EXPECT_LT(green.size(), std::size_t{shot.width} * shot.height / 2);
    }
  }
  EXPECT_GE(one.width, 236u);
  EXPECT_GE(one.height, 76u);
}

TEST(Inspect, TellsOfADisplayThatCannotBeReached) {
  RunOptions options;
  options.environment = {"DISPLAY=:9871"};
  const ProgramRun run = vorto({"inspect", "Checkerboard"}, options);
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
  EXPECT_TRUE(run.err.starts_with("vorto: the window cannot be opened")) << run.err;
  EXPECT_NE(run.err.find(":9871"), std::string::npos) << run.err;
}

TEST(Inspect, AFullDiskLeavesTheOldScreenshot) {
  const TemporaryFolder folder;
  const std::string path = folder.path() + "/shot.tif";
  writeFile(path, "old");
  RunOptions full;
  full.fileSizeLimit = 4096;
  const ProgramRun run = vorto({"inspect", "Checkerboard", "--size", "40x30", "--screenshot", path}, full);
  EXPECT_EQ(run.exitCode, 4);
  EXPECT_NE(run.err.find("shot.tif"), std::string::npos) << run.err;
  EXPECT_EQ(readFile(path), "old");
}

TEST(Inspect, PrintsHowLongPicturesTake) {
  const std::string photo = std::string(VORTO_PHOTOS) + "/coffee.png";
  const std::string out = vortoSucceeds({"inspect", "Gradient Map", "--input", photo, "--benchmark"}).out;
  for (const char* part : {"picture: 600 x 400", "first picture: ", "drag of Gradient, full pictures: ", "at rest: "}) {
    EXPECT_NE(out.find(part), std::string::npos) << part << " in " << out;
  }
  const ProgramRun missing = vorto({"inspect", "Levels", "--input", "/none.png", "--benchmark"});
  EXPECT_EQ(missing.exitCode, 3);
  EXPECT_NE(missing.err.find("/none.png"), std::string::npos) << missing.err;
  EXPECT_EQ(vorto({"preview"}).exitCode, 2) << "this is how the program starts itself";
}
