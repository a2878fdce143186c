// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/NSTarnView.h"

#include "Platform/TarnKit/NSFrames.h"
#include "Platform/TarnKit/NSGraphicsContext.h"
#include "Platform/TarnKit/NSLiveResizeWatch.h"
#include "Platform/TarnKit/NSViewAccessibility.h"

#include <QChildEvent>
#include <QHelpEvent>
#include <QLayout>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QPointer>
#include <QToolTip>

NSTarnView::NSTarnView(NSRect frame, QWidget* parent) : QWidget(parent) {
  NSInstallViewAccessibility();
  setMouseTracking(true);
  // The bounds are announced from the first change on, not while the view is made.
  layoutSize_ = NSGeometryOfFrame(frame, 0, true).size();
  NSSetFrame(*this, frame);
}

NSTarnView::~NSTarnView() = default;

NSRect NSTarnView::bounds() const {
  return NSMakeRect(0, 0, width(), height());
}

NSRect NSTarnView::frame() const {
  return NSGetFrame(*this);
}

void NSTarnView::setFrame(NSRect frame) {
  NSSetFrame(*this, frame);
}

void NSTarnView::setFrameSize(NSSize size) {
  NSSetFrame(*this, NSRect{frame().origin, size});
}

void NSTarnView::setBounds(NSRect) {}

NSTarnView* NSTarnView::superview() const {
  return isWindow() ? nullptr : dynamic_cast<NSTarnView*>(parentWidget());
}

void NSTarnView::addSubview(QWidget& child) {
  const NSRect frame = NSGetFrame(child);
  child.setParent(this);
  NSSetFrame(child, frame);
  child.show();
}

void NSTarnView::removeFromSuperview() {
  if (!parentWidget()) return;
  const NSRect frame = this->frame();
  setParent(nullptr);
  NSSetFrame(*this, frame);
}

void NSTarnView::setAutoresizingMask(std::uint32_t mask) {
  NSSetAutoresizingMask(*this, mask);
}

// Widgets that are hidden hear of a new size when they are shown; frames must hold at once. Hence geometry is brought
// up to date here, whenever it is needed, and not by resize events alone.
void NSTarnView::layOutSubviews(const QObject* except) {
  if (size() == layoutSize_) return;
  const QSize growth = size() - layoutSize_;
  struct Child {
    QPointer<QWidget> widget;
    NSRect frame;
  };
  std::vector<Child> subviews;
  for (QObject* object : children()) {
    auto* child = object->isWidgetType() && object != except ? static_cast<QWidget*>(object) : nullptr;
    if (child && !child->isWindow() && !layout()) subviews.push_back({child, NSGetFrame(*child)});
  }
  layoutSize_ = size();
  const QPointer<NSTarnView> self(this);
  for (const Child& child : subviews) {
    if (!child.widget) continue;
    const std::uint32_t mask = autoresizesSubviews_ ? NSAutoresizingMaskOf(*child.widget) : NSViewNotSizable;
    NSSetFrame(*child.widget, NSAutoresizedFrame(child.frame, mask, growth.width(), growth.height()));
    if (!self) return;
  }
  setBounds(bounds());
}

NSPoint NSTarnView::convertPointFromWindow(NSPoint point) const {
  const QWidget* top = window();
  return fromWidget(mapFrom(top, QPointF(point.x, top->height() - point.y)));
}

NSPoint NSTarnView::convertPointToWindow(NSPoint point) const {
  const QWidget* top = window();
  const QPointF position = mapTo(top, toWidget(point));
  return {position.x(), top->height() - position.y()};
}

QPointF NSTarnView::toWidget(NSPoint point) const {
  return {point.x, isFlipped() ? point.y : height() - point.y};
}

QRect NSTarnView::toWidget(NSRect rect) const {
  return NSGeometryOfFrame(rect, height(), isFlipped());
}

NSPoint NSTarnView::fromWidget(QPointF point) const {
  return {point.x(), isFlipped() ? point.y() : height() - point.y()};
}

NSRect NSTarnView::fromWidget(const QRect& rect) const {
  return NSFrameOfGeometry(rect, height(), isFlipped());
}

void NSTarnView::setNeedsDisplay(bool needed) {
  if (needed) QWidget::update();
}

void NSTarnView::setNeedsDisplayInRect(NSRect rect) {
  QWidget::update(toWidget(rect).adjusted(-1, -1, 1, 1));
}

void NSTarnView::drawRect(NSRect) {}

void NSTarnView::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  const NSGraphicsContext context(painter, *this, isFlipped());
  drawRect(fromWidget(event->rect()));
}

void NSTarnView::resizeEvent(QResizeEvent*) {
  layOutSubviews();
}

QSize NSTarnView::sizeHint() const {
  return wantedSize_;
}

void NSTarnView::viewDidEndLiveResize() {}

void NSTarnView::removeAllToolTips() {
  toolTips_.clear();
}

void NSTarnView::addToolTipRect(NSRect rect, const QString& text) {
  toolTips_.push_back({rect, text});
}

QString NSTarnView::toolTipAtPoint(NSPoint point) const {
  for (const ToolTip& tip : toolTips_) {
    if (NSPointInRect(point, tip.rect)) return tip.text;
  }
  return toolTip();
}

void NSTarnView::showToolTip(NSPoint point, const QString& text) {
  QToolTip::showText(mapToGlobal(toWidget(point).toPoint()), text, this);
}

bool NSTarnView::event(QEvent* event) {
  switch (event->type()) {
    case QEvent::ToolTip: {
      const auto* help = static_cast<QHelpEvent*>(event);
      const QString text = toolTipAtPoint(fromWidget(QPointF(help->pos()) + QPointF(0, 0.5)));
      if (text.isEmpty()) break;
      // The text belongs to this spot alone: moving on a point looks again.
      QToolTip::showText(help->globalPos(), text, this, QRect(help->pos(), QSize(2, 2)));
      return true;
    }
    case QEvent::ChildAdded:
      // A new child's geometry counts from the size that the view has now.
      layOutSubviews(static_cast<QChildEvent*>(event)->child());
      break;
    case QEvent::FocusIn:
      // Qt tells of the view itself after this event; what has the keyboard in it comes last.
      QMetaObject::invokeMethod(
          this, [this] { announceFocusedPart(); }, Qt::QueuedConnection);
      break;
    case QEvent::Show:
      setAttribute(Qt::WA_OpaquePaintEvent, isOpaque());
      NSLiveResizeWatch::watch(*window());
      break;
    default:
      break;
  }
  return QWidget::event(event);
}
