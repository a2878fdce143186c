// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/PreviewEngine.h"

#include "Host/Files/FileFormat.h"
#include "Host/Files/ProgramFolder.h"
#include "Host/Preview/QuickSize.h"
#include "Host/Rendering/EffectRendering.h"
#include "Host/Rendering/Parameters.h"
#include "Host/Rendering/PortKinds.h"
#include "Host/Rendering/PortValues.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Ports/VRTObjects.h"
#include "Ports/VRTPorts.h"
#include "Tests/Inspect/InspectFixture.h"

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>

#include <QElapsedTimer>
#include <QTest>
#include <filesystem>
#include <set>
#include <thread>

namespace {

using namespace host;

constexpr int kPatience = 60000;  // milliseconds, of a machine that does much else

constexpr unsigned kFirstNumber = 3, kSequence = 4;  // of the files of a sequence

// Different everywhere, with alpha.
BitmapRef writtenPicture(const std::string& path, PictureSize size, Depth depth, bool isOpaque, unsigned shift = 0) {
  const auto format = formatCodeOf(depth == Depth::Bits8    ? SampleType::UInt8
                                   : depth == Depth::Bits16 ? SampleType::UInt16
                                                            : SampleType::Float);
  const MutableBitmapRef bitmap = newBitmap(size.width, size.height, format, path);
  for (std::uint32_t i = 0; i < size.width * size.height; ++i) {
    const std::uint32_t x = i % size.width, y = i / size.width;
    const double alpha = isOpaque ? 1 : 0.5 + 0.5 * ((x + y) % 3 == 0);
    const double values[] = {alpha * ((x * 7 + shift) % 256) / 255, alpha * (y * 5 % 256) / 255,
                             alpha * ((x + y) % 256) / 255, alpha};
    for (unsigned c = 0; c < 4; ++c) {
      if (depth == Depth::Bits8) bitmap->data[4 * i + c] = static_cast<std::uint8_t>(values[c] * 255);
      if (depth == Depth::Bits16)
        reinterpret_cast<std::uint16_t*>(bitmap->data)[4 * i + c] = static_cast<std::uint16_t>(values[c] * 65535);
      if (depth == Depth::Float) reinterpret_cast<float*>(bitmap->data)[4 * i + c] = static_cast<float>(2 * values[c]);
    }
  }
  writePicture(path, {bitmap, depth, isOpaque ? Channels::RGB : Channels::RGBA, {}});
  return bitmap;
}

std::string pixelsOf(const BitmapRef& bitmap) {
  if (!bitmap) return "none";
  const std::string head = std::to_string(bitmap->width) + " x " + std::to_string(bitmap->height) + " of " +
                           std::to_string(bitmap->formatCode) + ": ";
  return head + std::string(reinterpret_cast<const char*>(bitmap->data), bytesPerRow(*bitmap) * bitmap->height);
}

bool areSame(const BitmapRef& a, const BitmapRef& b) {
  return pixelsOf(a) == pixelsOf(b);
}

// Of this process, and of those whose parents have ended.
std::set<pid_t> children() {
  std::set<pid_t> result;
  std::ifstream file("/proc/self/task/" + std::to_string(::getpid()) + "/children");
  for (pid_t child; file >> child;) {
    if (::waitpid(child, nullptr, WNOHANG) == 0) result.insert(child);
  }
  return result;
}

bool areChildrenGone(int milliseconds) {
  QElapsedTimer waited;
  waited.start();
  while (!children().empty()) {
    if (waited.hasExpired(milliseconds)) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return true;
}

class PreviewEngineTest : public testing::Test {
 protected:
  PreviewEngineTest() {
    inspect_test::useEffects();
    const std::string contents = folder.path("plugins/Trouble.plugin/Contents");
    std::filesystem::create_directories(contents + "/Linux");
    folder.write("plugins/Trouble.plugin/Contents/Info.plist",
                 "<plist version=\"1.0\"><dict><key>CFBundleExecutable</key><string>P</string></dict></plist>");
    std::filesystem::copy_file(
        std::filesystem::read_symlink("/proc/self/exe").parent_path().string() + "/../test-plugins/Trouble.so",
        contents + "/Linux/P");
    ::setenv("VORTO_PLUGIN_PATH", folder.path("plugins").c_str(), 1);
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
  }
  ~PreviewEngineTest() override {
    ::unsetenv("VORTO_PLUGIN_PATH");
    engine.reset();
    EXPECT_TRUE(areChildrenGone(2000)) << "something is left behind";
  }

  std::string at(const std::string& name) const { return folder.path(name); }

  void writeSequence(unsigned first, unsigned count) const {
    for (unsigned frame = first; frame < first + count; ++frame) {
      writtenPicture(at("s." + std::to_string(frame) + ".png"), {160, 120}, Depth::Bits8, true, 20 * frame);
    }
  }
  void writeClip() const {
    const std::string command = hostProgram() + " render Levels --input " + at("s.%d.png") + " --output " +
                                at("clip.mov") + " --codec png > /dev/null 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0);
  }

  void open(PreviewSetup wanted) {
    setup = std::move(wanted);
    engine = std::make_unique<PreviewEngine>(PreviewEngine::Told{
        .pictured =
            [this](const PreviewPictureRef& picture, const VortoHash128& print) {
              pictures.push_back(picture);
              prints.push_back(print);
            },
        .counted =
            [this](const TCHistogram& input, const TCHistogram& result) {
              counts = {input, result};
            },
        .failed = [this](const PreviewFailure& failure) { failures.push_back(failure); },
        .busyChanged = [this](const PreviewBusy& busy) { busies.push_back(busy); },
        .aheadReady = [this](std::uint64_t frame, const VortoHash128&,
                             const PreviewPictureRef& picture) { aheads.emplace_back(frame, picture); },
        .aheadFailed =
            [this](std::uint64_t frame, const VortoHash128&, const PreviewFailure& failure) {
              aheads.emplace_back(frame, nullptr);
              failures.push_back(failure);
            }});
    if (!ports.empty()) engine->setParameters(ports);
    engine->open(setup);
  }
  void openTrouble() {
    writtenPicture(at("in.png"), {40, 30}, Depth::Bits8, true);
    ports = {&trouble, &amount};
    open({.effect = "Trouble", .inputs = {at("in.png")}});
    ASSERT_TRUE(settles());
  }
  void make(const std::string& what) {
    trouble.setStringValue(what);
    engine->setParameters(ports);
  }
  bool settles() {
    return QTest::qWaitFor([this] { return engine->isSettled(); }, kPatience);
  }
  bool waitFor(const std::function<bool()>& condition) { return QTest::qWaitFor(condition, kPatience); }

  // What rendering gives without an engine.
  struct Expected {
    BitmapRef before;
    BitmapRef result;
  };
  Expected rendered(std::uint64_t frame) const {
    EffectRendering effect(setup.effect, setup.inputs.size(), setup.framing, setup.depth);
    std::vector<std::string> paths = setup.inputs;
    // Of these frames, without loss.
    std::ranges::replace(paths, at("clip.mov"), at("s.%d.png"));
    Inputs inputs(paths, setup.depth, {}, setup.colors);
    const bool isStill = !inputs.areSequence();
    const InputPictures files = inputs.picturesAt(isStill ? 0 : static_cast<std::uint32_t>(kFirstNumber + frame));
    effect.connect(files);
    const auto canvas = onOneCanvas(files.bitmaps, setup.framing);
    const double time = static_cast<double>(frame) / (isStill ? 1000 : kSequence - 1);
    return {canvas.empty() ? nullptr : canvas[0], effect.result(effect.roles().time ? time : 0)};
  }

  TemporaryFolder folder;
  QCStringPort trouble{"inputTrouble"};
  QCNumberPort amount{"inputAmount"};
  std::vector<QCPort*> ports;
  PreviewSetup setup;
  std::vector<PreviewPictureRef> pictures;
  std::vector<VortoHash128> prints;  // of the pictures
  std::vector<PreviewFailure> failures;
  std::vector<PreviewBusy> busies;
  std::vector<std::pair<std::uint64_t, PreviewPictureRef>> aheads;
  std::pair<TCHistogram, TCHistogram> counts;
  std::unique_ptr<PreviewEngine> engine;
};

}  // namespace

TEST_F(PreviewEngineTest, GivesWhatRenderingGives) {
  writtenPicture(at("a8.png"), {64, 48}, Depth::Bits8, false);
  writtenPicture(at("a16.tif"), {300, 200}, Depth::Bits16, false);
  writtenPicture(at("afloat.exr"), {200, 300}, Depth::Float, false);
  writtenPicture(at("b.png"), {100, 20}, Depth::Bits8, true);
  for (unsigned frame = 3; frame < 7; ++frame) {
    writtenPicture(at("s." + std::to_string(frame) + ".png"), {160, 120}, Depth::Bits8, true, 20 * frame);
  }
  const std::string command = hostProgram() + " render Levels --input " + at("s.%d.png") + " --frames 3-6 --output " +
                              at("clip.mov") + " --codec png > /dev/null 2>&1";
  ASSERT_EQ(std::system(command.c_str()), 0);

  Framing small;
  small.size = PictureSize{50, 40};
  Framing placed;
  placed.place = placeNamed("7,-3");
  const ColorWishes linear{knownSpace(KnownSpace::LinearRec709, ColorSpace::Origin::Told), {}, {}};
  using Timing = PreviewOpened::Timing;
  const struct {
    PreviewSetup setup;
    Timing timing;
    std::vector<std::uint64_t> frames;
    bool hasFileBefore;
  } cases[] = {
      {{.effect = "Levels", .inputs = {at("a8.png")}}, Timing::Still, {0}, true},
      {{.effect = "Levels", .inputs = {at("b.png")}}, Timing::Still, {0}, false},
      {{.effect = "Levels", .inputs = {at("b.png")}, .colors = linear}, Timing::Still, {0}, true},
      {{.effect = "Levels", .inputs = {at("a16.tif")}, .framing = small}, Timing::Still, {0}, false},
      {{.effect = "Levels", .inputs = {at("afloat.exr")}}, Timing::Still, {0}, false},
      {{.effect = "Levels", .inputs = {at("a16.tif")}, .depth = Depth::Bits8}, Timing::Still, {0}, true},
      {{.effect = "Checkerboard", .framing = small, .depth = Depth::Bits16}, Timing::Still, {0}, false},
      {{.effect = "Over", .inputs = {at("a16.tif"), at("b.png")}, .framing = placed}, Timing::Still, {0}, false},
      {{.effect = "Dissolve", .inputs = {at("b.png"), at("a8.png")}}, Timing::Steps, {0, 333, 1000}, false},
      {{.effect = "Levels", .inputs = {at("s.%d.png")}}, Timing::Frames, {0, 3, 1}, false},
      {{.effect = "Dissolve", .inputs = {at("s.%d.png"), at("b.png")}}, Timing::Frames, {2, 1}, false},
      {{.effect = "Levels", .inputs = {at("clip.mov")}}, Timing::Frames, {0, 1, 2, 3, 0}, false},
  };
  for (const auto& [wanted, timing, frames, hasFileBefore] : cases) {
    open(wanted);
    SCOPED_TRACE(wanted.effect + " " + (wanted.inputs.empty() ? "" : wanted.inputs[0]));
    for (const std::uint64_t frame : frames) {
      engine->goTo(frame);
      ASSERT_TRUE(settles());
      const PreviewPictureRef picture = engine->fullPicture();
      ASSERT_TRUE(picture) << (engine->failure() ? engine->failure()->text : "no picture");
      const Expected expected = rendered(frame);
      EXPECT_TRUE(areSame(picture->result, expected.result)) << frame;
      EXPECT_TRUE(areSame(picture->before, expected.before)) << frame;
      EXPECT_EQ(picture->fileBefore != nullptr, hasFileBefore);
      EXPECT_TRUE(!hasFileBefore || areSame(picture->fileBefore, readPicture(wanted.inputs[0]).bitmap));
      EXPECT_EQ(picture->frame, frame);
      EXPECT_EQ(picture->size, (PictureSize{expected.result->width, expected.result->height}));
    }
    EXPECT_EQ(engine->opened()->timing, timing);
    TCHistogram count;
    const BitmapRef result = engine->fullPicture()->result;
    TCCountHistogram({result->data, bytesPerRow(*result), result->width, result->height, result->bitsPerChannel, true},
                     count);
    EXPECT_EQ(std::memcmp(&count, &counts.second, sizeof count), 0);
  }
}

TEST_F(PreviewEngineTest, QuickPicturesAreRenderedFromScaledInputs) {
  writtenPicture(at("in.exr"), {2600, 2000}, Depth::Float, true);
  VRTHistogramPort levels("inputLevels");
  levels.setValue(VRTHistogram::histogram());
  ports = {&levels};
  const PictureSize view{300, 300};
  open({.effect = "Levels", .inputs = {at("in.exr")}});
  engine->setViewSize(view);
  ASSERT_TRUE(settles());
  engine->setHeld(true);
  pictures.clear();
  setPartOfPort(levels, "gamma", "1.5");
  engine->setParameters(ports);
  ASSERT_TRUE(waitFor([this] { return !pictures.empty(); }));
  const PreviewPicture quick = *pictures[0];
  EXPECT_FALSE(quick.isFull);
  EXPECT_EQ(quick.size, (PictureSize{2600, 2000}));
  EXPECT_EQ(quick.beforeSize, quick.size);
  EXPECT_EQ(quick.depth, engine->fullPicture() ? engine->fullPicture()->depth : quick.depth);
  EffectRendering effect("Levels", 1, {}, {});
  setPartOfPort(*effect.patch().inputPortForKey("inputLevels"), "gamma", "1.5");
  InputPictures small;
  small.bitmaps = {scaledBitmap(readImage(at("in.exr")), quickSize({2600, 2000}, view), kQuickScaling)};
  small.depth = Depth::Float;
  effect.connect(small);
  EXPECT_TRUE(areSame(quick.before, small.bitmaps[0]));
  EXPECT_TRUE(areSame(quick.result, effect.result(0)));
  ASSERT_TRUE(settles()) << "a hand that rests";
  EXPECT_TRUE(engine->fullPicture());
  EXPECT_TRUE(pictures.back()->isFull);
}

TEST_F(PreviewEngineTest, OfManyChangesTheNewestIsRendered) {
  openTrouble();
  pictures.clear();
  make("slow");
  for (int i = 1; i <= 200; ++i) {
    amount.setDoubleValue(i);
    engine->setParameters(ports);
  }
  const VortoHash128 newest = engine->fingerprint();
  ASSERT_TRUE(settles());
  EXPECT_TRUE(engine->fullPicture());
  EXPECT_EQ(pictures.size(), 2u) << "the one that had begun, and the newest";
  EXPECT_EQ(prints.back(), newest);
  EXPECT_NE(prints[prints.size() - 2], newest);
  const VortoHash128 last = engine->fingerprint();
  pictures.clear();
  engine->setParameters(ports);
  EXPECT_TRUE(engine->isSettled()) << "nothing has changed";
  amount.setDoubleValue(7);
  engine->setParameters(ports);
  EXPECT_NE(engine->fingerprint(), last);
}

TEST_F(PreviewEngineTest, GoesOnAfterWhatFailsDiesOrHangs) {
  openTrouble();
  const PreviewPictureRef first = engine->picture();
  using Cause = PreviewFailure::Cause;
  const struct {
    const char* trouble;
    Cause cause;
    const char* text;
  } cases[] = {{"fail", Cause::Failed, "it was told to"}, {"die", Cause::Died, "signal 11"},
               {"exit", Cause::Died, "exit code 0"},      {"die", Cause::Died, "signal 11"},
               {"die", Cause::Died, "signal 11"},         {"hang", Cause::Cancelled, "cancelled"}};
  for (const auto& [what, cause, text] : cases) {
    for (const int change : {1, 2, 3}) {  // each of which is tried
      failures.clear();
      busies.clear();
      amount.setDoubleValue(change);
      make(what);
      if (cause == Cause::Cancelled) {
        ASSERT_TRUE(waitFor([this] { return !busies.empty(); }));
        EXPECT_TRUE(busies[0].isBusy);
        EXPECT_EQ(busies[0].phase, PreviewPhase::Rendering);
        EXPECT_GE(busies[0].elapsed.count(), 1000);
        engine->cancel();
      }
      ASSERT_TRUE(settles());
      EXPECT_EQ(failures.size(), change == 1 ? 1u : 0u) << what << ": the same is not told again";
      ASSERT_TRUE(engine->failure());
      EXPECT_EQ(engine->failure()->cause, cause);
      EXPECT_NE(engine->failure()->text.find(text), std::string::npos) << engine->failure()->text;
      EXPECT_NE(engine->failure()->text.find("Trouble"), std::string::npos) << engine->failure()->text;
      EXPECT_TRUE(engine->picture()) << "the last one stays";
      EXPECT_FALSE(engine->fullPicture());
      if (cause == Cause::Cancelled) break;
    }
    make("");
    ASSERT_TRUE(settles());
    EXPECT_TRUE(engine->fullPicture()) << "after " << what;
    EXPECT_FALSE(engine->failure());
  }
  EXPECT_TRUE(areSame(engine->picture()->result, first->result));
}

TEST_F(PreviewEngineTest, RefusesWhatRenderRefuses) {
  folder.write("broken.png", "no picture");
  const struct {
    PreviewSetup setup;
    ExitCode code;
    const char* text;
  } cases[] = {{{.effect = "Levels", .inputs = {at("none.png")}}, ExitCode::Input, "none.png"},
               {{.effect = "Levels", .inputs = {at("broken.png")}}, ExitCode::Input, "broken.png"},
               {{.effect = "Levels", .inputs = {at("none.%d.png")}}, ExitCode::Input, "none.%d.png"},
               {{.effect = "Levls", .inputs = {at("none.png")}}, ExitCode::Usage, "Levels"}};
  for (const auto& [wanted, code, text] : cases) {
    open(wanted);
    ASSERT_TRUE(settles());
    ASSERT_TRUE(engine->refusal());
    EXPECT_EQ(engine->refusal()->code, code);
    EXPECT_NE(engine->refusal()->text.find(text), std::string::npos) << engine->refusal()->text;
  }
  writtenPicture(at("none.png"), {40, 30}, Depth::Bits8, true);
  open(cases[0].setup);
  ASSERT_TRUE(settles());
  EXPECT_TRUE(engine->fullPicture());
}

TEST_F(PreviewEngineTest, FramesAheadComeOnceAndInputsAreDecodedOnce) {
  writeSequence(0, 12);
  ports = {&trouble, &amount};
  open({.effect = "Trouble", .inputs = {at("s.%d.png")}});
  ASSERT_TRUE(settles());
  const auto orderAll = [this] {
    aheads.clear();
    for (int i = 0; i < 2; ++i) {
      for (std::uint64_t frame = 0; frame < 12; ++frame) engine->orderAhead(frame);
    }
    ASSERT_TRUE(waitFor([this] { return aheads.size() >= 12; }));
    QTest::qWait(20);
    EXPECT_EQ(aheads.size(), 12u);
    std::set<std::uint64_t> frames;
    for (const auto& [frame, picture] : aheads) {
      ASSERT_TRUE(picture);
      EXPECT_EQ(picture->frame, frame);
      EXPECT_TRUE(areSame(picture->before, readImage(at("s." + std::to_string(frame) + ".png"))));
      frames.insert(frame);
    }
    EXPECT_EQ(frames.size(), 12u);
  };
  orderAll();
  amount.setDoubleValue(1);
  engine->setParameters(ports);
  orderAll();
  // A change in between: nothing that was sent for the older state is lost to the newer one.
  make("slow");
  aheads.clear();
  for (std::uint64_t frame = 0; frame < 12; ++frame) engine->orderAhead(frame);
  engine->dropAhead();
  make("");
  engine->goTo(5);
  ASSERT_TRUE(settles());
  EXPECT_TRUE(areSame(engine->fullPicture()->result, readImage(at("s.5.png"))));
  EXPECT_LE(aheads.size(), 4u);

  for (unsigned frame = 0; frame < 12; ++frame) std::filesystem::remove(at("s." + std::to_string(frame) + ".png"));
  amount.setDoubleValue(2);
  engine->setParameters(ports);
  ASSERT_TRUE(settles());
  EXPECT_TRUE(engine->fullPicture()) << "its inputs are kept";
}

TEST_F(PreviewEngineTest, NothingIsLeftBehindWheneverItEnds) {
  writeSequence(0, 8);
  writeClip();
  ports = {&trouble, &amount};
  const std::function<void()> states[] = {
      [] {},
      [&] { waitFor([&] { return engine->opened().has_value(); }); },
      [&] { settles(); },
      [&] {
        settles();
        make("hang");
        QTest::qWait(30);
      },
      [&] {
        settles();
        for (std::uint64_t frame = 0; frame < 8; ++frame) engine->orderAhead(frame);
        waitFor([&] { return !aheads.empty(); });
      },
      [&] {
        settles();
        make("hang");
        engine->cancel();
      },
  };
  for (const char* input : {"s.%d.png", "clip.mov"}) {
    for (const auto& reach : states) {
      trouble.setStringValue("");
      open({.effect = "Trouble", .inputs = {at(input)}});
      reach();
      QElapsedTimer ending;
      ending.start();
      engine.reset();
      EXPECT_LT(ending.elapsed(), 5000) << "it waits for what hangs";
      EXPECT_TRUE(areChildrenGone(5000)) << input << ", state " << (&reach - states);
    }
  }
}
