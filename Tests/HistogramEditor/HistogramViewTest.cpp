// SPDX-License-Identifier: BSD-3-Clause
#include "HistogramEditor/VRTHistogramGradientView.h"
#include "HistogramEditor/VRTHistogramView.h"
#include "Tests/Support/LevelsScene.h"
#include "Tests/TarnKit/Pictures.h"

#include <numeric>

// The histogram in a graph of patches.

namespace {

// A graph of 256 columns that shows the levels of a patch.
struct HistogramView : testing::Test {
  HistogramView() { view.setHistogramPort(scene.levels.get()); }
  std::uint64_t counts() const {
    const auto& all = view.histogramSamples().rgb;
    return std::accumulate(std::begin(all), std::end(all), std::uint64_t{0});
  }

  LevelsPatch scene;
  VRTHistogramView view{NSMakeRect(0, 0, 260, 60)};
};

template <class Channel>
std::vector<std::uint8_t> pixelOf(std::array<Channel, 4> channels) {
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(channels.data());
  return {bytes, bytes + sizeof channels};
}

QRgb colorAt(QWidget& view, int x, int y) {
  return pixelAt(pictureOf(view), view.devicePixelRatioF(), x, y);
}

TEST_F(HistogramView, CountsWhatFlowsIn) {
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
    EXPECT_EQ(counts(), 60u);
  }
}

TEST_F(HistogramView, UnusableImagesCountNothing) {
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
    ASSERT_EQ(counts(), 12u);
    const auto image = imageOf({1, 2, 3, 4}, 4, 4);
    change(*image);
    scene.image->setValue(image);
    EXPECT_EQ(counts(), 0u);
  }
}

TEST_F(HistogramView, OnlyFiltersWithAContextHaveCounts) {
  LevelsPatch generator("generator");
  for (const LevelsPatch* patch : {&scene, &generator}) {
    const bool isFilter = patch == &scene;
    patch->image->setValue(imageOf({1, 2, 3, 4}, 2, 2));
    view.setHistogramPort(nullptr);
    EXPECT_EQ(view.imageInputPort(), nullptr);
    view.setHistogramPort(patch->levels.get());
    EXPECT_EQ(view.imageInputPort(), isFilter ? patch->image.get() : nullptr);
    EXPECT_EQ(counts(), isFilter ? 12u : 0u);
    patch->patch->context = nullptr;
    patch->image->setValue(imageOf({1, 2, 3, 4}, 2, 2));
    EXPECT_EQ(counts(), 0u);
  }
}

TEST_F(HistogramView, ADetachedViewCostsNothing) {
  LevelsPatch other;
  const auto send = [](const LevelsPatch& to, std::uint8_t red) { to.image->setValue(imageOf({red, 2, 3, 4}, 2, 2)); };
  view.setHistogramPort(scene.levels.get());
  send(scene, 1);
  EXPECT_EQ(scene.context.reads, 1) << "attached twice, counted once for each frame";
  view.update(true);
  view.grab();
  EXPECT_EQ(scene.context.reads, 1) << "another channel is no other image";

  view.setHistogramPort(other.levels.get());
  for (const LevelsPatch* patch : {&scene, &other}) send(*patch, 5);
  EXPECT_TRUE(scene.context.reads == 1 && other.context.reads == 1);
  view.setHistogramPort(nullptr);
  other.image->setValue(nullptr);
  send(other, 6);
  EXPECT_EQ(other.context.reads, 1);
  EXPECT_EQ(view.histogramSamples().red[5], 4u) << "what was counted last stays";
}

