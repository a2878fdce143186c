// SPDX-License-Identifier: BSD-3-Clause
// Codecs that lose nothing give back what went in; alpha, times and bytes stay what they are in all.
#include "Tests/Host/Clips/WriteSupport.h"

namespace {

struct Lossless {
  const char* extension;
  const char* codec;
  int bits;
  bool hasAlpha;
};

class WriteLossless : public testing::TestWithParam<Lossless> {};

TEST_P(WriteLossless, GivesBackWhatWentIn) {
  const Lossless& lossless = GetParam();
  const TemporaryFolder folder;
  host::ClipTarget target = targetFor(folder.path(std::string("out.") + lossless.extension), lossless.codec,
                                      lossless.bits, lossless.hasAlpha);
  target.kind.width = 67;  // rows that end nowhere near a register's end
  target.kind.height = 41;
  write(target, {0, 1, 2, 3});
  const std::string expected = chart(target.kind, 0) + chart(target.kind, 1) + chart(target.kind, 2);
  const std::string format =
      lossless.bits == 8 ? (lossless.hasAlpha ? "rgba" : "rgb24") : (lossless.hasAlpha ? "rgba64le" : "rgb48le");
  EXPECT_TRUE(decodedByFfmpeg(target.path, "", format) == expected);
}

INSTANTIATE_TEST_SUITE_P(All, WriteLossless,
                         testing::Values(Lossless{"mkv", "ffv1", 8, false}, Lossless{"mkv", "ffv1", 8, true},
                                         Lossless{"avi", "ffv1", 16, false}, Lossless{"mkv", "ffv1", 16, true},
                                         Lossless{"mov", "png", 8, false}, Lossless{"avi", "png", 8, true},
                                         Lossless{"mkv", "png", 16, false}, Lossless{"mov", "png", 16, true}),
                         [](const auto& each) {
                           return std::string(each.param.extension) + "_" + each.param.codec + "_" +
                                  std::to_string(each.param.bits) + (each.param.hasAlpha ? "_alpha" : "");
                         });

// The alpha of codecs that hold it in YUV: none of it is lost but what the codec itself loses.
TEST(WriteAlpha, IsStraightInEveryCodec) {
  for (const auto& [name, codec, sampling, decoder, bits, largest] :
       {std::tuple("out.mov", "prores", "", "prores", 12, 0.001),
        std::tuple("out.webm", "vp9", "", "libvpx-vp9", 8, 0.1), std::tuple("out.mkv", "ffv1", "420", "ffv1", 8, 0.0),
        std::tuple("out.mkv", "ffv1", "444", "ffv1", 8, 0.0)}) {
    const TemporaryFolder folder;
    host::ClipTarget target = targetFor(folder.path(name), codec, 8, true);
    target.settings.sampling = sampling;
    write(target, {0, 1});
    runFfmpeg(std::string("-c:v ") + decoder + " -i " + target.path + " -vf extractplanes=a -f rawvideo " +
              folder.path("raw"));
    const std::string found = contentsOf(folder.path("raw"));
    const std::string frame = chart(target.kind, 0);
    double error = 0;
    for (std::size_t i = 0; i < std::size_t{64} * 48; ++i) {
      const double alpha = sampleAt(found, i, bits > 8) / ((1 << bits) - 1);
      error = std::max(error, std::abs(alpha - sampleAt(frame, 4 * i + 3, false) / 255));
    }
    EXPECT_LE(error, largest) << codec << sampling;
  }
}

// Each at its time, the last one until the end, also with frames that are coded in another order than shown.
TEST(WriteTimes, StayUneven) {
  const std::vector<std::int64_t> times = {100, 103, 104, 110, 130, 131, 132, 140, 200, 201, 202, 203, 250};
  for (const char* name : {"out.mp4", "out.mov", "out.mkv", "out.webm"}) {
    const TemporaryFolder folder;
    host::ClipTarget target = targetFor(folder.path(name));
    target.timeBase = {1, 100};
    write(target, times);
    const auto found = probe(target.path, "-show_frames -select_streams v").at("frames");
    ASSERT_EQ(found.size(), times.size() - 1) << name;
    for (std::size_t i = 0; i < found.size(); ++i) {
      const double expected = static_cast<double>(times[i] - times[0]) / 100;
      EXPECT_NEAR(std::stod(found[i].at("best_effort_timestamp_time").get<std::string>()), expected, 0.0001) << name;
    }
    const auto format = probe(target.path, "-show_format").at("format");
    EXPECT_NEAR(std::stod(format.at("duration").get<std::string>()), 1.5, 0.002) << name;
  }
}

TEST(WriteTimes, RatesThatAreNoWholeNumbersAreExact) {
  for (const char* name : {"out.mp4", "out.mov", "out.mkv", "out.avi"}) {
    const TemporaryFolder folder;
    host::ClipTarget target = targetFor(folder.path(name));
    target.rate = {30000, 1001};
    target.timeBase = {1001, 30000};
    write(target);
    const nlohmann::json found = video(target.path);
    EXPECT_EQ(found.at("r_frame_rate"), "30000/1001") << name;
    EXPECT_EQ(found.at("avg_frame_rate"), "30000/1001") << name;
    EXPECT_EQ(found.at("nb_read_frames"), "12") << name;
  }
}

TEST(WriteMetadata, IsInTheClip) {
  const TemporaryFolder folder;
  for (const char* name : {"out.mov", "out.mp4", "out.mkv"}) {
    host::ClipTarget target = targetFor(folder.path(name), "h264");
    target.metadata.color.codePoints = host::CodePoints{9, 16, 0, true};
    target.metadata.pixelAspect = 4.0 / 3;
    target.metadata.timeCode = host::TimeCode{0x12345621, 0};
    write(target);
    const nlohmann::json found = video(target.path);
    EXPECT_EQ(found.at("color_primaries"), "bt2020");
    EXPECT_EQ(found.at("color_transfer"), "smpte2084");
    EXPECT_EQ(found.at("color_space"), "bt2020nc");
    EXPECT_EQ(found.at("color_range"), "tv");
    EXPECT_EQ(found.at("sample_aspect_ratio"), "4:3");
    const auto tags = found.at("tags");
    EXPECT_EQ(tags.contains("timecode") ? tags.at("timecode") : tags.at("TIMECODE"), "12:34:56:21") << name;
  }
  host::ClipTarget target = targetFor(folder.path("display.mov"), "h264");
  target.metadata.color.sRGBIntent = 0;
  write(target);
  EXPECT_EQ(video(target.path).at("color_transfer"), "iec61966-2-1");
}

// Nothing of when and by whom: the same frames make the same file.
TEST(WriteBytes, AreTheSameEveryTime) {
  for (const auto& [extension, codec] :
       {std::pair("mp4", "h264"), std::pair("mp4", "hevc"), std::pair("webm", "vp9"), std::pair("mkv", "av1"),
        std::pair("mov", "prores"), std::pair("mkv", "ffv1")}) {
    const TemporaryFolder folder;
    std::array<std::string, 2> files;
    for (std::string& file : files) {
      const host::ClipTarget target = targetFor(folder.path(std::string("out.") + extension), codec);
      write(target);
      file = contentsOf(target.path);
    }
    EXPECT_FALSE(files[0].empty());
    if (extension == std::string("mp4")) {
      EXPECT_LT(files[0].find("moov"), files[0].find("mdat")) << "players need the end of the file first";
    }
    EXPECT_TRUE(files[0] == files[1]) << codec;
  }
}

TEST(WriteQuality, MakesFilesLargerAndSpeedsAreKnown) {
  for (const auto& [extension, codec, speed] :
       {std::tuple("mp4", "h264", "veryfast"), std::tuple("mp4", "hevc", "ultrafast"), std::tuple("webm", "vp9", "8"),
        std::tuple("mkv", "av1", "10"), std::tuple("mov", "prores", ""), std::tuple("mov", "dnxhr", "")}) {
    const TemporaryFolder folder;
    std::vector<std::uintmax_t> sizes;
    for (const int quality : {1, 50, 100}) {
      host::ClipTarget target = targetFor(folder.path(std::string("out.") + extension), codec);
      if (codec == std::string("dnxhr")) target.kind = frameKind(640, 360, 8, false);
      target.settings.quality = quality;
      target.settings.speed = speed;
      write(target, {0, 1, 2, 3, 4});
      sizes.push_back(std::filesystem::file_size(target.path));
    }
    EXPECT_LT(sizes[0], sizes[1]) << codec;
    EXPECT_LT(sizes[1], sizes[2]) << codec;
  }
}

}  // namespace
