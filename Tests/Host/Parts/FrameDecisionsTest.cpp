// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Files/FileContents.h"
#include "Host/Files/FileFormat.h"
#include "Host/Files/PictureWriting.h"
#include "Host/Rendering/Inputs.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelFormat.h"
#include "Tests/Host/IccProfiles.h"
#include "Tests/Support/ChildProcess.h"

#include <gtest/gtest.h>

#include <set>

// What becomes of a frame follows from its own files and from what those of the first frame say.

namespace {

using namespace host;

constexpr std::uint32_t kWidth = 9, kHeight = 3;

// Colors and alphas of all sorts.
BitmapRef varied(SampleType sample, unsigned seed) {
  std::shared_ptr<VortoBitmap> bitmap(TCCreateBitmap(kWidth, kHeight, VortoPixelFormat::RGBAFloat));
  auto* pixel = reinterpret_cast<float*>(bitmap->data);
  std::mt19937 random(seed);
  for (std::uint32_t i = 0; i < kWidth * kHeight; ++i, pixel += 4) {
    pixel[3] = static_cast<float>(random() % 256) / 255;
    for (int channel = 0; channel < 3; ++channel) pixel[channel] = pixel[3] * static_cast<float>(random() % 256) / 255;
  }
  return inDepth(bitmap, sample, "a test");
}

struct Tag {
  const char* name;
  Depth depth;
  ColorTag color;
};

ColorTag profileTag(Bytes profile) {
  ColorTag tag;
  tag.iccProfile = std::move(profile);
  return tag;
}

// A profile that nobody can use.
Bytes brokenProfile() {
  Bytes profile = profileBytes(wideProfile());
  std::fill(profile.begin() + 200, profile.end(), std::uint8_t{0});
  return profile;
}

Tag plain(Depth depth = Depth::Bits8) {
  return {"plain", depth, {}};
}
Tag wide(Depth depth = Depth::Bits16) {
  return {"wide", depth, profileTag(profileBytes(wideProfile()))};
}
Tag broken() {
  return {"broken", Depth::Bits8, profileTag(brokenProfile())};
}
Tag stated() {
  Tag tag{"sRGB", Depth::Bits8, {}};
  tag.color.sRGBIntent = 0;
  return tag;
}

struct Sequence {
  const char* name;
  std::vector<Tag> frames;
  Tag still;
  const char* output;  // an extension
};

class FrameDecisions : public testing::TestWithParam<Sequence> {
 protected:
  void SetUp() override {
    for (std::size_t i = 0; i < GetParam().frames.size(); ++i) write(framePath(i + 1), GetParam().frames[i], i);
    write(stillPath(), GetParam().still, 99);
  }
  static void write(const std::string& path, const Tag& tag, std::size_t seed) {
    OutputPicture picture;
    picture.bitmap = varied(sampleTypeOf(tag.depth), static_cast<unsigned>(seed));
    picture.depth = tag.depth;
    picture.metadata.color = tag.color;
    writePicture(path, FileFormat::Png, picture, {});
  }
  std::string framePath(std::size_t frame) const { return folder_.path("a." + std::to_string(frame) + ".png"); }
  std::string stillPath() const { return folder_.path("still.png"); }

  Inputs newInputs() const { return {{folder_.path("a.%d.png"), stillPath()}, std::nullopt}; }
  void begin(Inputs& inputs) const {
    const std::vector<std::string> paths{framePath(1), stillPath()};
    const PictureInfo infos[] = {readPictureInfo(paths[0]), readPictureInfo(paths[1])};
    inputs.begin(paths, {&infos[0], &infos[1]});
  }
  // The files that the pictures of a frame become.
  std::string rendered(Inputs& inputs, std::size_t frame) const {
    if (inputs.depth()) inputs.colors().expectOutput(format(), *inputs.depth(), std::nullopt, "out");
    const InputPictures pictures = inputs.picturesAt(static_cast<std::uint32_t>(frame));
    std::string bytes;
    for (const BitmapRef& bitmap : pictures.bitmaps) {
      OutputPicture picture;
      picture.bitmap = bitmap;
      picture.depth = pictures.depth;
      picture.metadata = pictures.infos[0]->metadata;
      inputs.colors().toOutput(picture, format(), "out");
      const std::string path = folder_.path(std::string("out.") + GetParam().output);
      writePicture(path, picture);
      const FileContents file = FileContents::ofFile(path);
      bytes += std::to_string(bitmap->formatCode) + std::string(file.bytes().begin(), file.bytes().end());
    }
    return bytes;
  }
  FileFormat format() const { return fileFormatOf(std::string("out.") + GetParam().output); }

 private:
  TemporaryFolder folder_;
};

std::string nameOf(const testing::TestParamInfo<Sequence>& info) {
  return info.param.name;
}

}  // namespace

TEST_P(FrameDecisions, EveryFrameAloneIsAsInTheWholeSequence) {
  const std::size_t count = GetParam().frames.size();
  std::vector<std::string> whole;
  testing::internal::CaptureStderr();
  Inputs all = newInputs(), backwards = newInputs();
  for (std::size_t frame = 1; frame <= count; ++frame) whole.push_back(rendered(all, frame));
  std::istringstream messages(testing::internal::GetCapturedStderr());
  std::set<std::string> said;
  for (std::string line; std::getline(messages, line);) EXPECT_TRUE(said.insert(line).second) << "twice: " << line;
  testing::internal::CaptureStderr();
  begin(backwards);
  for (std::size_t frame = count; frame >= 1; --frame) {
    Inputs alone = newInputs();
    begin(alone);
    EXPECT_TRUE(rendered(alone, frame) == whole[frame - 1]) << "frame " << frame << " alone";
    EXPECT_TRUE(rendered(backwards, frame) == whole[frame - 1]) << "frame " << frame << " after those behind it";
  }
  testing::internal::GetCapturedStderr();
}

INSTANTIATE_TEST_SUITE_P(
    Sequences, FrameDecisions,
    testing::Values(Sequence{"Alike", {plain(), plain(), plain()}, plain(), "png"},
                    Sequence{"OneOfAnotherSpace", {plain(), wide(), plain(), stated()}, plain(), "png"},
                    Sequence{"DeepAmongShallow", {plain(), plain(Depth::Bits16), plain()}, stated(), "tif"},
                    Sequence{"ShallowAfterDeep", {wide(), plain(), wide(Depth::Bits8)}, plain(), "png"},
                    Sequence{"ToLight", {stated(), wide(), plain(), broken(), stated()}, wide(), "exr"},
                    Sequence{"UnusableFirst", {broken(), stated(), plain(), wide(), broken()}, plain(), "exr"},
                    Sequence{"UnusableFirstOfAllAlike", {broken(), stated(), broken()}, broken(), "exr"}),
    nameOf);
