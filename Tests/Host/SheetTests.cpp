// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Host/Program.h"
#include "Tests/Host/TestImages.h"

#include <gtest/gtest.h>

namespace {

const std::array<double, 4> ground{38, 38, 38, 255};

TestImage plain(std::uint32_t width, std::uint32_t height, double red) {
  return flatImage(width, height, {red, 0, 0, 255});
}

// Whether something brighter than the ground is drawn inside a rectangle.
bool hasText(const TestImage& sheet, std::uint32_t left, std::uint32_t top, std::uint32_t width, std::uint32_t height) {
  for (std::uint32_t y = top; y < top + height; ++y) {
    for (std::uint32_t x = left; x < left + width; ++x) {
      if (sheet.pixel(x, y)[1] > 100) return true;
    }
  }
  return false;
}

}  // namespace

TEST(Sheet, PlacesPicturesAndCaptions) {
  const TemporaryFolder folder;
  const std::string& path = folder.path();
  writeTiff(path + "/large.tif", plain(960, 640, 200));
  writeTiff(path + "/tall.tif", plain(100, 640, 100));
  writeTiff(path + "/small.tif", plain(48, 32, 50));
  const auto sheetOf = [&](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"sheet", path + "/large.tif", path + "/tall.tif", path + "/small.tif",
                                         "--output", path + "/sheet.tif"});
    vortoSucceeds(arguments);
    return readTiff(path + "/sheet.tif");
  };
  const TestImage sheet = sheetOf({});
  EXPECT_EQ(sheet.width, 2 * 40u + 2 * 480 + 32);
  EXPECT_EQ(sheet.height, 2 * 40u + 2 * 360 + 32);
  EXPECT_EQ(sheet.pixel(39, 39), ground);
  EXPECT_EQ(sheet.pixel(40, 40), (std::array<double, 4>{200, 0, 0, 255})) << "scaled to its cell";
  EXPECT_EQ(sheet.pixel(519, 359), (std::array<double, 4>{200, 0, 0, 255}));
  EXPECT_EQ(sheet.pixel(552 + 240, 40), (std::array<double, 4>{100, 0, 0, 255})) << "its height fits";
  EXPECT_EQ(sheet.pixel(552 + 200, 200), ground);
  EXPECT_EQ(sheet.pixel(40 + 240, 432 + 160), (std::array<double, 4>{50, 0, 0, 255}));
  EXPECT_EQ(sheet.pixel(40 + 240, 432 + 140), ground) << "never scaled up";
  EXPECT_TRUE(hasText(sheet, 40, 362, 480, 38));
  EXPECT_TRUE(hasText(sheet, 552, 362, 480, 38));
  EXPECT_FALSE(hasText(sheet, 552, 432, 480, 360)) << "the last cell is empty";

  EXPECT_EQ(sheetOf({"--columns", "3"}).height, 2 * 40u + 360);
  EXPECT_FALSE(hasText(sheetOf({"--labels", "", "Second", "Third"}), 40, 362, 480, 38));
  const std::string longText(300, 'W');
  EXPECT_FALSE(hasText(sheetOf({"--labels", longText, "", ""}), 520, 362, 30, 38)) << "cut off inside the cell";
}
