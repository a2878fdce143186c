// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Files/PictureWriting.h"
#include "Host/Jobs/Resume.h"
#include "Host/Messages/Remark.h"
#include "Host/Messages/StepRate.h"
#include "Host/Rendering/SequencePlan.h"
#include "TarnCore/TCPixelFormat.h"
#include "Tests/Support/ChildProcess.h"

#include <gtest/gtest.h>

using namespace host;

TEST(Resume, ChoosesFramesWhoseFilesAreMissing) {
  const TemporaryFolder folder;
  const auto at = [&](int frame) { return folder.path("f." + std::to_string(frame) + ".png"); };
  const OutputPicture picture{newBitmap(60, 40, VortoPixelFormat::RGBA8, "a picture"), Depth::Bits8, Channels::RGB, {}};
  for (const int frame : {2, 4, 7, 8}) writePicture(at(frame), picture);
  folder.write("f.3.png", "");
  folder.write("f.5.png", "no picture");
  writePicture(folder.path("other.tif"), picture);
  std::filesystem::copy(folder.path("other.tif"), at(6));  // of another format
  std::filesystem::resize_file(at(7), 20);                 // only the start of the header
  std::filesystem::create_directory(at(9));
  const SequencePlan plan({2, 10}, {}, {});
  const FramePattern pattern{folder.path("f."), ".png", 1};
  const FrameList missing = missingFrames(plan, {0, plan.count()}, pattern, FileFormat::Png);
  const std::uint64_t expected[] = {1, 3, 4, 5, 7, 8};
  ASSERT_EQ(missing.count(), std::size(expected));
  for (std::uint64_t i = 0; i < missing.count(); ++i) {
    EXPECT_EQ(missing[i], expected[i]);
    EXPECT_EQ(missing.placeOf(expected[i]), i);
  }
  const FrameList part = missingFrames(plan, {4, 2}, pattern, FileFormat::Png);
  ASSERT_EQ(part.count(), 2u);
  EXPECT_EQ(part[1], 5u);
  for (const auto& [name, format] :
       std::initializer_list<std::pair<const char*, FileFormat>>{{"x.png", FileFormat::Png},
                                                                 {"x.jpg", FileFormat::Jpeg},
                                                                 {"x.tif", FileFormat::Tiff},
                                                                 {"x.exr", FileFormat::Exr},
                                                                 {"x.tga", FileFormat::Targa},
                                                                 {"x.dpx", FileFormat::Dpx},
                                                                 {"x.bmp", FileFormat::Bmp},
                                                                 {"x.hdr", FileFormat::Hdr},
                                                                 {"x.webp", FileFormat::WebP},
                                                                 {"x.jp2", FileFormat::Jpeg2000},
                                                                 {"x.ppm", FileFormat::Ppm},
                                                                 {"x.pfm", FileFormat::Pfm}}) {
    EXPECT_FALSE(isPictureThere(folder.path(name), format)) << name;
    writePicture(folder.path(name), picture);
    EXPECT_TRUE(isPictureThere(folder.path(name), format)) << name;
    EXPECT_TRUE(isPictureThere(folder.path(name), format, PictureSize{60, 40})) << name;
    EXPECT_FALSE(isPictureThere(folder.path(name), format, PictureSize{40, 60})) << name;
    EXPECT_EQ(isPictureThere(at(2), format), format == FileFormat::Png) << name;
    const auto size = std::filesystem::file_size(folder.path(name));
    for (const auto cut : {size - size / 8, size / 2}) {
      std::filesystem::resize_file(folder.path(name), cut);
      EXPECT_FALSE(isPictureThere(folder.path(name), format)) << name << " of " << cut << " in " << size;
    }
  }
}

TEST(Progress, TellsTheRateOfTheLastSeconds) {
  using std::chrono::milliseconds;
  const StepRate::Clock::time_point start{};
  StepRate rate;
  EXPECT_EQ(rate.perSecond(), 0);
  rate.note(0, start);
  EXPECT_EQ(rate.perSecond(), 0);
  for (int i = 1; i <= 10; ++i) rate.note(static_cast<std::uint64_t>(i), start + milliseconds(100 * i));
  EXPECT_DOUBLE_EQ(rate.perSecond(), 10);
  // Half as fast from then on: after some seconds nothing else counts.
  for (int i = 1; i <= 100; ++i) rate.note(static_cast<std::uint64_t>(10 + i), start + milliseconds(1000 + 200 * i));
  EXPECT_DOUBLE_EQ(rate.perSecond(), 5);
  // That a slow one is not yet done says nothing.
  StepRate slow;
  for (int i = 0; i <= 300; ++i) slow.note(static_cast<std::uint64_t>(i / 100), start + milliseconds(100 * i));
  EXPECT_DOUBLE_EQ(slow.perSecond(), 0.1);

  EXPECT_EQ(rateText(0, 10), "");
  EXPECT_EQ(rateText(12.34, 518), "12.3 frames/s, 0:42 left");
  EXPECT_EQ(rateText(0.05, 381), "0.05 frames/s, 2:07:00 left");
  EXPECT_EQ(rateText(5, 0), "5.0 frames/s, 0:00 left");
  EXPECT_EQ(rateText(1e-300, 1u << 31), "0.00 frames/s, 99:59:59 left");
}

TEST(Remarks, GoWhereTheyAreWanted) {
  Capture errors(2);
  std::vector<Remark> taken;
  remark("before");
  {
    const RemarksRedirected redirected([&](Remark each) { taken.push_back(std::move(each)); });
    remark("a text");
    remark("a text of frame 3", "a text");
  }
  remark("behind\n");
  EXPECT_EQ(taken, (std::vector<Remark>{{"a text", "a text"}, {"a text of frame 3", "a text"}}));
  EXPECT_EQ(errors.text(), "vorto: before\nvorto: behind\\n\n");
}
