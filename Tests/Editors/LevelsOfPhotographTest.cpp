// SPDX-License-Identifier: BSD-3-Clause
#include "Editors/VRTEditors.h"
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
#include <cstring>

// A photograph through the effect "Levels" as it ships, with the editor that its port makes.

namespace {

enum Depth { Bytes, Words, Floats };
constexpr std::uint32_t kFormats[] = {0, 4, 9};

// Answers for the bitmaps of images.
class PhotographContext : public VortoExecutionContext {
 public:
  std::size_t pixelsWideFromImage(const QCImage& image) override { return image.pixelsWide(); }
  std::size_t pixelsHighFromImage(const QCImage& image) override { return image.pixelsHigh(); }
  int formatFromImage(const QCImage&) override { return 1; }
  void getPixelsFromImage(const QCImage& image, const void** outBaseAddress, std::size_t* outBytesPerRow) override {
    *outBaseAddress = dynamic_cast<const VRTImage&>(image).bitmap()->data;
    *outBytesPerRow = image.pixelsWide() * std::size_t(image._bufferPixelSize());
  }
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
    ASSERT_GT(photograph.width(), 300);
  }
  void TearDown() override {
    editor.reset();
    VortoSetExecutionContextProvider(nullptr);
  }

  // Every depth shows the same bytes.
  std::shared_ptr<VortoBitmap> bitmap(Depth depth) const {
    std::shared_ptr<VortoBitmap> made(
        TCCreateBitmap(std::uint32_t(photograph.width()), std::uint32_t(photograph.height()), kFormats[depth]));
    auto* out = static_cast<std::uint8_t*>(made->data);
    for (int y = 0; y < photograph.height(); ++y) {
      for (int i = 0; i < 4 * photograph.width(); ++i, out += 1 << depth) {
        const std::uint8_t byte = photograph.constScanLine(y)[i];
        const auto word = std::uint16_t(byte * 257);
        const float real = float(byte) / 255;
        if (depth == Bytes) *out = byte;
        if (depth == Words) std::memcpy(out, &word, 2);
        if (depth == Floats) std::memcpy(out, &real, 4);
      }
    }
    return made;
  }

  const QImage photograph = QImage(VORTO_TEST_PHOTOS "/coffee.png").convertToFormat(QImage::Format_RGBA8888);
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
  std::array<std::array<std::uint32_t, 256>, 4> expected{};
  for (int y = 0; y < photograph.height(); ++y) {
    const std::uint8_t* row = photograph.constScanLine(y);
    for (std::size_t i = 0; i < 4 * std::size_t(photograph.width()); ++i) ++expected[i % 4][std::min<int>(row[i], 254)];
  }
  for (const Depth depth : {Bytes, Words, Floats}) {
    VRTImage::setBitmapOfPort(*image, bitmap(depth));
    const TCHistogram& counted = view->histogramSamples();
    for (std::size_t bin = 0; bin < 256; ++bin) {
      ASSERT_EQ(counted.red[bin], expected[0][bin]) << "depth " << depth << ", bin " << bin;
      ASSERT_EQ(counted.green[bin], expected[1][bin]);
      ASSERT_EQ(counted.blue[bin], expected[2][bin]);
      ASSERT_EQ(counted.alpha[bin], expected[3][bin]);
      ASSERT_EQ(counted.rgb[bin], expected[0][bin] + expected[1][bin] + expected[2][bin]);
    }
  }
}

TEST_F(LevelsOfPhotograph, AHandleChangesWhatTheEffectRenders) {
  VRTImage::setBitmapOfPort(*image, bitmap(Bytes));
  const auto render = [&] {
    std::string reason;
    EXPECT_TRUE(levels->executeAtTime(0, &reason)) << reason;
    const auto* output = dynamic_cast<const QCImagePort*>(filterOutputImagePort(*levels));
    const auto made = VRTImage::bitmapOfPort(*output);
    const auto* bytes = static_cast<const std::uint8_t*>(made->data);
    return std::vector<std::uint8_t>(bytes, bytes + std::size_t{4} * made->width * made->height);
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
