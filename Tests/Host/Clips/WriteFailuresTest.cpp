// SPDX-License-Identifier: BSD-3-Clause
// What cannot be written is said in one line that names the file, and leaves the old one as it was.
#include "Host/Messages/Failure.h"
#include "Tests/Host/Clips/WriteSupport.h"

#include <sys/resource.h>

#include <csignal>

namespace {

// The old file's place, and what is in its folder.
class Target {
 public:
  explicit Target(const std::string& name) : target(targetFor(folder.write(name, "the old one"))) {}
  void expectUntouched() const {
    EXPECT_EQ(contentsOf(target.path), "the old one") << target.path;
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1) << target.path;
  }
  std::string failure(const std::vector<std::int64_t>& times = {}) const {
    return failureOf([&] { write(target, times); });
  }
  const TemporaryFolder folder;
  host::ClipTarget target;
};

TEST(WriteFailures, SettingsThatDoNotFitSayWhatWould) {
  const auto refusal = [](const char* name, const host::ClipSettings& settings, std::uint32_t width = 64,
                          std::uint32_t height = 48, bool hasAlpha = false) {
    return failureOf(
        [&] { clipStorage(*host::clipContainerOf(name), settings, frameKind(width, height, 8, hasAlpha), 8); });
  };
  EXPECT_EQ(refusal("out.webm", {"h264", "", "", -1}), "WebM does not hold h264: it takes vp9 or av1");
  EXPECT_EQ(refusal("out.mp4", {"mpeg9", "", "", -1}),
            "--codec mpeg9: give h264, hevc, vp9, av1, prores, dnxhr, ffv1 or png");
  EXPECT_EQ(refusal("out.mov", {"prores", "fast", "", -1}), "--speed fast: prores knows none");
  EXPECT_EQ(refusal("OUT.WEBM", {"", "fast", "", -1}), "--speed fast: vp9 takes 8, 7, 6, 5, 4, 3, 2, 1 or 0");
  EXPECT_EQ(refusal("out.mp4", {"h264", "", "rgb", -1}), "--sampling rgb: h264 takes 420, 422 or 444");
  EXPECT_EQ(refusal("out.mp4", {"h264", "", "", 101}), "--quality 101: give 1 to 100");
  EXPECT_EQ(refusal("out.mkv", {"ffv1", "", "", 90}), "--quality 90: ffv1 loses nothing, and knows none");
  EXPECT_EQ(refusal("out.mp4", {}, 64, 48, true), "H.264 in MP4 holds no alpha");
  EXPECT_EQ(refusal("out.mp4", {"vp9", "", "", -1}, 64, 48, true), "VP9 in MP4 holds no alpha");
  EXPECT_EQ(refusal("out.mov", {"", "", "422", -1}, 64, 48, true), "ProRes with --sampling 422 holds no alpha");
  EXPECT_EQ(refusal("out.mp4", {}, 65, 47),
            "H.264 with --sampling 420 takes frames of an even width and height, and these are 65 x 47: give --size "
            "66x48 or --sampling 444");
  EXPECT_EQ(refusal("out.mp4", {"", "", "422", -1}, 65, 47),
            "H.264 with --sampling 422 takes frames of an even width, and these are 65 x 47: give --size 66x47 or "
            "--sampling 444");
  EXPECT_EQ(refusal("out.mov", {"dnxhr", "", "", -1}),
            "DNxHR takes frames of 256 x 120 pixels and more, and these are 64 x 48");
}

// Odd sizes where the codec takes them: all of the picture is there.
TEST(WriteFailures, OddSizesAreNotCropped) {
  for (const auto& [name, codec, sampling] :
       {std::tuple("out.mp4", "h264", "444"), std::tuple("out.mp4", "hevc", "444"), std::tuple("out.webm", "vp9", ""),
        std::tuple("out.mp4", "av1", ""), std::tuple("out.mov", "prores", ""), std::tuple("out.mkv", "ffv1", "420"),
        std::tuple("out.mov", "dnxhr", "")}) {
    const TemporaryFolder folder;
    host::ClipTarget target = targetFor(folder.path(name), codec);
    target.settings.sampling = sampling;
    target.kind.width += 1;
    target.kind.height += 3;
    write(target, {0, 1, 2, 3});
    const nlohmann::json found = video(target.path);
    EXPECT_EQ(found.at("width"), target.kind.width) << codec;
    EXPECT_EQ(found.at("height"), target.kind.height) << codec;
    EXPECT_EQ(found.at("nb_read_frames"), "3") << codec;
  }
}

