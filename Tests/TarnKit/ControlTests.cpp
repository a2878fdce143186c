// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/NSAnimationEffect.h"
#include "Platform/TarnKit/NSTarnButton.h"
#include "Platform/TarnKit/NSTarnView.h"
#include "Tests/TarnKit/Pictures.h"

namespace {

TEST(Buttons, RunTheirActionWhichMayDeleteThem) {
  auto* button = new NSTarnButton(NSMakeRect(0, 0, 20, 20));
  int clicks = 0;
  button->setAction([&] { ++clicks; });
  button->show();
  QTest::mouseClick(button, Qt::LeftButton);
  QTest::keyClick(button, Qt::Key_Space);
  EXPECT_EQ(button->focusPolicy(), Qt::TabFocus);
  button->setEnabled(false);
  QTest::mouseClick(button, Qt::LeftButton);
  EXPECT_EQ(clicks, 2);
  button->setEnabled(true);
  button->setAction([&clicks, button] {
    delete button;
    ++clicks;
  });
  QTest::mouseClick(button, Qt::LeftButton);
  EXPECT_EQ(clicks, 3);
}

TEST(Buttons, LookDifferentUnderThePointerAndPressed) {
  NSTarnButton button(NSMakeRect(0, 0, 20, 20));
  button.cell().setTitle(std::nullopt);
  const auto hovered = [&](bool isOver) {
    button.setAttribute(Qt::WA_UnderMouse, isOver);
    const QPointF to(5, 5);
    QHoverEvent event(isOver ? QEvent::HoverEnter : QEvent::HoverLeave, to, to, QPointF(-1, -1));
    QCoreApplication::sendEvent(&button, &event);
    return pictureOf(button);
  };
  const QImage quiet = pictureOf(button), over = hovered(true);
  button.setDown(true);
  EXPECT_TRUE(over != quiet && pictureOf(button) != over);
  button.setDown(false);
  EXPECT_EQ(hovered(false), quiet);
}

struct StopsView : NSTarnView {
  using NSTarnView::NSTarnView;
  QString accessibilityLabel() const override { return "Stops"; }
  std::vector<NSAccessibilityElement> accessibilityElements() const override {
    std::vector<NSAccessibilityElement> all;
    for (std::size_t i = 0; i < values.size(); ++i) {
      all.push_back({QString("Stop %1").arg(i + 1), values[i], 0, 1, NSMakeRect(10 * double(i), 0, 11, 14), i == 1});
    }
    return all;
  }
  void setAccessibilityValue(std::size_t element, double value) override { values.at(element) = value; }
  std::vector<double> values{0.25, 0.75};
};

TEST(Accessibility, ShowsThePartsOfAViewAsSliders) {
  auto view = std::make_unique<StopsView>(NSMakeRect(0, 0, 100, 50));
  NSTarnButton button(NSMakeRect(50, 0, 10, 10), view.get());
  button.setParent(nullptr);
  QAccessibleInterface* whole = QAccessible::queryAccessibleInterface(view.get());
  ASSERT_TRUE(whole && whole->childCount() == 2 && whole->child(1));
  EXPECT_EQ(whole->text(QAccessible::Name), "Stops");
  QAccessibleInterface* second = whole->child(1);
  EXPECT_TRUE(whole->indexOfChild(second) == 1 && second->parent() == whole);
  EXPECT_TRUE(second->role() == QAccessible::Slider && second->state().selected);
  EXPECT_EQ(second->text(QAccessible::Name), "Stop 2");
  EXPECT_EQ(second->rect(), QRect(view->mapToGlobal(QPoint(10, 36)), QSize(11, 14)));
  QAccessibleValueInterface* const value = second->valueInterface();
  ASSERT_TRUE(value);
  EXPECT_EQ(value->currentValue(), 0.75);
  value->setCurrentValue(0.5);
  EXPECT_EQ(view->values[1], 0.5);

  view->values.pop_back();
  EXPECT_TRUE(whole->childCount() == 1 && !second->isValid() && !value->currentValue().isValid());
  value->setCurrentValue(0.1);
  view->accessibilityChanged();
}

TEST(Puff, CleansUpAfterItself) {
  const auto windows = QApplication::topLevelWidgets().size();
  NSShowAnimationEffect(NSAnimationEffectDisappearingItemDefault, QPoint(100, 100), {});
  EXPECT_EQ(QApplication::topLevelWidgets().size(), windows + 1);
  EXPECT_TRUE(QTest::qWaitFor([&] { return QApplication::topLevelWidgets().size() == windows; }, 5000));
}

}  // namespace
