// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Host/Clips/ClipFiles.h"

#include <sys/stat.h>

// What is said about a clip before its frames are read.

namespace {

const std::string kChart = "-f lavfi -i testsrc2=s=64x48:r=24:d=0.5 ";

// The code points as "primaries/transfer", "none" without.
std::string colorText(const host::ClipInfo& info) {
  const auto& codes = info.picture.metadata.color.codePoints;
  if (!codes) return "none";
  EXPECT_EQ(codes->matrix, 0);
  EXPECT_TRUE(codes->isFullRange);
  return std::to_string(codes->primaries) + "/" + std::to_string(codes->transfer);
}

}  // namespace

TEST(ClipColors, AreThoseOfTheTagsOrWhatIsBroadcast) {
  const TemporaryFolder folder;
  const struct {
    const char *size, *kind, *tags, *codes;
  } rows[] = {
      {"96x720", "yuv420p", "", "1/1"},
      {"96x480", "yuv420p", "", "6/1"},
      {"96x576", "yuv420p", "", "5/1"},
      {"96x480", "yuv420p", "colorspace=bt470bg", "5/1"},
      {"96x720", "yuv420p", "colorspace=smpte170m", "6/1"},
      {"96x64", "yuv420p", "colorspace=bt2020nc", "9/1"},
      {"96x64", "yuv420p10le", "colorspace=bt2020nc:color_primaries=bt2020:color_trc=smpte2084", "9/16"},
      {"96x64", "yuv420p10le", "colorspace=bt2020nc:color_primaries=bt2020:color_trc=arib-std-b67", "9/18"},
      {"96x64", "yuv420p", "colorspace=bt709:color_primaries=smpte432:color_trc=iec61966-2-1", "12/13"},
      {"96x720", "gbrp", "", "none"},
      {"96x720", "gbrp", "color_primaries=smpte432", "12/13"},
      {"96x720", "gray", "", "none"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.size) + " " + row.kind + " " + row.tags);
    const std::string clip = folder.path("clip.mkv");
    runFfmpeg("-f lavfi -i testsrc2=s=" + std::string(row.size) + ":d=0.04 -vf format=" + row.kind +
              (*row.tags ? ",setparams=" : "") + row.tags + " -c:v ffv1 " + clip);
    EXPECT_EQ(colorText(ReadClip(clip).info()), row.codes);
  }
}

TEST(ClipInfo, SaysWhatTheFileSays) {
  const TemporaryFolder folder;
  const auto made = [&](const std::string& name, const std::string& options) {
    runFfmpeg(kChart + options + " " + folder.path(name));
    return ReadClip(folder.path(name)).info();
  };
  const auto timed = made("time.mov",
                          "-f lavfi -i sine=d=0.5 -c:v prores_ks -profile:v 4444 -r 30000/1001 "
                          "-timecode '01:02:03;04' -vf setsar=4/3");
  EXPECT_EQ(timed.codec, "ProRes 4444");
  EXPECT_EQ(timed.rate, (host::Rational{30000, 1001}));
  EXPECT_EQ(timed.picture.metadata.frameRate, timed.rate);
  EXPECT_TRUE(timed.hasAudio);
  ASSERT_TRUE(timed.picture.metadata.timeCode);
  EXPECT_EQ(timed.picture.metadata.timeCode->timeAndFlags, 0x01020344u);
  EXPECT_NEAR(timed.picture.metadata.pixelAspect.value_or(0), 4 / 3.0, 1e-9);
  EXPECT_EQ(timed.picture.depth, host::Depth::Bits16);

  const auto fast = made("fast.mov", "-c:v mpeg4 -r 50 -timecode 23:59:59:49");
  ASSERT_TRUE(fast.picture.metadata.timeCode);
  EXPECT_EQ(fast.picture.metadata.timeCode->timeAndFlags, 0x2359D924u);

  const auto woven = made("woven.mpg", "-vf setfield=tff -flags +ilme+ildct -c:v mpeg2video");
  EXPECT_NE(woven.remark.find("interlaced"), std::string::npos) << woven.remark;
  EXPECT_FALSE(woven.hasAudio);
  EXPECT_EQ(woven.codec, "MPEG-2");
  EXPECT_FALSE(woven.picture.metadata.timeCode);
  EXPECT_FALSE(woven.picture.metadata.pixelAspect);
}

TEST(ClipInfo, KnowsUnevenTimes) {
  const TemporaryFolder folder;
  const std::string clip = folder.path("clip.mp4");
  runFfmpeg(
      "-f lavfi -i testsrc2=s=64x48:r=10:d=1 -vf \"settb=1/1000,setpts='100*N+250*gt(N,4)+90*gt(N,7)'\" "
      "-fps_mode passthrough -enc_time_base 1/1000 -video_track_timescale 1000 -c:v libx264 -bf 2 " +
      clip);
  ReadClip read(clip);
  ASSERT_EQ(read.count(), 10u);
  EXPECT_TRUE(read.info().isUneven);
  for (std::size_t i = 0; i < 10; ++i) {
    EXPECT_NEAR(read.info().seconds(i), 0.1 * i + 0.25 * (i > 4) + 0.09 * (i > 7), 1e-6) << i;
  }
  EXPECT_TRUE(read.all() == convertedByFfmpeg(clip, "in_range=tv", false));

  // A frame that is missing is, also where units are as long as a frame.
  for (const char* scale : {"25", "90000", "1000"}) {
    const std::string dropped = folder.path("dropped.mp4");
    runFfmpeg("-f lavfi -i testsrc2=s=64x48:r=25:d=1 -vf \"select='not(eq(n,12))'\" -fps_mode passthrough " +
              ("-c:v mpeg4 -video_track_timescale " + std::string(scale)) + " " + dropped);
    EXPECT_TRUE(ReadClip(dropped).info().isUneven) << scale;
  }

  // Milliseconds cannot say thirds of them: that is no unevenness.
  const std::string rounded = folder.path("clip.mkv");
  runFfmpeg("-f lavfi -i testsrc2=s=64x48:r=24000/1001:d=2 -c:v mpeg4 " + rounded);
  const host::ClipInfo even = ReadClip(rounded).info();
  EXPECT_FALSE(even.isUneven);
  EXPECT_EQ(even.rate, (host::Rational{24000, 1001}));
}

