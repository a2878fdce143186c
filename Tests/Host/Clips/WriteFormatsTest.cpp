// SPDX-License-Identifier: BSD-3-Clause
// What other programs find in clips of every container and codec.
#include "Tests/Host/Clips/WriteSupport.h"

namespace {

struct Written {
  const char* extension;
  const char* codec;     // empty: the usual one
  const char* sampling;  // empty: the usual one
  int bits;
  bool hasAlpha;
  const char* name;         // what is found: the codec
  const char* pixelFormat;  // and its pixels
};

std::string nameOf(const testing::TestParamInfo<Written>& info) {
  const Written& written = info.param;
  return std::string(written.extension) + "_" + (*written.codec ? written.codec : "usual") + written.sampling + "_" +
         std::to_string(written.bits) + (written.hasAlpha ? "_alpha" : "");
}

class WriteFormats : public testing::TestWithParam<Written> {};

TEST_P(WriteFormats, HoldAllFramesTheirTimesAndColors) {
  const Written& written = GetParam();
  const TemporaryFolder folder;
  const std::string path = folder.path(std::string("out.") + written.extension);
  host::ClipTarget target = targetFor(path, written.codec, written.bits, written.hasAlpha);
  target.settings.sampling = written.sampling;
  write(target);
  const nlohmann::json found = video(path);
  EXPECT_EQ(found.at("codec_name"), written.name);
  EXPECT_EQ(found.at("pix_fmt"), written.pixelFormat);
  EXPECT_EQ(found.at("nb_read_frames"), "12");
  EXPECT_EQ(found.at("width"), target.kind.width);
  EXPECT_EQ(found.at("height"), target.kind.height);
  EXPECT_EQ(found.at("r_frame_rate"), "25/1");
  EXPECT_EQ(found.at("avg_frame_rate"), "25/1");
  EXPECT_EQ(found.value("start_time", "0.000000"), "0.000000");
}

INSTANTIATE_TEST_SUITE_P(
    All, WriteFormats,
    testing::Values(
        Written{"mp4", "", "", 8, false, "h264", "yuv420p"}, Written{"m4v", "h264", "422", 8, false, "h264", "yuv422p"},
        Written{"mp4", "h264", "444", 16, false, "h264", "yuv444p10le"},
        Written{"mp4", "hevc", "", 8, false, "hevc", "yuv420p"},
        Written{"mp4", "hevc", "", 16, false, "hevc", "yuv420p10le"},
        Written{"mp4", "av1", "", 8, false, "av1", "yuv420p"},
        Written{"mp4", "av1", "444", 16, false, "av1", "yuv444p10le"},
        Written{"mp4", "vp9", "", 8, false, "vp9", "yuv420p"},
        Written{"mov", "", "", 8, false, "prores", "yuv422p10le"},
        Written{"mov", "prores", "", 16, true, "prores", "yuva444p12le"},
        Written{"mov", "h264", "", 16, false, "h264", "yuv420p10le"},
        Written{"mov", "hevc", "422", 8, false, "hevc", "yuv422p"},
        Written{"mov", "dnxhr", "", 8, false, "dnxhd", "yuv422p"},
        Written{"mov", "dnxhr", "", 16, false, "dnxhd", "yuv422p10le"},
        Written{"mov", "dnxhr", "444", 16, false, "dnxhd", "yuv444p10le"},
        Written{"mov", "png", "", 16, true, "png", "rgba64be"}, Written{"mkv", "", "", 8, false, "h264", "yuv420p"},
        Written{"mkv", "hevc", "444", 16, false, "hevc", "yuv444p10le"},
        Written{"mkv", "vp9", "", 8, true, "vp9", "yuv420p"}, Written{"mkv", "av1", "", 8, false, "av1", "yuv420p"},
        Written{"mkv", "prores", "444", 8, false, "prores", "yuv444p12le"},
        Written{"mkv", "ffv1", "", 8, false, "ffv1", "bgr0"}, Written{"mkv", "ffv1", "", 16, true, "ffv1", "gbrap16le"},
        Written{"mkv", "ffv1", "420", 8, true, "ffv1", "yuva420p"}, Written{"mkv", "png", "", 8, false, "png", "rgb24"},
        Written{"webm", "", "", 8, false, "vp9", "yuv420p"},
        Written{"webm", "vp9", "444", 16, false, "vp9", "yuv444p10le"},
        Written{"webm", "av1", "422", 8, false, "av1", "yuv422p"},
        Written{"avi", "", "", 16, false, "ffv1", "gbrp16le"}, Written{"avi", "png", "", 8, true, "png", "rgba"}),
    nameOf);

}  // namespace
