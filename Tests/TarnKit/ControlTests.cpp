// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/NSAnimationEffect.h"
#include "Platform/TarnKit/NSTarnButton.h"
#include "Platform/TarnKit/NSTarnView.h"
#include "Tests/TarnKit/Pictures.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QTest>

namespace {

void hover(QWidget& widget, QEvent::Type type) {
  widget.setAttribute(Qt::WA_UnderMouse, type == QEvent::HoverEnter);
  QHoverEvent event(type, QPointF(5, 5), QPointF(5, 5), QPointF(-1, -1));
  QCoreApplication::sendEvent(&widget, &event);
}

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
  const QImage quiet = pictureOf(button);
  hover(button, QEvent::HoverEnter);
  const QImage hovered = pictureOf(button);
  button.setDown(true);
  const QImage pressed = pictureOf(button);
  button.setDown(false);
  hover(button, QEvent::HoverLeave);
  EXPECT_NE(quiet, hovered);
  EXPECT_NE(hovered, pressed);
  EXPECT_EQ(pictureOf(button), quiet);
}

class StopsView : public NSTarnView {
 public:
  explicit StopsView(NSRect frame) : NSTarnView(frame) {}
  QString accessibilityLabel() const override { return "Stops"; }
  std::vector<NSAccessibilityElement> accessibilityElements() const override {
    std::vector<NSAccessibilityElement> all;
    for (std::size_t stop = 0; stop < values.size(); ++stop) {
      all.push_back(
          {QString("Stop %1").arg(stop + 1), values[stop], 0, 1, NSMakeRect(10 * double(stop), 0, 11, 14), stop == 1});
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
  ASSERT_TRUE(whole);
  EXPECT_EQ(whole->text(QAccessible::Name), "Stops");
  ASSERT_EQ(whole->childCount(), 2);
  QAccessibleInterface* second = whole->child(1);
  ASSERT_TRUE(second);
  EXPECT_EQ(whole->indexOfChild(second), 1);
  EXPECT_EQ(second->parent(), whole);
  EXPECT_EQ(second->role(), QAccessible::Slider);
  EXPECT_EQ(second->text(QAccessible::Name), "Stop 2");
  EXPECT_TRUE(second->state().selected);
  EXPECT_EQ(second->rect(), QRect(view->mapToGlobal(QPoint(10, 36)), QSize(11, 14)));
  ASSERT_TRUE(second->valueInterface());
  EXPECT_EQ(second->valueInterface()->currentValue(), 0.75);
  second->valueInterface()->setCurrentValue(0.5);
  EXPECT_EQ(view->values[1], 0.5);

  view->values.pop_back();
  EXPECT_EQ(whole->childCount(), 1);
  EXPECT_FALSE(second->isValid());
  EXPECT_FALSE(second->valueInterface()->currentValue().isValid());
  second->valueInterface()->setCurrentValue(0.1);
  view->accessibilityChanged();
  view.reset();
}

TEST(Puff, CleansUpAfterItself) {
  const auto windows = QApplication::topLevelWidgets().size();
  NSShowAnimationEffect(NSAnimationEffectDisappearingItemDefault, QPoint(100, 100), {});
  EXPECT_EQ(QApplication::topLevelWidgets().size(), windows + 1);
  EXPECT_TRUE(QTest::qWaitFor([&] { return QApplication::topLevelWidgets().size() == windows; }, 5000));
}

}  // namespace
