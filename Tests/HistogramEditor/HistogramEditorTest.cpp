// SPDX-License-Identifier: BSD-3-Clause
#include "HistogramEditor/VRTHistogramGradientView.h"
#include "HistogramEditor/VRTHistogramView.h"
#include "Tests/Support/EnglishTexts.h"
#include "Tests/Support/LevelsScene.h"
#include "Tests/TarnKit/Pictures.h"

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

TEST_F(HistogramEditor, TellsWhoeverWantsToKnowWhichChannelIsChosen) {
  int told = 0;
  const auto observation = NSNotificationCenter::defaultCenter().addObserver(kVRTHistogramChannelDidChange, editor,
                                                                             [&](const NSNotification&) { ++told; });
  choose(2);
  EXPECT_EQ(told, 1);
  scene.levels->setValue(nullptr);
  choose(3);
  EXPECT_EQ(told, 1) << "without levels nothing is chosen";
}

// Counts of a host's own: all red in one bin.
std::shared_ptr<const TCHistogram> countsAt(std::size_t bin) {
  auto counts = std::make_shared<TCHistogram>();
  counts->red[bin] = 30;
  counts->red[0] = 10;
  return counts;
}

TEST_F(HistogramEditor, HostsMayCountThemselves) {
  const auto* view = scene.part<VRTHistogramView>();
  const int reads = scene.context.reads;
  editor->setCounts(VRTHistogramSide::Input, countsAt(100));
  scene.image->setValue(imageOf({2, 2, 3, 4}, 4, 4));
  editor->setHistogramPort(nullptr);
  editor->setHistogramPort(scene.levels.get());
  EXPECT_EQ(scene.context.reads, reads) << "nobody else counts";
  EXPECT_EQ(view->shownHistogram().red[100], 30u);
  editor->setCounts(VRTHistogramSide::Input, nullptr);
  EXPECT_EQ(scene.context.reads, reads + 1) << "what has come meanwhile is counted";
  EXPECT_EQ(view->shownHistogram().red[2], 16u);
}

TEST_F(HistogramEditor, ShowsTheResultWhereThereIsOne) {
  auto* view = scene.part<VRTHistogramView>();
  auto* sides = dynamic_cast<NSPopUpButton*>(scene.part("sidePopUp"));
  ASSERT_NE(sides, nullptr);
  const int whole = popUp->width();
  EXPECT_FALSE(sides->isVisible());
  editor->setShownSide(VRTHistogramSide::Result);
  EXPECT_EQ(editor->shownSide(), VRTHistogramSide::Input) << "there is none yet";
  editor->setCounts(VRTHistogramSide::Result, countsAt(200));
  EXPECT_TRUE(sides->isVisible());
  EXPECT_LT(popUp->width(), whole);
  EXPECT_EQ(sides->currentText(), "Result");
  EXPECT_EQ(view->shownHistogram().red[200], 30u);

  sides->setCurrentIndex(0);
  emit sides->activated(0);
  EXPECT_EQ(editor->shownSide(), VRTHistogramSide::Input);
  const std::unique_ptr<QMenu> menu(view->menuForEvent(NSEvent()));
  QAction* result = menu->actions().back();
  EXPECT_EQ(result->text(), "Result");
  result->trigger();
  EXPECT_TRUE(editor->shownSide() == VRTHistogramSide::Result && sides->currentIndex() == 1);

  editor->setCounts(VRTHistogramSide::Result, nullptr);
  EXPECT_FALSE(sides->isVisible());
  EXPECT_EQ(popUp->width(), whole);
  EXPECT_EQ(view->shownHistogram().red[10], 64u);
}

TEST_F(HistogramEditor, ReadsOutWhatIsPointedAt) {
  QLocale::setDefault(QLocale::c());
  auto* view = scene.part<VRTHistogramView>();
  editor->setCounts(VRTHistogramSide::Input, countsAt(128), 16);
  const auto readoutIsShown = [&] {
    for (const QObject* child : popUp->parentWidget()->children()) {
      const auto* widget = qobject_cast<const QWidget*>(child);
      if (widget && widget->testAttribute(Qt::WA_TransparentForMouseEvents)) return widget->isVisible();
    }
    return false;
  };
  const QImage before = view->grab().toImage();
  EXPECT_EQ(view->readoutText(), "");
  QTest::mouseMove(scene.window->windowHandle(), view->mapTo(scene.window.get(), QPoint(2 + 104, 20)));
  EXPECT_EQ(view->readoutText(), QString::fromUtf8("32768\u201333024 (0.502), 30 = 75.0 %, Black 25.0 %, White 0 %"));
  EXPECT_TRUE(readoutIsShown());
  const QImage after = view->grab().toImage();
  int changedColumns = 0;
  for (int x = 0; x < after.width(); ++x) {
    changedColumns += after.copy(x, 0, 1, after.height()) != before.copy(x, 0, 1, after.height());
  }
  EXPECT_LE(changedColumns, 2 * view->devicePixelRatioF()) << "bars are not hidden";
  QTest::mouseMove(scene.window->windowHandle(), {1, 1});
  EXPECT_EQ(view->readoutText(), "");
  EXPECT_FALSE(readoutIsShown());

  scene.focus(view);
  scene.key(Qt::Key_Home);
  EXPECT_TRUE(view->readoutText().startsWith("0"));
  scene.key(Qt::Key_Right);
  scene.key(Qt::Key_Right, Qt::ShiftModifier);
  EXPECT_EQ(view->readout()->bin, 11u);
  scene.key(Qt::Key_End);
  scene.key(Qt::Key_Up);
  EXPECT_EQ(view->readout()->bin, 254u);
  EXPECT_EQ(view->accessibilityElements().at(0).description, view->readoutText());
  view->setAccessibilityValue(0, 128.4);
  EXPECT_EQ(view->readout()->count, 30u);
  editor->setCounts(VRTHistogramSide::Input, countsAt(7));
  EXPECT_EQ(view->readout()->count, 0u) << "it follows the counts";
  scene.key(Qt::Key_Escape);
  EXPECT_FALSE(view->readout());
}

// In the frame, beside the bitmap.
TEST_F(HistogramEditor, LightsTheEndWhereColorsAreClipped) {
  auto* view = scene.part<VRTHistogramView>();
  const auto ends = [&](std::size_t black, std::size_t white) {
    auto counts = std::make_shared<TCHistogram>();
    counts->red[100] = counts->alpha[100] = 1000;
    counts->red[0] = counts->alpha[0] = static_cast<std::uint32_t>(black);
    counts->red[254] = counts->alpha[254] = static_cast<std::uint32_t>(white);
    editor->setCounts(VRTHistogramSide::Input, counts);
    const QImage picture = pictureOf(*view);
    const double ratio = view->devicePixelRatioF();
    const auto isLit = [&](int x) {
      const QRgb color = pixelAt(picture, ratio, x, 30);
      return qRed(color) > qBlue(color) + 40;
    };
    return std::pair{isLit(1), isLit(view->width() - 2)};
  };
  EXPECT_EQ(ends(0, 0), std::pair(false, false));
  EXPECT_EQ(ends(1, 0), std::pair(true, false));
  EXPECT_EQ(ends(0, 50), std::pair(false, true));
  choose(4);
  EXPECT_EQ(ends(50, 50), std::pair(false, false)) << "an opaque picture is not clipped";
}

}  // namespace
