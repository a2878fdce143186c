// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Messages/Failure.h"
#include "Tests/Host/Clips/ClipFiles.h"

#include <csignal>
#include <thread>

// What is wrong ends a clip with a sentence, or is lived with; never the process that reads it.

namespace {

// The one process that this one has started.
pid_t childProcess() {
  const std::string self = std::to_string(getpid());
  std::ifstream children("/proc/" + self + "/task/" + self + "/children");
  pid_t child = 0;
  children >> child;
  return child;
}

std::string messageOf(const std::function<void()>& work) {
  try {
    work();
  } catch (const host::Failure& failure) {
    EXPECT_EQ(failure.code, host::ExitCode::Input);
    return failure.what();
  }
  return "";
}

}  // namespace

TEST(DamagedClips, AreReadAsFarAsTheyGoOrRefused) {
  const TemporaryFolder folder;
  std::mt19937 random(7);
  int refused = 0;
  int damaged = 0;
  for (const char* name : {"clip.mp4", "clip.mkv", "clip.avi", "clip.ts", "clip.mpg"}) {
    const std::string clip = folder.path(name);
    runFfmpeg("-f lavfi -i testsrc2=s=64x48:r=24:d=0.5 -c:v " +
              std::string(std::string(name) == "clip.mpg" ? "mpeg2video" : "libx264") + " -g 6 " + clip);
    const std::string whole = contentsOf(clip);
    for (int i = 0; i < 20; ++i) {
      std::string bytes = whole;
      for (int k = 0; k <= i % 8; ++k) bytes[random() % bytes.size()] ^= static_cast<char>(1 << random() % 8);
      if (i % 5 == 0) bytes.resize(bytes.size() * (1 + random() % 9) / 10);
      folder.write(name, bytes);
      const std::string message = messageOf([&] {
        ReadClip read(clip);
        read.all();
        read.frame(0);
        damaged += !read.damaged.empty();
      });
      refused += !message.empty();
      EXPECT_TRUE(message.empty() || message.starts_with("cannot read " + clip + ": ")) << message;
      EXPECT_EQ(message.find("decoder's process"), std::string::npos) << message;
    }
  }
  EXPECT_GT(refused, 3);
  EXPECT_GT(damaged, 5);
}

TEST(DamagedClips, AFrameThatCannotBeDecodedIsTheOneBefore) {
  const TemporaryFolder folder;
  const std::string clip = folder.path("clip.mov");
  runFfmpeg("-f lavfi -i testsrc2=s=64x48:r=24:d=0.5,noise=alls=30:allf=t -c:v prores_ks " + clip);
  std::string bytes = contentsOf(clip);
  std::size_t at = 0;
  for (int frame = 0; frame <= 5; ++frame) at = bytes.find("icpf", at + 1);
  std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), 64, '\0');
  folder.write("clip.mov", bytes);
  ReadClip read(clip);
  ASSERT_EQ(read.count(), 12u);
  const std::string before = read.frame(4);
  EXPECT_TRUE(read.frame(5) == before);
  EXPECT_EQ(read.damaged, std::vector<std::uint32_t>{5});
  EXPECT_FALSE(read.frame(6) == before);
  EXPECT_TRUE(read.frame(5) == before);
  EXPECT_EQ(read.damaged, (std::vector<std::uint32_t>{5, 5}));
}

TEST(Clips, AnotherSizeInBetweenIsRefusedForItsFrames) {
  const TemporaryFolder folder;
  runFfmpeg("-f lavfi -i testsrc2=s=64x48:r=24:d=0.25 -c:v mjpeg " + folder.path("a.mjpeg"));
  runFfmpeg("-f lavfi -i testsrc2=s=80x48:r=24:d=0.25 -c:v mjpeg " + folder.path("b.mjpeg"));
  const std::string clip =
      folder.write("c.mjpeg", contentsOf(folder.path("a.mjpeg")) + contentsOf(folder.path("b.mjpeg")));
  ReadClip read(clip);
  ASSERT_EQ(read.count(), 12u);
  read.frame(5);
  EXPECT_EQ(messageOf([&] { read.frame(6); }),
            "cannot read " + clip + ": frame 6: it has 80 x 48 pixels, the first one has 64 x 48");
  read.frame(3);
}

TEST(Clips, WhatIsNoneIsRefusedWithTheReason) {
  const TemporaryFolder folder;
  runFfmpeg("-f lavfi -i sine=d=1 " + folder.path("sound.mkv"));
  runFfmpeg("-f lavfi -i color=red:s=64x48:d=1 -frames:v 1 " + folder.path("cover.png"));
  runFfmpeg("-f lavfi -i sine=d=1 -i " + folder.path("cover.png") +
            " -map 0 -map 1 -c:v png -disposition:v attached_pic " + folder.path("cover.m4a"));
  runFfmpeg("-f lavfi -i testsrc2=s=64x48:d=1 -c:v mpeg4 " + folder.path("clip.mp4"));
  const std::string whole = contentsOf(folder.path("clip.mp4"));
  folder.write("cut.mp4", whole.substr(0, whole.size() / 2));
  folder.write("empty.mp4", "");
  folder.write("noise.mp4", std::string(4000, 'x'));
  folder.write("list.mp4", "ffconcat version 1.0\nfile clip.mp4\n");
  folder.write("list.ts", "#EXTM3U\n#EXT-X-TARGETDURATION:1\n#EXTINF:1,\nclip.mp4\n#EXT-X-ENDLIST\n");
  const struct {
    const char *name, *reason;
  } rows[] = {
      {"sound.mkv", "it holds no moving pictures"},
      {"cover.m4a", "it holds no moving pictures"},
      {"cut.mp4", "moov atom not found"},
      {"empty.mp4", ""},
      {"noise.mp4", "moov atom not found"},
      {"list.mp4", "it is no clip of a kind that can be read"},
      {"list.ts", "it is no clip of a kind that can be read"},
      {"cover.png", "it is no clip of a kind that can be read"},
      {"none.mp4", "No such file or directory"},
  };
  for (const auto& row : rows) {
    const std::string message = failureOf(folder.path(row.name));
    EXPECT_TRUE(message.starts_with("cannot read " + folder.path(row.name) + ": ")) << message;
    EXPECT_TRUE(message.ends_with(row.reason) || message.ends_with(row.reason + std::string(")"))) << message;
  }
}

TEST(ClipReader, SaysThatItsProcessHangsOrDied) {
  const TemporaryFolder folder;
  const std::string clip = folder.path("clip.mp4");
  runFfmpeg("-f lavfi -i testsrc2=s=64x48:r=24:d=1 -c:v mpeg4 " + clip);
  ReadClip hanging(clip, 1);
  hanging.frame(0);
  ASSERT_GT(childProcess(), 0);
  kill(childProcess(), SIGSTOP);
  EXPECT_EQ(messageOf([&] { hanging.frame(12); }), "cannot read " + clip + ": frame 12 took longer than 1 s");
  EXPECT_EQ(childProcess(), 0);

  ReadClip dying(clip);
  dying.frame(0);
  kill(childProcess(), SIGKILL);
  EXPECT_EQ(messageOf([&] { dying.frame(7); }), "cannot read " + clip +
                                                    ": frame 7: the decoder's process died of it (it was ended by "
                                                    "signal 9 (Killed))");
}