TEST_F(HistogramView, DrawsBarsInsideItsFrame) {
  std::vector<std::uint8_t> pixels;  // 14 reds of 100, 28 of 150, 56 of 200
  for (int i = 0; i < 98; ++i) {
    const std::uint8_t red = i < 14 ? 100 : i < 42 ? 150 : 200;
    pixels.insert(pixels.end(), {red, 7, 8, 9});
  }
  scene.image->setValue(std::make_shared<SceneImage>(98, 1, 4, pixels));
  scene.histogram().setSelectedChannel(1);
  view.update(false);

  constexpr QRgb bar = qRgb(25, 29, 38), ground = qRgb(181, 187, 200);
  const QImage picture = pictureOf(view);
  for (int bin = 0; bin < 256; ++bin) {
    const int height = bin == 100 ? 14 : bin == 150 ? 28 : bin == 200 ? 56 : 0;
    for (int row = 0; row < 56; ++row) {
      const QRgb color = pixelAt(picture, view.devicePixelRatioF(), 2 + bin, 2 + row);
      ASSERT_EQ(color, height > 56 - row ? bar : ground) << bin << ", " << row;
    }
  }
  for (const int frame : {1, 258}) EXPECT_NE(colorAt(view, frame, 30), ground);

  scene.histogram().setSelectedChannel(2);
  EXPECT_EQ(colorAt(view, 2 + 200, 57), bar) << "the channel is looked at when the view is told";
  view.update(false);
  EXPECT_EQ(colorAt(view, 2 + 200, 57), ground);
  EXPECT_EQ(colorAt(view, 2 + 7, 30), bar);

  view.setFrameSize({3, 3});
  view.grab();
  EXPECT_EQ(view.histogramBitmap()->pixelsWide(), 0u);
}

TEST_F(HistogramView, TheMenuChoosesTheScale) {
  for (const auto& [index, scale] : {std::pair{1, VRTHistogramScale::Logarithmic}, {0, VRTHistogramScale::Linear}}) {
    const std::unique_ptr<QMenu> menu(view.menuForEvent(NSEvent()));
    ASSERT_EQ(menu->actions().size(), 2);
    menu->actions().at(index)->trigger();
    EXPECT_EQ(view.histogramScale(), scale);
  }
  auto dying = std::make_unique<VRTHistogramView>(view.frame());
  const QPointer<QMenu> menu(dying->menuForEvent(NSEvent()));
  dying.reset();
  EXPECT_EQ(menu, nullptr);
}

TEST_F(HistogramView, AnythingMayDieFirst) {
  scene.patch.reset();  // the node; its ports live on
  scene.image->setValue(imageOf({1, 2, 3, 4}, 2, 2));
  EXPECT_EQ(view.imageInputPort(), nullptr);
  EXPECT_EQ(counts(), 0u);
  view.setHistogramPort(nullptr);
  {
    const LevelsPatch dying;
    view.setHistogramPort(dying.levels.get());
  }
  EXPECT_EQ(view.getHistogramChannel(), nullptr);
  view.resampleInputImage();
  view.grab();

  LevelsPatch empty;
  auto first = std::make_unique<VRTHistogramView>(view.frame());
  first->setHistogramPort(empty.levels.get());
  empty.levels->setValue(nullptr);
  EXPECT_EQ(first->getHistogramChannel(), nullptr);
  first->grab();
  first.reset();
  empty.image->setValue(imageOf({1, 2, 3, 4}, 2, 2));
  EXPECT_EQ(empty.context.reads, 0);
}

TEST(HistogramGradientView, DrawsARampThatFollowsTheSize) {
  VRTHistogramGradientView view(NSMakeRect(0, 0, 260, 16));
  for (const auto& [x, y, grey] : {std::array{2, 3, 0}, {2 + 128, 13, 128}, {257, 2, 254}}) {
    EXPECT_EQ(colorAt(view, x, y), qRgb(grey, grey, grey));
  }
  view.setFrameSize({132, 16});
  EXPECT_EQ(colorAt(view, 2 + 64, 8), qRgb(128, 128, 128));
  view.setFrameSize({132, 2});
  view.grab();
  EXPECT_EQ(view.gradientBitmap()->pixelsWide(), 128u) << "too low to be drawn";
}

}  // namespace
