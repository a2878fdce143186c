// SPDX-License-Identifier: BSD-3-Clause
#include "HistogramEditor/VRTHistogramGradientView.h"
#include "HistogramEditor/VRTHistogramView.h"
#include "Tests/Support/LevelsScene.h"
#include "Tests/TarnKit/Pictures.h"

#include <QMenu>
#include <cstring>
#include <numeric>

// The histogram in a graph of patches.

namespace {

constexpr NSRect kFrame = {{0, 0}, {260, 60}};  // a graph of 256 columns

std::uint64_t countsOf(const VRTHistogramView& view) {
  const auto& counts = view.histogramSamples().rgb;
  return std::accumulate(std::begin(counts), std::end(counts), std::uint64_t{0});
}

template <class Channel>
std::vector<std::uint8_t> pixelOf(std::initializer_list<Channel> channels) {
  std::vector<std::uint8_t> bytes(channels.size() * sizeof(Channel));
  std::memcpy(bytes.data(), channels.begin(), bytes.size());
  return bytes;
}

TEST(HistogramView, CountsWhatFlowsIn) {
  LevelsPatch scene;
  VRTHistogramView view(kFrame);
  view.setHistogramPort(scene.levels.get());
  const auto bytes = imageOf({10, 20, 30, 40}, 5, 4), blueFirst = imageOf({10, 20, 30, 40}, 5, 4);
  blueFirst->format = 0;
  const struct {
    std::shared_ptr<SceneImage> image;
    std::size_t red, green, blue;  // the bins
  } cases[] = {{bytes, 10, 20, 30},
               {blueFirst, 30, 20, 10},
               {imageOf(pixelOf<std::uint16_t>({128, 129, 65535, 0}), 5, 4), 0, 1, 254},
               {imageOf(pixelOf<float>({-0.2f, 2.0f, 0.5f, 1.0f}), 5, 4), 0, 254, 127},
               {nullptr, 0, 254, 127}};  // without an image the last counts stay
  for (const auto& [image, red, green, blue] : cases) {
    scene.image->setValue(image);
    EXPECT_EQ(view.histogramSamples().red[red], 20u);
    EXPECT_EQ(view.histogramSamples().green[green], 20u);
    EXPECT_EQ(view.histogramSamples().blue[blue], 20u);
    EXPECT_EQ(countsOf(view), 60u);
  }
}

TEST(HistogramView, UnusableImagesCountNothing) {
  LevelsPatch scene;
  VRTHistogramView view(kFrame);
  view.setHistogramPort(scene.levels.get());
  void (*const changes[])(SceneImage&) = {
      [](SceneImage& image) { image.pixelBytes = 3; },
      [](SceneImage& image) { image.pixelBytes = -4; },
      [](SceneImage& image) { image.pixelBytes = 16; },
      [](SceneImage& image) { image.pitch = 15; },
      [](SceneImage& image) { image.bytes.clear(); },
      [](SceneImage& image) { image.width = 0; },
      [](SceneImage& image) { image.width = image.height = std::size_t(-1); },
  };
  for (const auto change : changes) {
    scene.image->setValue(imageOf({1, 2, 3, 4}, 2, 2));
    ASSERT_EQ(countsOf(view), 12u);
    const auto image = imageOf({1, 2, 3, 4}, 4, 4);
    change(*image);
    scene.image->setValue(image);
    EXPECT_EQ(countsOf(view), 0u);
  }
}

TEST(HistogramView, OnlyFiltersWithAContextHaveCounts) {
  for (const std::string kind : {"filter", "generator"}) {
    LevelsPatch scene(kind.c_str());
    scene.image->setValue(imageOf({1, 2, 3, 4}, 2, 2));
    VRTHistogramView view(kFrame);
    EXPECT_EQ(view.imageInputPort(), nullptr);
    view.setHistogramPort(scene.levels.get());
    EXPECT_EQ(view.imageInputPort(), kind == "filter" ? scene.image.get() : nullptr);
    EXPECT_EQ(countsOf(view), kind == "filter" ? 12u : 0u);
    scene.patch->context = nullptr;
    scene.image->setValue(imageOf({1, 2, 3, 4}, 2, 2));
    EXPECT_EQ(countsOf(view), 0u);
  }
}

TEST(HistogramView, ADetachedViewCostsNothing) {
  LevelsPatch scene, other;
  VRTHistogramView view(kFrame);
  view.setHistogramPort(scene.levels.get());
  view.setHistogramPort(scene.levels.get());
  scene.image->setValue(imageOf({1, 2, 3, 4}, 2, 2));
  EXPECT_EQ(scene.context.reads, 1) << "attached twice, counted once for each frame";
  view.update(true);
  view.grab();
  EXPECT_EQ(scene.context.reads, 1) << "another channel is no other image";

  view.setHistogramPort(other.levels.get());
  scene.image->setValue(imageOf({5, 2, 3, 4}, 2, 2));
  EXPECT_EQ(scene.context.reads, 1);
  other.image->setValue(imageOf({5, 2, 3, 4}, 2, 2));
  EXPECT_EQ(other.context.reads, 1);
  view.setHistogramPort(nullptr);
  other.image->setValue(nullptr);
  other.image->setValue(imageOf({6, 2, 3, 4}, 2, 2));
  EXPECT_EQ(other.context.reads, 1);
  EXPECT_EQ(view.histogramSamples().red[5], 4u) << "what was counted last stays";
}

QRgb colorAt(QWidget& view, int x, int y) {
  return pixelAt(pictureOf(view), view.devicePixelRatioF(), x, y);
}

TEST(HistogramView, DrawsBarsInsideItsFrame) {
  LevelsPatch scene;
  std::vector<std::uint8_t> pixels;  // 14 reds of 100, 28 of 150, 56 of 200
  for (int i = 0; i < 98; ++i) {
    const std::uint8_t red = i < 14 ? 100 : i < 42 ? 150 : 200;
    pixels.insert(pixels.end(), {red, 7, 8, 9});
  }
  scene.image->setValue(std::make_shared<SceneImage>(98, 1, 4, pixels));
  scene.histogram().setSelectedChannel(1);
  VRTHistogramView view(kFrame);
  view.setHistogramPort(scene.levels.get());

  constexpr QRgb bar = qRgb(25, 29, 38), ground = qRgb(181, 187, 200);
  const QImage picture = pictureOf(view);
  for (int bin = 0; bin < 256; ++bin) {
    const int height = bin == 100 ? 14 : bin == 150 ? 28 : bin == 200 ? 56 : 0;
    for (int row = 0; row < 56; ++row) {
      const QRgb color = pixelAt(picture, view.devicePixelRatioF(), 2 + bin, 2 + row);
      ASSERT_EQ(color, height > 56 - row ? bar : ground) << bin << ", " << row;
    }
  }
  EXPECT_NE(colorAt(view, 1, 30), ground);
  EXPECT_NE(colorAt(view, 258, 30), ground);

  scene.histogram().setSelectedChannel(2);
  EXPECT_EQ(colorAt(view, 2 + 200, 57), bar) << "the channel is looked at when the view is told";
  view.update(false);
  EXPECT_EQ(colorAt(view, 2 + 200, 57), ground);
  EXPECT_EQ(colorAt(view, 2 + 7, 30), bar);

  view.setFrameSize({3, 3});
  view.grab();
  EXPECT_EQ(view.histogramBitmap()->pixelsWide(), 0u);
}

TEST(HistogramView, TheMenuChoosesTheScale) {
  VRTHistogramView view(kFrame);
  const auto choose = [&](int index) {
    const std::unique_ptr<QMenu> menu(view.menuForEvent(NSEvent()));
    ASSERT_EQ(menu->actions().size(), 2);
    menu->actions().at(index)->trigger();
  };
  choose(1);
  EXPECT_EQ(view.histogramScale(), VRTHistogramScale::Logarithmic);
  choose(0);
  EXPECT_EQ(view.histogramScale(), VRTHistogramScale::Linear);
  auto dying = std::make_unique<VRTHistogramView>(kFrame);
  const QPointer<QMenu> menu(dying->menuForEvent(NSEvent()));
  dying.reset();
  EXPECT_EQ(menu, nullptr);
}

TEST(HistogramView, AnythingMayDieFirst) {
  auto view = std::make_unique<VRTHistogramView>(kFrame);
  auto scene = std::make_unique<LevelsPatch>();
  view->setHistogramPort(scene->levels.get());
  const auto image = scene->image;
  const auto levels = scene->levels;
  scene->patch.reset();  // the node; its ports live on
  image->setValue(imageOf({1, 2, 3, 4}, 2, 2));
  EXPECT_EQ(view->imageInputPort(), nullptr);
  EXPECT_EQ(countsOf(*view), 0u);
  view->setHistogramPort(nullptr);

  scene = std::make_unique<LevelsPatch>();
  view->setHistogramPort(scene->levels.get());
  scene.reset();  // everything
  EXPECT_EQ(view->getHistogramChannel(), nullptr);
  view->resampleInputImage();
  view->grab();

  scene = std::make_unique<LevelsPatch>();
  view->setHistogramPort(scene->levels.get());
  scene->levels->setValue(nullptr);
  EXPECT_EQ(view->getHistogramChannel(), nullptr);
  view->grab();
  view.reset();
  scene->image->setValue(imageOf({1, 2, 3, 4}, 2, 2));
  EXPECT_EQ(scene->context.reads, 0);
}

TEST(HistogramGradientView, DrawsARampThatFollowsTheSize) {
  VRTHistogramGradientView view(NSMakeRect(0, 0, 260, 16));
  EXPECT_EQ(colorAt(view, 2, 3), qRgb(0, 0, 0));
  EXPECT_EQ(colorAt(view, 2 + 128, 13), qRgb(128, 128, 128));
  EXPECT_EQ(colorAt(view, 257, 2), qRgb(254, 254, 254));
  view.setFrameSize({132, 16});
  EXPECT_EQ(colorAt(view, 2 + 64, 8), qRgb(128, 128, 128));
  view.setFrameSize({132, 2});
  view.grab();
  EXPECT_EQ(view.gradientBitmap()->pixelsWide(), 128u) << "too low to be drawn";
}

}  // namespace
