// SPDX-License-Identifier: BSD-3-Clause
#include "Editors/VRTEditors.h"
#include "HistogramEditor/VRTHistogramEditor.h"
#include "HistogramEditor/VRTHistogramView.h"
#include "Platform/QuartzComposer/GFNodeManager.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Ports/VRTImage.h"
#include "Ports/VRTObjects.h"
#include "Registry/VRTProtocols.h"
#include "TarnCore/TCBitmap.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QTest>
#include <array>
#include <cmath>
#include <cstring>

// A photograph through the effect "Levels" as it ships, with the editor that its port makes.

namespace {

enum Depth { Bytes, Words, Floats };
constexpr std::uint32_t kFormats[] = {0, 4, 9};

struct Photograph {
  explicit Photograph(const char* name)
      : image(QImage(QString(VORTO_TEST_PHOTOS "/") + name).convertToFormat(QImage::Format_RGBA8888)) {}

  // Words that are not only the multiples of 257 that bytes would give. Alpha stays full.
  std::uint32_t word(int x, int y, int channel) const {
    const std::uint32_t byte = image.constScanLine(y)[4 * x + channel];
    const std::uint32_t grain = std::uint32_t(31 * x + 17 * y + 7 * channel) % 257;
    return channel == 3 ? byte * 257 : std::min(byte * 257 + grain, 65535u);
  }

  std::shared_ptr<VortoBitmap> bitmap(Depth depth) const {
    const auto width = std::uint32_t(image.width());
    const auto height = std::uint32_t(image.height());
    std::shared_ptr<VortoBitmap> made(TCCreateBitmap(width, height, kFormats[depth]));
    auto* out = static_cast<std::uint8_t*>(made->data);
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) {
        for (int c = 0; c < 4; ++c) out += store(out, depth, word(x, y, c), image.constScanLine(y)[4 * x + c]);
      }
    }
    return made;
  }

  // Bins by whole numbers, and for floats by the quotient.
  static int bin(Depth depth, std::uint32_t word, std::uint32_t byte) {
    if (depth == Bytes) return std::min(int(byte), 254);
    if (depth == Words) return std::min(int((2 * word + 257) / 514), 254);
    const float quotient = float(double(word) / 65535) / 0.003921569f;
    return std::min(int(std::floor(double(quotient) + 0.5000001)), 254);
  }

  std::array<std::array<std::uint32_t, 256>, 4> counts(Depth depth) const {
    std::array<std::array<std::uint32_t, 256>, 4> counted{};
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) {
        for (int c = 0; c < 4; ++c) {
          ++counted[std::size_t(c)][std::size_t(bin(depth, word(x, y, c), image.constScanLine(y)[4 * x + c]))];
        }
      }
    }
    return counted;
  }

  QImage image;

 private:
  static int store(std::uint8_t* out, Depth depth, std::uint32_t word, std::uint8_t byte) {
    const auto half = std::uint16_t(word);
    const auto real = float(double(word) / 65535);
    if (depth == Bytes) *out = byte;
    if (depth == Words) std::memcpy(out, &half, 2);
    if (depth == Floats) std::memcpy(out, &real, 4);
    return 1 << depth;
  }
};

// Answers for the bitmaps of images, with red or with blue first.
class PhotographContext : public VortoExecutionContext {
 public:
  std::size_t pixelsWideFromImage(const QCImage& image) override { return image.pixelsWide(); }
  std::size_t pixelsHighFromImage(const QCImage& image) override { return image.pixelsHigh(); }
  int formatFromImage(const QCImage&) override { return isBlueFirst ? 0 : 1; }
  void getPixelsFromImage(const QCImage& image, const void** outBaseAddress, std::size_t* outBytesPerRow) override {
    const std::size_t pixelBytes = std::size_t(image._bufferPixelSize());
    const auto& bitmap = *dynamic_cast<const VRTImage&>(image).bitmap();
    const auto* bytes = static_cast<const std::uint8_t*>(bitmap.data);
    *outBytesPerRow = image.pixelsWide() * pixelBytes;
    *outBaseAddress = bytes;
    if (!isBlueFirst) return;
    swapped.assign(bytes, bytes + image.pixelsHigh() * *outBytesPerRow);
    const std::size_t channel = pixelBytes / 4;
    for (std::size_t at = 0; at < swapped.size(); at += pixelBytes) {
      std::swap_ranges(&swapped[at], &swapped[at] + channel, &swapped[at] + 2 * channel);
    }
    *outBaseAddress = swapped.data();
  }
  bool isBlueFirst = false;

