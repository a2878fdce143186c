// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Host/Program.h"
#include "Tests/Host/TestImages.h"

#include <gtest/gtest.h>

namespace {

TestImage grayPixel(double value) {
  return flatImage(1, 1, {value, value, value, 255});
}

double valueOf(const std::string& path) {
  return readTiff(path).pixel(0, 0)[0];
}

}  // namespace

TEST(Sequence, EveryFrameThatExistsIsRendered) {
  const TemporaryFolder folder;
  const std::string& path = folder.path();
  for (int frame = 8; frame <= 12; ++frame) {
    writeTiff(path + "/in." + (frame < 10 ? "000" : "00") + std::to_string(frame) + ".tif", grayPixel(frame));
  }
  writeTiff(path + "/in.7.tif", grayPixel(7));  // not as the pattern writes numbers
  writeFile(path + "/in.0013.tiff", "another name");
  const ProgramRun run =
      vortoSucceeds({"render", "Levels", "--input", path + "/in.%04d.tif", "--output", path + "/out.%d.tif"});
  EXPECT_EQ(run.out, "");
  for (int frame = 8; frame <= 12; ++frame) EXPECT_EQ(valueOf(path + "/out." + std::to_string(frame) + ".tif"), frame);
  EXPECT_FALSE(std::filesystem::exists(path + "/out.7.tif"));
  EXPECT_FALSE(std::filesystem::exists(path + "/out.13.tif"));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(path), {}), 12) << "nothing else is left";
}

TEST(Sequence, TransitionsRunFromTheFirstFrameToTheLast) {
  const TemporaryFolder folder;
  const std::string& path = folder.path();
  writeTiff(path + "/black.tif", grayPixel(0));
  for (int frame = 1; frame <= 5; ++frame) writeTiff(path + "/b." + std::to_string(frame) + ".tif", grayPixel(200));
  vortoSucceeds(
      {"render", "Dissolve", "--input", path + "/black.tif", path + "/b.%d.tif", "--output", path + "/out.%02d.tif"});
  const double expected[] = {0, 50, 100, 150, 200};
  for (int frame = 1; frame <= 5; ++frame) {
    EXPECT_EQ(valueOf(path + "/out.0" + std::to_string(frame) + ".tif"), expected[frame - 1]) << frame;
  }
  vortoSucceeds({"render", "Dissolve", "--input", path + "/black.tif", path + "/b.%d.tif", "--time", "0.5", "--frames",
                 "2-3", "--output", path + "/still.%d.tif"});
  EXPECT_EQ(valueOf(path + "/still.2.tif"), 100);
  EXPECT_EQ(valueOf(path + "/still.3.tif"), 100);
  EXPECT_FALSE(std::filesystem::exists(path + "/still.1.tif"));
}

TEST(Sequence, GeneratorsRenderTheFramesWanted) {
  const TemporaryFolder folder;
  vortoSucceeds(
      {"render", "Checkerboard", "--size", "2x2", "--frames", "9-11", "--output", folder.path() + "/f%03d.png"});
  for (const char* name : {"/f009.png", "/f010.png", "/f011.png"}) {
    EXPECT_TRUE(std::filesystem::exists(folder.path() + name)) << name;
  }
}
