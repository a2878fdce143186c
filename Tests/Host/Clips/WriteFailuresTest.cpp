// SPDX-License-Identifier: BSD-3-Clause
// What cannot be written is said in one line that names the file, and leaves the old one as it was.
#include "Host/Messages/Failure.h"
#include "WriteSupport.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

namespace {

using namespace clips;

std::string contents(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

TEST(WriteFailures, SettingsThatDoNotFitSayWhatWould) {
  struct Case {
    const char* name;
    const char* codec;
    std::uint32_t width, height;
    bool hasAlpha;
    host::ClipSettings settings;
    const char* message;
  };
  const Folder folder;
  for (const Case& each : {
           Case{"out.webm", "h264", 64, 48, false, {}, "WebM does not hold h264: it takes vp9 or av1"},
           Case{"out.mp4", "prores", 64, 48, false, {}, "MP4 does not hold prores: it takes h264, hevc, av1 or vp9"},
           Case{"out.mp4",
                "mpeg9",
                64,
                48,
                false,
                {},
                "--codec mpeg9: give h264, hevc, vp9, av1, prores, dnxhr, ffv1 or png"},
           Case{"out.mov", "prores", 64, 48, false, {"", "fast", "", -1}, "--speed fast: prores knows none"},
           Case{"out.webm",
                "vp9",
                64,
                48,
                false,
                {"", "fast", "", -1},
                "--speed fast: vp9 takes 8, 7, 6, 5, 4, 3, 2, 1 or 0"},
           Case{"out.mp4", "h264", 64, 48, false, {"", "", "rgb", -1}, "--sampling rgb: h264 takes 420, 422 or 444"},
           Case{"out.mp4", "h264", 64, 48, false, {"", "", "", 101}, "--quality 101: give 1 to 100"},
           Case{"out.mkv", "ffv1", 64, 48, false, {"", "", "", 90}, "--quality 90: ffv1 loses nothing, and knows none"},
           Case{"out.mp4", "h264", 64, 48, true, {}, "H.264 in MP4 holds no alpha"},
           Case{"out.mp4", "vp9", 64, 48, true, {}, "VP9 in MP4 holds no alpha"},
           Case{"out.mov", "prores", 64, 48, true, {"", "", "422", -1}, "ProRes with --sampling 422 holds no alpha"},
           Case{
               "out.mp4",
               "h264",
               65,
               47,
               false,
               {},
               "H.264 with --sampling 420 takes frames of an even width and height, and these are 65 x 47: give --size "
               "66x48 or --sampling 444"},
           Case{
               "out.mp4",
               "h264",
               64,
               47,
               false,
               {},
               "H.264 with --sampling 420 takes frames of an even width and height, and these are 64 x 47: give --size "
               "64x48 or --sampling 422 or --sampling 444"},
           Case{"out.mov",
                "dnxhr",
                64,
                48,
                false,
                {},
                "DNxHR takes frames of 256 x 120 pixels and more, and these are 64 x 48"},
       }) {
    host::ClipTarget target = targetFor(folder / each.name, each.codec, 8, each.hasAlpha);
    target.kind = kindOf(each.width, each.height, 8, each.hasAlpha);
    target.settings = each.settings;
    target.settings.codec = each.codec;
    EXPECT_EQ(failureOf(target), each.message);
  }
  EXPECT_TRUE(folder.names().empty());
}

// Odd sizes where the codec takes them: all of the picture is there.
TEST(WriteFailures, OddSizesAreNotCropped) {
  for (const auto& [name, codec, sampling] :
       {std::tuple("out.mp4", "h264", "444"), std::tuple("out.mp4", "hevc", "444"), std::tuple("out.webm", "vp9", ""),
        std::tuple("out.mp4", "av1", ""), std::tuple("out.mov", "prores", ""), std::tuple("out.mkv", "ffv1", "420"),
        std::tuple("out.mov", "dnxhr", "")}) {
    const Folder folder;
    host::ClipTarget target = targetFor(folder / name, codec);
    target.settings.sampling = sampling;
    target.kind.width += 1;
    target.kind.height -= codec == std::string("dnxhr") ? -3 : 1;
    EXPECT_EQ(failureOf(target, {0, 1, 2, 3}), "");
    const nlohmann::json found = video(target.path);
    EXPECT_EQ(found.at("width"), target.kind.width) << codec;
    EXPECT_EQ(found.at("height"), target.kind.height) << codec;
    EXPECT_EQ(found.at("nb_read_frames"), "3") << codec;
  }
}

TEST(WriteFailures, TimesThatCannotBe) {
  const Folder folder;
  host::ClipTarget target = targetFor(folder / "out.avi");
  EXPECT_EQ(failureOf(target, {0, 1, 3, 4}),
            "cannot write " + target.path +
                ": AVI holds frames at one rate alone, and these come unevenly: give a .mkv or .mov");
  target = targetFor(folder / "out.mp4");
  EXPECT_NE(failureOf(target, {0, 1, 1, 4}).find("a frame comes before the one that it follows"), std::string::npos);
  EXPECT_NE(failureOf(target, {0, 1, 1}).find("it ends before its last frame"), std::string::npos);
  EXPECT_TRUE(folder.names().empty());
}

TEST(WriteFailures, FilesThatCannotBeWritten) {
  const Folder folder;
  host::ClipTarget target = targetFor(folder / "none/out.mp4");
  EXPECT_EQ(failureOf(target), "cannot write " + target.path + ": there is no folder " + (folder / "none"));
  std::filesystem::create_directory(folder / "out.mp4");
  target.path = folder / "out.mp4";
  EXPECT_EQ(failureOf(target), "cannot write " + target.path + ": it is a folder");
}

// In a process of its own, as the limit holds for those that it starts too.
TEST(WriteFailures, AFullDiskLeavesTheOldFile) {
  const Folder folder;
  for (const char* name : {"out.mkv", "out.mp4", "out.mov", "out.avi"}) {
    host::ClipTarget target = targetFor(folder / name);
    target.kind = kindOf(32, 32, 8, false);
    if (host::clipContainerOf(name)->codecs[0] == 'h') target.settings.quality = 100;
    std::ofstream(target.path) << "the old one";
    const pid_t child = fork();
    if (child == 0) {
      std::signal(SIGXFSZ, SIG_IGN);
      const rlimit limit{3500, 3500};  // a frame's memory is below
      setrlimit(RLIMIT_FSIZE, &limit);
      const std::string message = failureOf(target);
      _exit(message == "cannot write " + target.path + ": cannot write: File too large" ? 0 : 1);
    }
    int status = 1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0) << name;
    EXPECT_EQ(contents(target.path), "the old one") << name;
  }
  EXPECT_EQ(folder.names().size(), 4u);
}

// The process that this one has started last.
pid_t lastChild() {
  const std::string self = std::to_string(getpid());
  std::istringstream children(contents("/proc/" + self + "/task/" + self + "/children"));
  pid_t last = 0;
  for (pid_t child = 0; children >> child;) last = child;
  EXPECT_GT(last, 0);
  return last;
}

TEST(WriteFailures, AProcessThatDiesIsTold) {
  const Folder folder;
  const host::ClipTarget target = targetFor(folder / "out.mp4");
  std::ofstream(target.path) << "the old one";
  const std::string expected =
      "cannot write " + target.path + ": the process that writes it failed: it was ended by signal 9 (Killed)";
  const auto failure = [&](const std::function<void(host::ClipWriter&, host::FrameSlots&)>& step) -> std::string {
    host::FrameSlots slots(2);
    host::ClipWriter writer(target, slots);
    const Frame frame = chart(target.kind, 0);
    std::memcpy(slots.fill(0, target.kind), frame.data(), frame.size());
    writer.write(0, 0);
    EXPECT_EQ(writer.written(), 0u);
    kill(lastChild(), SIGKILL);
    try {
      step(writer, slots);
    } catch (const host::Failure& each) {
      EXPECT_EQ(each.code, host::ExitCode::Output);
      return each.what();
    }
    return "";
  };
  EXPECT_EQ(failure([](host::ClipWriter& writer, host::FrameSlots&) { writer.written(); }), expected);
  EXPECT_EQ(failure([](host::ClipWriter& writer, host::FrameSlots&) { writer.finish(1); }), expected);
  EXPECT_EQ(failure([](host::ClipWriter& writer, host::FrameSlots&) {
              for (int i = 1; i < 1000000; ++i) writer.write(0, i);
            }),
            expected);
  EXPECT_EQ(contents(target.path), "the old one");
  EXPECT_EQ(folder.names().size(), 1u);
}

TEST(WriteFailures, AWriterThatIsGivenUpLeavesNothing) {
  const Folder folder;
  const host::ClipTarget target = targetFor(folder / "out.mkv");
  {
    host::FrameSlots slots(1);
    host::ClipWriter writer(target, slots);
    const Frame frame = chart(target.kind, 0);
    std::memcpy(slots.fill(0, target.kind), frame.data(), frame.size());
    writer.write(0, 0);
    EXPECT_EQ(writer.written(), 0u);
  }
  EXPECT_TRUE(folder.names().empty());
}

}  // namespace
