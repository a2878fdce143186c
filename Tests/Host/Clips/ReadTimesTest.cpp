// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Host/Clips/ClipFiles.h"

// Which frames a clip has, when they are shown, and that each is the same however it is come to.

namespace {

const std::string kChart = "-f lavfi -i testsrc2=s=64x64:r=24:d=2,noise=alls=30:allf=t -pix_fmt yuv420p ";

}  // namespace

TEST(ClipFrames, AreTheSameInAnyOrder) {
  const TemporaryFolder folder;
  const struct {
    const char *name, *options;
  } rows[] = {
      {"b.mp4", "-c:v libx264 -g 12 -bf 3"},
      {"open.mkv", "-c:v libx264 -x264-params open-gop=1:keyint=12:bframes=3"},
      {"open.ts", "-c:v libx264 -x264-params open-gop=1:keyint=12:bframes=3"},
      {"refresh.ts", "-c:v libx264 -x264-params intra-refresh=1:keyint=12:bframes=0"},
      {"hevc.mp4", "-c:v libx265 -x265-params log-level=none:keyint=12:open-gop=1 -tag:v hvc1"},
      {"mpeg2.mpg", "-c:v mpeg2video -g 12 -bf 2 -q:v 3"},
      {"mpeg4.avi", "-c:v mpeg4 -g 12 -bf 2 -q:v 3"},
      {"h264.avi", "-c:v libx264 -g 12 -bf 3"},
      {"raw.h264", "-c:v libx264 -g 12 -bf 3"},
      {"vp9.webm", "-c:v libvpx-vp9 -g 12 -auto-alt-ref 1 -lag-in-frames 16 -b:v 100k"},
      {"vp8.webm", "-c:v libvpx -g 12 -auto-alt-ref 1 -lag-in-frames 16 -b:v 100k"},
      {"av1.mkv", "-c:v libsvtav1 -g 12 -preset 12"},
      {"prores.mov", "-c:v prores_ks"},
      {"ffv1.mkv", "-c:v ffv1 -g 6"},
      {"chart.y4m", ""},
      {"dnx.mxf", "-s 1920x1080 -c:v dnxhd -b:v 36M -pix_fmt yuv422p -t 0.25"},
      {"theora.ogv", "-c:v libtheora -g 12 -q:v 5"},
      {"chart.flv", "-c:v flv -g 12"},
      {"chart.nut", "-c:v mjpeg -pix_fmt yuvj420p"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const std::string clip = folder.path(row.name);
    runFfmpeg(kChart + row.options + " " + clip);
    ReadClip sequential(clip);
    const auto count = static_cast<std::uint32_t>(sequential.count());
    EXPECT_EQ(count, std::string(row.name) == "dnx.mxf" ? 6u : 48u);
    EXPECT_FALSE(sequential.info().isUneven);
    EXPECT_EQ(sequential.info().rate, (host::Rational{24, 1}));
    EXPECT_NEAR(sequential.info().duration(), count / 24.0, 0.021);
    EXPECT_EQ(sequential.info().remark, "");
    const std::string range = std::string(row.options).find("yuvj") == std::string::npos ? "tv" : "pc";
    const std::string expected =
        convertedByFfmpeg(clip, "in_range=" + range, sequential.info().picture.sample == host::SampleType::UInt16);
    std::vector<std::string> frames;
    std::vector<std::uint32_t> wrong;
    for (std::uint32_t i = 0; i < count; ++i) {
      frames.push_back(sequential.frame(i));
      if (expected.compare(i * frames[i].size(), frames[i].size(), frames[i]) != 0) wrong.push_back(i);
    }
    EXPECT_EQ(wrong, std::vector<std::uint32_t>());
    EXPECT_EQ(sequential.damaged, wrong);
    ReadClip jumping(clip);
    std::uint32_t at = 0;
    for (int i = 0; i < 16; ++i, at = (at + 29) % count) {
      EXPECT_TRUE(jumping.frame(at) == frames[at]) << at;
    }
    for (std::uint32_t back = count - 1; back > count - 5; --back) {
      EXPECT_TRUE(jumping.frame(back) == frames[back]) << back;
    }
    EXPECT_TRUE(jumping.damaged.empty());
  }
}

// Clips that begin in the middle of what belongs together, or begin again.
TEST(ClipFrames, OfCutAndJoinedFilesAreThoseThatCanBeDecoded) {
  const TemporaryFolder folder;
  const std::string whole = folder.path("whole.ts");
  runFfmpeg(kChart + "-c:v libx264 -x264-params open-gop=1:keyint=12:bframes=3 " + whole);
  const std::string bytes = contentsOf(whole);
  folder.write("cut.ts", bytes.substr(bytes.size() / 3 / 188 * 188));
  folder.write("joined.ts", bytes + bytes);
  runFfmpeg("-ss 0.7 -i " + whole + " -c copy " + folder.path("copied.mp4"));
  runFfmpeg(kChart + "-c:v libx265 -x265-params log-level=none:keyint=12:open-gop=1 " + folder.path("hevc.ts"));
  const std::string hevc = contentsOf(folder.path("hevc.ts"));
  folder.write("cut-hevc.ts", hevc.substr(hevc.size() / 3 / 188 * 188));
  // An edit list leaves out what is in front of the cut, the key frame among it.
  runFfmpeg(kChart + "-c:v libx264 -g 24 -bf 3 " + folder.path("whole.mp4"));
  runFfmpeg("-ss 0.7 -i " + folder.path("whole.mp4") + " -c copy " + folder.path("edited.mp4"));
  for (const char* name : {"cut.ts", "joined.ts", "copied.mp4", "edited.mp4", "cut-hevc.ts"}) {
    SCOPED_TRACE(name);
    ReadClip read(folder.path(name));
    const std::string found = read.all();
    const std::string expected = convertedByFfmpeg(folder.path(name), "in_range=tv", false);
    const std::size_t frame = std::size_t{64} * 64 * 4;
    // What ffmpeg makes of frames before the first that is whole, with gray for what they refer to, is left out.
    const bool hasMadeUpOnes = std::string(name) == "cut-hevc.ts";
    EXPECT_EQ(read.count() < expected.size() / frame, hasMadeUpOnes) << read.info().remark;
    EXPECT_GE(read.count(), 24u);
    EXPECT_EQ(read.info().remark.find("its first ") == 0, std::string(name).starts_with("cut")) << read.info().remark;
    EXPECT_EQ(read.info().delay > 0, std::string(name).starts_with("cut")) << read.info().delay;
    EXPECT_TRUE(expected.ends_with(found)) << found.size() / frame;
    EXPECT_TRUE(read.damaged.empty()) << read.damaged.size();
    ReadClip jumping(folder.path(name));
    for (const std::size_t place : {read.count() - 1, read.count() / 3, read.count() / 2}) {
      EXPECT_TRUE(jumping.frame(static_cast<std::uint32_t>(place)) == found.substr(place * frame, frame)) << place;
    }
  }
}
