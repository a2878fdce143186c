// SPDX-License-Identifier: BSD-3-Clause
#include "HistogramEditor/VRTHistogramGradientView.h"
#include "HistogramEditor/VRTHistogramView.h"
#include "Tests/Support/EnglishTexts.h"
#include "Tests/Support/LevelsScene.h"

// The whole panel.

namespace {

struct HistogramEditor : testing::Test {
  HistogramEditor() {
    readEnglishTexts();
    EXPECT_TRUE(popUp && scene.part<VRTHistogramGradientView>());
    scene.image->setValue(imageOf({10, 20, 30, 40}, 8, 8));
  }
  // As people do.
  void choose(int index) const {
    popUp->setCurrentIndex(index);
    emit popUp->activated(index);
  }
  LevelsScene scene;
  VRTHistogramEditor* editor = &scene.editorPart();
  NSPopUpButton* popUp = scene.part<NSPopUpButton>();
};

TEST_F(HistogramEditor, ThePopUpShowsTheChannel) {
  scene.histogram().setSelectedChannel(3);
  for (int i = 0; i < 2; ++i) editor->setHistogramPort(scene.levels.get());
  const char* titles[] = {"RGB", "Red", "Green", "Blue", "Alpha"};
  ASSERT_EQ(popUp->count(), 5);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(popUp->itemText(i), titles[i]);
  EXPECT_EQ(popUp->indexOfSelectedItem(), 3);
  scene.levels->setValue(nullptr);
  for (VRTHistogramPort* const port : {scene.levels.get(), static_cast<VRTHistogramPort*>(nullptr)}) {
    editor->setHistogramPort(port);
    EXPECT_EQ(popUp->count(), 5);
    choose(2);  // does nothing
  }
}

TEST_F(HistogramEditor, ChoosingAChannelAnnouncesAndCountsNothing) {
  editor->grab();
  scene.takeLog();
  const int reads = scene.context.reads;
  choose(4);
  EXPECT_EQ(scene.histogram().selectedChannel(), 4);
  EXPECT_EQ(scene.takeLog(), "");
  EXPECT_EQ(scene.context.reads, reads);

  const auto* graph = scene.part<VRTHistogramView>()->histogramBitmap();
  editor->grab();
  const std::uint32_t column = 40 * graph->pixelsWide() / 256 + 1;  // alpha's only bin, between two columns
  const std::uint8_t* const lowest = graph->bitmapData() + (graph->pixelsHigh() - 1) * graph->bytesPerRow();
  EXPECT_TRUE(lowest[4 * column] == 25 && lowest[4 * (column / 2)] == 181);

  scene.drag(LevelsScene::on(0), LevelsScene::on(0.5));
  EXPECT_DOUBLE_EQ(scene.histogram().blackInForChannel(4), 0.5);
}

TEST_F(HistogramEditor, TitlesInOtherLanguages) {
  const char* const rows[][2] = {{"de_DE.UTF-8", "RotBlau, Ausgangswerte"},
                                 {"fr_CA", "RougeBleu, Niveaux de sortie"},
                                 {"en_GB.UTF-8", "RedBlue, Output levels"},
                                 {"C", "RedBlue, Output levels"}};
  for (const auto& [locale, titles] : rows) {
    setenv("LC_ALL", locale, 1);
    editor->setHistogramPort(scene.levels.get());
    const QString label = scene.part<VRTHistogramGutterOut>()->accessibilityLabel();
    EXPECT_EQ(popUp->itemText(1) + popUp->itemText(3) + ", " + label, titles);
  }
}

TEST_F(HistogramEditor, FollowsTheValueAndTheSize) {
  const QImage before = editor->grab().toImage();
  const auto replaced = std::make_shared<VRTHistogram>();
  replaced->setBlackOut(0.6, 0);
  scene.levels->setValue(replaced);
  EXPECT_NE(editor->grab().toImage(), before);
  for (const NSSize size : {NSSize{320, 240}, NSSize{0, 0}, NSSize{218, 137}}) {
    editor->setFrameSize(size);
    editor->grab();
  }
  scene.levels->setValue(scene.value);
  EXPECT_EQ(editor->grab().toImage(), before);
}

TEST_F(HistogramEditor, HoldsItsPortUntilItIsDetachedButNotItsDelegate) {
  auto delegate = std::make_shared<VRTHistogram>();
  editor->setDelegate(delegate.get());
  EXPECT_EQ(editor->delegate(), delegate.get());
  delegate.reset();
  EXPECT_EQ(editor->delegate(), nullptr);

  const int reads = scene.context.reads;
  editor->setHistogramPort(nullptr);
  EXPECT_EQ(scene.levels.use_count(), 3) << "the scene, its listener and its patch";
  scene.image->setValue(imageOf({2, 2, 3, 4}, 4, 4));
  EXPECT_EQ(scene.context.reads, reads);
  EXPECT_EQ(editor->getHistogramChannel(), nullptr);

  editor->setHistogramPort(scene.levels.get());
  const std::weak_ptr<VRTHistogramPort> port = scene.levels;
  scene.letGoOfPort();
  scene.patch.reset();
  scene.levels.reset();
  EXPECT_FALSE(port.expired());
  EXPECT_NE(editor->getHistogramChannel(), nullptr);
  editor->grab();
  delete editor;
  EXPECT_TRUE(port.expired());
}

}  // namespace