TEST(WriteFailures, TimesAndPlacesThatCannotBe) {
  const Target avi("out.avi");
  EXPECT_EQ(avi.failure({0, 1, 3, 4}),
            "cannot write " + avi.target.path +
                ": AVI holds frames at one rate alone, and these come unevenly: give a .mkv or .mov");
  avi.expectUntouched();
  Target mp4("out.mp4");
  EXPECT_NE(mp4.failure({0, 1, 1, 4}).find("a frame comes before the one that it follows"), std::string::npos);
  EXPECT_NE(mp4.failure({0, 1, 1}).find("it ends before its last frame"), std::string::npos);
  mp4.expectUntouched();
  mp4.target.path = mp4.folder.path("none/out.mp4");
  EXPECT_EQ(mp4.failure(), "cannot write " + mp4.target.path + ": there is no folder " + mp4.folder.path("none"));
  mp4.target.path = mp4.folder.path();
  EXPECT_EQ(mp4.failure(), "cannot write " + mp4.target.path + ": it is a folder");
}

// In a process of its own, as the limit holds for those that it starts too.
TEST(WriteFailures, AFullDiskLeavesTheOldFile) {
  for (const char* name : {"out.mkv", "out.mp4", "out.mov", "out.avi"}) {
    Target full(name);
    full.target.kind = frameKind(32, 32, 8, false);
    if (host::clipContainerOf(name)->codecs[0] == 'h') full.target.settings.quality = 100;
    const ChildResult child = RunInChild([&] {
      std::signal(SIGXFSZ, SIG_IGN);
      const rlimit limit{3500, 3500};  // a frame's memory is below
      setrlimit(RLIMIT_FSIZE, &limit);
      std::printf("%s", full.failure().c_str());
      return 0;
    });
    EXPECT_EQ(child.output, "cannot write " + full.target.path + ": cannot write: File too large");
    full.expectUntouched();
  }
}

// The process that this one has started last.
pid_t lastChild() {
  const std::string self = std::to_string(getpid());
  std::istringstream children(contentsOf("/proc/" + self + "/task/" + self + "/children"));
  pid_t last = 0;
  for (pid_t child = 0; children >> child;) last = child;
  EXPECT_GT(last, 0);
  return last;
}

TEST(WriteFailures, AProcessThatDiesOrHangsIsToldAndOneThatIsGivenUpLeavesNothing) {
  const Target old("out.mp4");
  using Step = std::function<void(host::ClipWriter&)>;
  const std::string expected =
      "cannot write " + old.target.path + ": the process that writes it failed: it was ended by signal 9 (Killed)";
  const auto failure = [&](int signal, const Step& step) {
    host::FrameSlots slots(1);
    host::ClipWriter writer(old.target, slots, std::chrono::seconds(1));
    const std::string frame = chart(old.target.kind, 0);
    std::memcpy(slots.fill(0, old.target.kind), frame.data(), frame.size());
    writer.write(0, 0);
    EXPECT_EQ(writer.written(), 0u);
    if (signal != 0) kill(lastChild(), signal);
    return failureOf([&] { step(writer); });
  };
  EXPECT_EQ(failure(SIGKILL, [](host::ClipWriter& writer) { writer.written(); }), expected);
  EXPECT_EQ(failure(SIGKILL, [](host::ClipWriter& writer) { writer.finish(1); }), expected);
  EXPECT_EQ(failure(SIGKILL,
                    [](host::ClipWriter& writer) {
                      for (int i = 1; i < 1000000; ++i) writer.write(0, i);
                    }),
            expected);
  const std::string hanging =
      "cannot write " + old.target.path + ": the process that writes it has made no progress in 1 s";
  EXPECT_EQ(failure(SIGSTOP, [](host::ClipWriter& writer) { writer.written(); }), hanging);
  EXPECT_EQ(failure(SIGSTOP, [](host::ClipWriter& writer) { writer.finish(1); }), hanging);
  EXPECT_EQ(failure(0, [](host::ClipWriter&) {}), "");
  old.expectUntouched();
}

}  // namespace
