// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/NSDragging.h"
#include "Platform/TarnKit/NSImage.h"
#include "Platform/TarnKit/NSTarnView.h"

namespace {

// Takes colors on its left half.
struct DropView : NSTarnView {
  explicit DropView(NSRect frame) : NSTarnView(frame) { registerForDraggedTypes({NSColorPboardType}); }
  std::uint32_t draggingEntered(const NSDraggingInfo& info) override { return draggingUpdated(info); }
  std::uint32_t draggingUpdated(const NSDraggingInfo& info) override {
    point = convertPointFromWindow(info.draggingLocation());
    mask = info.draggingSourceOperationMask();
    return point.x < 50 ? mask & operation : NSDragOperationNone;
  }
  bool performDragOperation(const NSDraggingInfo& info) override {
    color = info.colorFromPasteboard();
    const bool taken = color.has_value();
    if (inDrop) inDrop();
    return taken;
  }
  std::uint32_t operation = NSDragOperationGeneric;
  NSPoint point;
  std::uint32_t mask = 0;
  std::optional<NSColor> color;
  std::function<void()> inDrop;
};

QMimeData* redData() {
  static QMimeData data;
  data.setColorData(QColor(255, 0, 0));
  return &data;
}

// What a view makes of an event, nothing where it refuses. Moves and drops reach only a widget that a drag has entered.
template <class Event>
std::optional<Qt::DropAction> send(QWidget& view, int x, Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction,
                                   const QMimeData* data = redData()) {
  Event event(QPoint(x, 10), actions, data, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(&view, &event);
  return event.isAccepted() ? std::optional(event.dropAction()) : std::nullopt;
}

TEST(Drops, AreTakenWhereTheViewSaysSoAndMayDeleteIt) {
  QPointer view = new DropView(NSMakeRect(0, 0, 100, 40));
  EXPECT_TRUE(send<QDragEnterEvent>(*view, 70)) << "where it would be refused, yet the drag must not end for the view";
  EXPECT_FALSE(send<QDragMoveEvent>(*view, 70));
  EXPECT_EQ(send<QDragMoveEvent>(*view, 20), Qt::CopyAction);
  EXPECT_EQ(view->point.x, 20);
  EXPECT_NEAR(view->point.y, 30, 1);
  EXPECT_TRUE(send<QDropEvent>(*view, 20));
  ASSERT_TRUE(view->color);
  EXPECT_TRUE(view->color->redComponent() == 1 && view->color->greenComponent() == 0);
  view->inDrop = [&] { delete view; };
  send<QDragEnterEvent>(*view, 20);
  send<QDropEvent>(*view, 20);
  EXPECT_FALSE(view);
}

TEST(Drops, OperationsFollowWhatTheSourceAllows) {
  constexpr std::uint32_t copy = NSDragOperationCopy, move = NSDragOperationMove, link = NSDragOperationLink;
  constexpr std::uint32_t generic = NSDragOperationGeneric;
  const struct {
    Qt::DropActions actions;
    std::uint32_t mask, operation;
    std::optional<Qt::DropAction> action;
  } cases[] = {
      {Qt::CopyAction, copy | generic, generic, Qt::CopyAction},
      {Qt::MoveAction, move | generic, generic, Qt::MoveAction},
      {Qt::LinkAction, link | generic, link, Qt::LinkAction},
      {Qt::CopyAction | Qt::MoveAction, copy | move | generic, move, Qt::MoveAction},
      {Qt::CopyAction, copy | generic, link, std::nullopt},
      {Qt::IgnoreAction, NSDragOperationNone, generic, std::nullopt},
  };
  for (const auto& each : cases) {
    DropView view(NSMakeRect(0, 0, 100, 40));
    view.operation = each.operation;
    send<QDragEnterEvent>(view, 70, each.actions);
    EXPECT_EQ(send<QDragMoveEvent>(view, 20, each.actions), each.action);
    EXPECT_EQ(view.mask, each.mask);
  }
}

TEST(Drops, TakeColorsOfAnyToolkitAndNothingElse) {
  const std::uint16_t words[] = {65535, 0, 32768, 65535};
  QMimeData text, foreign, broken;
  text.setText("red");
  foreign.setData(NSColorPboardType, QByteArray(reinterpret_cast<const char*>(words), sizeof words));
  broken.setData(NSColorPboardType, "xyz");
  const struct {
    const QMimeData& data;
    bool reaches, taken;
  } cases[] = {{text, false, false}, {foreign, true, true}, {broken, true, false}};
  for (const auto& each : cases) {
    DropView view(NSMakeRect(0, 0, 100, 40));
    const bool reaches = send<QDragEnterEvent>(view, 20, Qt::CopyAction, &each.data).has_value();
    EXPECT_EQ(reaches, each.reaches);
    EXPECT_EQ(reaches && send<QDropEvent>(view, 20, Qt::CopyAction, &each.data), each.taken);
    EXPECT_EQ(view.mask != 0, each.reaches);
    ASSERT_EQ(view.color.has_value(), each.taken);
    EXPECT_TRUE(!each.taken || std::abs(view.color->blueComponent() - 0.5) < 1e-4);
  }
  EXPECT_FALSE(NSTarnView(NSMakeRect(0, 0, 10, 10)).acceptDrops());
}

TEST(Drags, CarryColorsAndBitmapsWithoutTheirPadding) {
  const auto color = NSPasteboardWithColor(NSColor::colorWithCalibratedRed(0, 1, 0, 1));
  EXPECT_EQ(qvariant_cast<QColor>(color->colorData()), QColor(0, 255, 0));
  std::unique_ptr<QMimeData> data;
  {
    NSBitmapImageRep bitmap(1, 2, 16);
    for (const int byte : {0, 3, 16 + 2, 16 + 3}) bitmap.bitmapData()[byte] = 255;
    data = NSPasteboardWithBitmap(bitmap);
  }
  const auto image = qvariant_cast<QImage>(data->imageData());
  ASSERT_EQ(image.size(), QSize(1, 2));
  EXPECT_TRUE(image.pixel(0, 0) == qRgb(255, 0, 0) && image.pixel(0, 1) == qRgb(0, 0, 255));
  EXPECT_FALSE(NSPasteboardWithImage(NSImage({3, 3}))->hasImage());
}

}  // namespace
