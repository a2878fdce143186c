// SPDX-License-Identifier: BSD-3-Clause
#include "HistogramEditor/VRTHistogramEditor.h"

#include "Channels/VRTChannelHistogram.h"
#include "HistogramEditor/VRTHistogramGradientView.h"
#include "HistogramEditor/VRTHistogramGutter.h"
#include "HistogramEditor/VRTHistogramView.h"
#include "Tests/HistogramEditor/LevelsScene.h"

#include <gtest/gtest.h>

#include <cstdlib>

// The whole panel.

namespace {

constexpr NSRect kFrame = {{0, 0}, {218, 137}};

template <class Part>
Part* partOf(QWidget& editor) {
  Part* found = nullptr;
  for (QWidget* child : editor.findChildren<QWidget*>()) {
    if (auto* part = dynamic_cast<Part*>(child)) found = part;
  }
  return found;
}

// Chooses as people do.
void choose(NSPopUpButton& popUp, int index) {
  popUp.setCurrentIndex(index);
  emit popUp.activated(index);
}

class HistogramEditor : public testing::Test {
 protected:
  void SetUp() override {
    unsetenv("LANGUAGE");
    setenv("LC_ALL", "C", 1);
    scene.image->setValue(imageOf({10, 20, 30, 40}, 8, 8));
    editor = std::make_unique<VRTHistogramEditor>(kFrame);
    popUp = partOf<NSPopUpButton>(*editor);
    histogram = partOf<VRTHistogramView>(*editor);
    gutterIn = partOf<VRTHistogramGutterIn>(*editor);
    gutterOut = partOf<VRTHistogramGutterOut>(*editor);
    ASSERT_TRUE(popUp && histogram && gutterIn && gutterOut && partOf<VRTHistogramGradientView>(*editor));
  }
  Scene scene;
  std::unique_ptr<VRTHistogramEditor> editor;
  NSPopUpButton* popUp = nullptr;
  VRTHistogramView* histogram = nullptr;
  VRTHistogramGutterIn* gutterIn = nullptr;
  VRTHistogramGutterOut* gutterOut = nullptr;
};

TEST_F(HistogramEditor, ThePopUpShowsTheChannel) {
  scene.histogram().setSelectedChannel(3);
  editor->setHistogramPort(scene.levels.get());
  editor->setHistogramPort(scene.levels.get());
  const char* titles[] = {"RGB", "Red", "Green", "Blue", "Alpha"};
  ASSERT_EQ(popUp->count(), 5);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(popUp->itemText(i), titles[i]);
  EXPECT_EQ(popUp->indexOfSelectedItem(), 3);

  scene.levels->setValue(nullptr);
  editor->setHistogramPort(scene.levels.get());
  EXPECT_EQ(popUp->count(), 5);
  choose(*popUp, 2);  // does nothing
  editor->setHistogramPort(nullptr);
  EXPECT_EQ(popUp->count(), 5);
}

TEST_F(HistogramEditor, ChoosingAChannelAnnouncesAndCountsNothing) {
  editor->setHistogramPort(scene.levels.get());
  Listener listener(*scene.levels);
  editor->grab();
  const int reads = scene.context.reads;
  choose(*popUp, 4);
  EXPECT_EQ(scene.histogram().selectedChannel(), 4);
  EXPECT_EQ(listener.take(), Listener::Told());
  EXPECT_EQ(scene.context.reads, reads);

  const auto* graph = histogram->histogramBitmap();
  editor->grab();
  const std::uint32_t column = 40 * graph->pixelsWide() / 256 + 1;  // alpha's only bin, between two columns
  EXPECT_EQ(graph->bitmapData()[(graph->pixelsHigh() - 1) * graph->bytesPerRow() + 4 * column], 25);
  EXPECT_EQ(graph->bitmapData()[(graph->pixelsHigh() - 1) * graph->bytesPerRow() + 4 * (column / 2)], 181);

  gutterIn->show();
  press(*gutterIn, {5, 6});
  drag(*gutterIn, {109, 6});
  release(*gutterIn, {109, 6});
  EXPECT_DOUBLE_EQ(scene.histogram().blackInForChannel(4), 0.5);
}

TEST_F(HistogramEditor, TitlesInOtherLanguages) {
  const auto titlesIn = [&](const char* locale) {
    setenv("LC_ALL", locale, 1);
    editor->setHistogramPort(scene.levels.get());
    return (popUp->itemText(1) + popUp->itemText(3) + ", " + gutterOut->accessibilityLabel()).toStdString();
  };
  EXPECT_EQ(titlesIn("de_DE.UTF-8"), "RotBlau, Ausgangswerte");
  EXPECT_EQ(titlesIn("fr_CA"), "RougeBleu, Niveaux de sortie");
  EXPECT_EQ(titlesIn("en_GB.UTF-8"), "RedBlue, Output levels");
  EXPECT_EQ(titlesIn("C"), "RedBlue, Output levels");
}

TEST_F(HistogramEditor, FollowsTheValueAndTheSize) {
  editor->setHistogramPort(scene.levels.get());
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

TEST_F(HistogramEditor, ADetachedEditorCostsNothing) {
  editor->setHistogramPort(scene.levels.get());
  EXPECT_EQ(scene.context.reads, 1);
  for (std::uint8_t frame = 0; frame < 10; ++frame) scene.image->setValue(imageOf({frame, 2, 3, 4}, 4, 4));
  EXPECT_EQ(scene.context.reads, 11) << "every frame is counted once";
  editor->setHistogramPort(nullptr);
  EXPECT_EQ(scene.levels.use_count(), 2) << "the scene and its patch";
  for (std::uint8_t frame = 0; frame < 10; ++frame) scene.image->setValue(imageOf({frame, 2, 3, 4}, 4, 4));
  EXPECT_EQ(scene.context.reads, 11);
  EXPECT_EQ(editor->getHistogramChannel(), nullptr);
}

TEST_F(HistogramEditor, HoldsItsPortButNotItsDelegate) {
  auto delegate = std::make_shared<VRTHistogram>();
  editor->setDelegate(delegate.get());
  EXPECT_EQ(editor->delegate(), delegate.get());
  delegate.reset();
  EXPECT_EQ(editor->delegate(), nullptr);

  editor->setHistogramPort(scene.levels.get());
  const std::weak_ptr<VRTHistogramPort> port = scene.levels;
  scene.patch.reset();
  scene.levels.reset();
  EXPECT_FALSE(port.expired());
  EXPECT_NE(editor->getHistogramChannel(), nullptr);
  editor->grab();
  editor.reset();
  EXPECT_TRUE(port.expired());
}

TEST_F(HistogramEditor, ObserversMayDestroyIt) {
  for (const std::string what : {"StartInteraction", "value", "EndInteraction"}) {
    editor = std::make_unique<VRTHistogramEditor>(kFrame);
    editor->setHistogramPort(scene.levels.get());
    editor->show();
    scene.histogram().setBlackIn(0, 0);
    Listener listener(*scene.levels);
    listener.onTold = [&](const std::string& told) {
      if (told == what) editor.reset();
    };
    const QPointer<QWidget> gutter(partOf<VRTHistogramGutterIn>(*editor));
    press(*gutter, {5, 6});
    if (gutter) drag(*gutter, {50, 6});
    if (gutter) release(*gutter, {50, 6});
    EXPECT_FALSE(gutter) << what;
    EXPECT_FALSE(editor) << what;
  }
}

TEST_F(HistogramEditor, DetachedInADragByWhoIsToldOfItsEnd) {
  editor->setHistogramPort(scene.levels.get());
  editor->show();
  Listener listener(*scene.levels);
  press(*gutterIn, {5, 6});
  listener.onTold = [&](const std::string& told) {
    if (told == "EndInteraction") editor.reset();
  };
  editor->setHistogramPort(nullptr);
  EXPECT_FALSE(editor);
  EXPECT_EQ(listener.take(), (Listener::Told{"StartInteraction", "EndInteraction"}));
}

}  // namespace