TEST(ClipInfo, FramesAreUpright) {
  const TemporaryFolder folder;
  runFfmpeg(kChart + "-pix_fmt yuv444p -c:v libx264 " + folder.path("plain.mp4"));
  for (const int angle : {90, 180, 270}) {
    SCOPED_TRACE(angle);
    const std::string clip = folder.path("turned.mov");
    runFfmpeg("-i " + folder.path("plain.mp4") + " -c copy -metadata:s:v rotate=" + std::to_string(angle) + " " + clip);
    ReadClip read(clip);
    EXPECT_EQ(read.info().picture.width, angle == 180 ? 64u : 48u);
    EXPECT_TRUE(read.all() == convertedByFfmpeg(clip, "in_range=tv", false));
  }
}

TEST(ClipInfo, AnEndThatIsMissingIsSaid) {
  const TemporaryFolder folder;
  for (const char* name : {"clip.mp4", "clip.mkv", "clip.avi", "clip.mov"}) {
    SCOPED_TRACE(name);
    const std::string whole = folder.path(std::string("whole-") + name);
    runFfmpeg("-f lavfi -i testsrc2=s=64x48:r=24:d=10 -f lavfi -i sine=d=10 -c:v mpeg4 -g 12 -movflags +faststart " +
              whole);
    EXPECT_EQ(ReadClip(whole).info().remark, "");
    const std::string bytes = contentsOf(whole);
    const std::string cut = folder.write(name, bytes.substr(0, bytes.size() * 6 / 10));
    ReadClip read(cut);
    EXPECT_NE(read.info().remark.find("it ends early: it states 10"), std::string::npos) << read.info().remark;
    EXPECT_GT(read.count(), 100u);
    EXPECT_LT(read.count(), 170u);
    EXPECT_LE(read.damaged.size(), 1u);
    read.all();
  }
  // So is a hole in the middle.
  const std::string matroska = folder.path("whole-clip.mkv");
  std::string holed = contentsOf(matroska);
  std::fill_n(holed.begin() + static_cast<std::ptrdiff_t>(holed.size() / 2), 1000, '\0');
  const std::string remark = ReadClip(folder.write("holed.mkv", holed)).info().remark;
  EXPECT_EQ(remark.find("parts of it are damaged, the first before "), 0u) << remark;
  // Sound that lasts longer than the pictures is no missing end.
  const std::string longer = folder.path("longer.mkv");
  runFfmpeg(kChart + "-f lavfi -i sine=d=3 -c:v mpeg4 " + longer);
  EXPECT_EQ(ReadClip(longer).info().remark, "");
}

TEST(IsClip, LooksAtBytesBeforeNames) {
  const TemporaryFolder folder;
  for (const char* name : {"a.mp4", "a.mov", "a.mkv", "a.webm", "a.avi", "a.ts", "a.m2ts", "a.mpg", "a.m2v", "a.ogv",
                           "a.flv", "a.mxf", "a.nut", "a.y4m", "a.ivf", "a.h264", "a.wmv"}) {
    const std::string clip = folder.path(name);
    const std::string name_ = name;
    runFfmpeg(kChart +
              (name_ == "a.webm" || name_ == "a.ivf" ? "-c:v libvpx "
               : name_ == "a.mxf"                    ? "-c:v mpeg2video -r 25 "
                                                     : "-pix_fmt yuv420p ") +
              clip);
    EXPECT_TRUE(host::isClip(clip)) << name;
    const bool needsName = name_ == "a.h264";
    std::filesystem::rename(clip, folder.path("unnamed"));
    EXPECT_EQ(host::isClip(folder.path("unnamed")), !needsName) << name;
    EXPECT_EQ(failureOf(folder.path("unnamed")), "") << name;
  }
  runFfmpeg(kChart + "-frames:v 1 " + folder.path("a.png"));
  runFfmpeg(kChart + folder.path("a.gif"));
  for (const char* name : {"a.png", "a.gif"}) {
    EXPECT_FALSE(host::isClip(folder.path(name)));
    std::filesystem::copy_file(folder.path(name), folder.path("a.mp4"),
                               std::filesystem::copy_options::overwrite_existing);
    EXPECT_FALSE(host::isClip(folder.path("a.mp4"))) << name;
  }
  EXPECT_FALSE(host::isClip(folder.write("a.heic", std::string("\0\0\0\x18"
                                                               "ftypheic",
                                                               12) +
                                                       std::string(400, ' '))));
  EXPECT_FALSE(host::isClip(folder.write("a.txt", "text")));
  // What cannot be read is refused by the reader, with the reason.
  EXPECT_TRUE(host::isClip(folder.path("none.mp4")));
  ASSERT_EQ(mkfifo(folder.path("pipe.mp4").c_str(), 0600), 0);
  EXPECT_TRUE(host::isClip(folder.path("pipe.mp4")));
  EXPECT_TRUE(failureOf(folder.path("pipe.mp4")).ends_with("pipe.mp4: it is no regular file"));
  runFfmpeg(kChart + "-c:v mjpeg " + folder.path("a.mjpeg"));
  EXPECT_TRUE(host::isClip(folder.path("a.mjpeg")));
  EXPECT_FALSE(host::isClip(folder.path()));
}