 private:
  std::vector<std::uint8_t> swapped;
};

class LevelsOfPhotograph : public testing::Test {
 protected:
  void SetUp() override {
    VRTStartEditors();
    VortoSetExecutionContextProvider([this](QCPatch&) { return &context; });
    manager.initWithNamespace("effects under test");
    manager.loadPlugInsInFolder(VORTO_TEST_PLUGINS, {"plugin"});
    levels = manager.nodeInstanceWithName("Levels");
    ASSERT_NE(levels, nullptr);
    image = dynamic_cast<QCImagePort*>(filterInputImagePort(*levels));
    port = dynamic_cast<VRTHistogramPort*>(levels->portForKey("inputLevels"));
    ASSERT_TRUE(image && port);
    if (!port->value()) port->setValue(std::make_shared<VRTHistogram>());
    editor.reset(port->setupParameterView());
    ASSERT_NE(editor, nullptr);
  }
  void TearDown() override {
    editor.reset();
    VortoSetExecutionContextProvider(nullptr);
  }
  PhotographContext context;
  GFNodeManager manager;
  std::shared_ptr<QCPatch> levels;
  QCImagePort* image = nullptr;
  VRTHistogramPort* port = nullptr;
  std::unique_ptr<NSTarnView> editor;
};

TEST_F(LevelsOfPhotograph, CountsAreThoseOfAPlainLoop) {
  const auto* view = dynamic_cast<VRTHistogramView*>(editor->findChild<QWidget*>("histogramView"));
  ASSERT_NE(view, nullptr);
  for (const char* name : {"coffee.png", "chelsea.png"}) {
    const Photograph photograph(name);
    ASSERT_GT(photograph.image.width(), 300) << name;
    for (const Depth depth : {Bytes, Words, Floats}) {
      const auto expected = photograph.counts(depth);
      for (const bool isBlueFirst : {false, true}) {
        context.isBlueFirst = isBlueFirst;
        VRTImage::setBitmapOfPort(*image, photograph.bitmap(depth));
        const TCHistogram& counted = view->histogramSamples();
        for (std::size_t bin = 0; bin < 256; ++bin) {
          ASSERT_EQ(counted.red[bin], expected[0][bin]) << name << ", depth " << depth << ", bin " << bin;
          ASSERT_EQ(counted.green[bin], expected[1][bin]);
          ASSERT_EQ(counted.blue[bin], expected[2][bin]);
          ASSERT_EQ(counted.alpha[bin], expected[3][bin]);
          ASSERT_EQ(counted.rgb[bin], expected[0][bin] + expected[1][bin] + expected[2][bin]);
        }
      }
    }
  }
}

TEST_F(LevelsOfPhotograph, AHandleChangesWhatTheEffectRenders) {
  const Photograph photograph("coffee.png");
  VRTImage::setBitmapOfPort(*image, photograph.bitmap(Bytes));
  const auto render = [&] {
    std::string reason;
    EXPECT_TRUE(levels->executeAtTime(0, &reason)) << reason;
    const auto* output = dynamic_cast<const QCImagePort*>(filterOutputImagePort(*levels));
    const auto bitmap = VRTImage::bitmapOfPort(*output);
    const auto* bytes = static_cast<const std::uint8_t*>(bitmap->data);
    return std::vector<std::uint8_t>(bytes, bytes + std::size_t{4} * bitmap->width * bitmap->height);
  };
  const auto before = render();
  editor->show();
  auto* gutter = editor->findChild<QWidget*>("gutterOut");
  QTest::mousePress(gutter, Qt::LeftButton, {}, {213, 6});
  QTest::mouseMove(gutter, {109, 6});
  const auto after = render();
  QTest::mouseRelease(gutter, Qt::LeftButton, {}, {109, 6});
  ASSERT_EQ(before.size(), after.size());
  EXPECT_NE(before, after);
  for (std::size_t i = 0; i < after.size(); i += 4) ASSERT_LE(after[i], 128);
}

}  // namespace
