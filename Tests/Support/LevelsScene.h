// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Channels/VRTChannelHistogram.h"
#include "HistogramEditor/VRTHistogramEditor.h"
#include "HistogramEditor/VRTHistogramGutter.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Ports/VRTObjects.h"
#include "Ports/VRTPorts.h"
#include "Registry/VRTProtocols.h"
#include "Tests/Support/EditorScene.h"
#include "Tests/Support/Lists.h"

// A patch with an image and levels, its host's execution context, and the editor of the levels.

class SceneImage : public QCImage {
 public:
  SceneImage(std::size_t pixelsWide, std::size_t pixelsHigh, int pixelSize, std::vector<std::uint8_t> pixels)
      : bytes(std::move(pixels)),
        width(pixelsWide),
        height(pixelsHigh),
        pitch(width * std::size_t(pixelSize)),
        pixelBytes(pixelSize) {}
  std::size_t pixelsWide() const override { return width; }
  std::size_t pixelsHigh() const override { return height; }
  int _bufferPixelSize() const override { return pixelBytes; }

  std::vector<std::uint8_t> bytes;
  std::size_t width, height, pitch;
  int pixelBytes;
  int format = 1;
};

// Bytes of one pixel, repeated.
inline std::shared_ptr<SceneImage> imageOf(std::vector<std::uint8_t> pixel, std::size_t width, std::size_t height) {
  std::vector<std::uint8_t> bytes;
  for (std::size_t i = 0; i < width * height; ++i) bytes.insert(bytes.end(), pixel.begin(), pixel.end());
  return std::make_shared<SceneImage>(width, height, int(pixel.size()), std::move(bytes));
}

class SceneContext : public VortoExecutionContext {
 public:
  std::size_t pixelsWideFromImage(const QCImage& image) override { return sceneImage(image).width; }
  std::size_t pixelsHighFromImage(const QCImage& image) override { return sceneImage(image).height; }
  int formatFromImage(const QCImage& image) override { return sceneImage(image).format; }
  void getPixelsFromImage(const QCImage& image, const void** outBaseAddress, std::size_t* outBytesPerRow) override {
    ++reads;
    const auto& bytes = sceneImage(image).bytes;
    *outBaseAddress = bytes.empty() ? nullptr : bytes.data();
    *outBytesPerRow = sceneImage(image).pitch;
  }
  int reads = 0;

 private:
  static const SceneImage& sceneImage(const QCImage& image) { return dynamic_cast<const SceneImage&>(image); }
};

class ScenePatch : public QCPatch, public VortoRuntime {
 public:
  explicit ScenePatch(const char* kind) : QCPatch(attributesOfKind(kind, dict({{"inputImagePort", text("image")}}))) {}
  VortoExecutionContext* vortoExecutionContext() override { return context; }
  SceneContext* context = nullptr;
};

struct LevelsPatch {
  explicit LevelsPatch(const char* kind = "filter") : patch(std::make_shared<ScenePatch>(kind)) {
    patch->context = &context;
    image = patch->addInputPort<QCImagePort>("image");
    levels = patch->addInputPort<VRTHistogramPort>("levels");
    levels->setValue(value);
  }
  VRTHistogram& histogram() const { return dynamic_cast<VRTHistogram&>(*levels->value()); }

  SceneContext context;
  std::shared_ptr<ScenePatch> patch;
  std::shared_ptr<QCImagePort> image;
  std::shared_ptr<VRTHistogramPort> levels;
  std::shared_ptr<VRTHistogram> value = std::make_shared<VRTHistogram>();
};

// A levels editor, and its input or its output gutter: a track of 208 points. It edits the reds.
class LevelsScene : public EditorScene, public LevelsPatch {
 public:
  static constexpr int kRed = 1;

  explicit LevelsScene(bool output = false) {
    histogram().setSelectedChannel(kRed);
    auto* made = new VRTHistogramEditor(NSMakeRect(0, 0, 218, 137));
    made->setHistogramPort(levels.get());
    show(made, NSMakeRect(11, 40, 218, 137), levels);
    gutter = output ? part<VRTHistogramGutterOut>() : static_cast<NSTarnView*>(part<VRTHistogramGutterIn>());
    isOutput_ = output;
  }

  // A point on the handle of a value.
  static constexpr NSPoint on(double value, double beside = 0) { return {208 * value + 5 + beside, 3}; }

  void attach(EditorScene* other) override {
    editorPart().setHistogramPort(other ? dynamic_cast<LevelsScene&>(*other).levels.get() : nullptr);
  }
  std::shared_ptr<NSObject> newValue() const override {
    auto fresh = std::make_shared<VRTHistogram>();
    fresh->setSelectedChannel(kRed);
    return fresh;
  }
  NSPoint handle() const override { return on(0); }
  NSPoint nothing() const override { return on(0.75); }
  double position() const override {
    return isOutput_ ? histogram().blackOutForChannel(kRed) : histogram().blackInForChannel(kRed);
  }
  void chooseHandle() override {}
  bool settles() const override { return false; }
  void updateEditor() override { editorPart().update(); }

  VRTHistogramEditor& editorPart() const { return dynamic_cast<VRTHistogramEditor&>(*editor); }
  VRTHistogramGutter& gutterPart() const { return dynamic_cast<VRTHistogramGutter&>(*gutter); }

 private:
  bool isOutput_ = false;
};
