// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSGeometry.h"
#include "Platform/TarnKit/NSAccessibility.h"
#include "Platform/TarnKit/NSDragging.h"
#include "Platform/TarnKit/NSEvent.h"
#include "Platform/Visibility.h"

#include <QCursor>
#include <QStringList>
#include <QWidget>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

class QMenu;

// Autoresizing: which parts of a frame follow when the superview's size changes.
constexpr std::uint32_t NSViewNotSizable = 0;
constexpr std::uint32_t NSViewMinXMargin = 1;
constexpr std::uint32_t NSViewWidthSizable = 2;
constexpr std::uint32_t NSViewMaxXMargin = 4;
constexpr std::uint32_t NSViewMinYMargin = 8;
constexpr std::uint32_t NSViewHeightSizable = 16;
constexpr std::uint32_t NSViewMaxYMargin = 32;

// Frames and autoresizing of any widget inside a view, buttons and pop-ups included; of an NSTarnView its own.
TARN_EXPORT NSRect NSGetFrame(const QWidget& widget);
TARN_EXPORT void NSSetFrame(QWidget& widget, NSRect frame);
TARN_EXPORT void NSSetAutoresizingMask(QWidget& widget, std::uint32_t mask);

// The base of all views: a widget in the platform's coordinates.
//
// Coordinates are points. A view's origin is its lower left corner, with y upwards, unless isFlipped() returns true:
// then it is the upper left one, with y downwards. Frames are in the superview's coordinates and are rounded to whole
// points. When a superview changes its size, the frames of its subviews stay or follow by their autoresizing masks,
// each in the superview's own coordinates. A superview that is no NSTarnView, and a window's place on the screen, count
// from the upper left.
//
// Ownership is Qt's: a superview deletes its subviews. A handler may delete the view that it belongs to, any superview
// and the window; dispatch does not touch them afterwards.
class TARN_EXPORT NSTarnView : public QWidget {
 public:
  explicit NSTarnView(NSRect frame, QWidget* parent = nullptr);
  ~NSTarnView() override;

  // Must always return the same.
  virtual bool isFlipped() const { return false; }
  virtual bool isOpaque() const { return false; }

  NSRect bounds() const;  // origin 0, 0
  // The place in the parent, in points.
  NSRect frame() const;
  void setFrame(NSRect frame);
  void setFrameSize(NSSize size);  // keeps the frame's origin
  // Called after every change of the size, with the new bounds. Overrides call the base.
  virtual void setBounds(NSRect bounds);

  NSTarnView* superview() const;  // null at the top, and inside an ordinary widget
  // Takes the child over, keeps the numbers of its frame, and shows it.
  void addSubview(QWidget& child);
  // Hands the view back hidden, to be owned by the caller; keeps the numbers of its frame.
  void removeFromSuperview();
  void setAutoresizesSubviews(bool autoresizes) { autoresizesSubviews_ = autoresizes; }
  void setAutoresizingMask(std::uint32_t mask);

  // Between window coordinates (lower left origin) and the view's own.
  NSPoint convertPointFromWindow(NSPoint point) const;
  NSPoint convertPointToWindow(NSPoint point) const;
  // Between the view's coordinates and the widget's own (upper left origin): for Qt's calls and for tests.
  QPointF toWidget(NSPoint point) const;
  QRect toWidget(NSRect rect) const;
  NSPoint fromWidget(QPointF point) const;
  NSRect fromWidget(const QRect& rect) const;

  // Drawing. Several requests make one drawing. Inside drawRect the view is the current NSGraphicsContext.
  void setNeedsDisplay(bool needed);
  void setNeedsDisplayInRect(NSRect rect);
  virtual void drawRect(NSRect dirty);

  // The mouse. mouseDown, mouseDragged and mouseUp are those of the left button; the second press of a double click
  // arrives as a mouseDown with click count 2. The base hands each to the superview, and from the topmost view on to
  // the ordinary widget that contains it. While the left button is held, other buttons do nothing.
  //
  // Every mouseDown is followed by one mouseUp, wherever the button is let go, and whatever became of the view; one
  // that got lost is made up for when the mouse is next seen. While mouseDown runs (it may run an event loop of its
  // own, with a dialog) the view is told nothing else of the mouse; the mouseUp comes when it has returned.
  virtual void mouseDown(const NSEvent& event);
  virtual void mouseDragged(const NSEvent& event);
  virtual void mouseUp(const NSEvent& event);
  virtual void mouseMoved(const NSEvent& event);  // no button held; the base does nothing
  virtual void mouseExited();
  // The base opens menuForEvent's menu, or hands the event to the superview when there is none. Comes with the
  // context-menu event that follows a press; without one, soon after.
  virtual void rightMouseDown(const NSEvent& event);
  virtual void flagsChanged(const NSEvent& event);  // a modifier key went down or up while the view has the keyboard
  // Whether a click that activates the window also acts. Every click does on this platform.
  virtual bool acceptsFirstMouse() const { return false; }
  // A menu to open for the event, owned by the caller; null for none.
  virtual QMenu* menuForEvent(const NSEvent& event);
  // The keyboard, for views with a focus policy. Call the base, or event.ignore(), for keys that the view does not use.
  virtual void keyDown(QKeyEvent& event);
  // The pointer's shape at a point of the view; empty for the superview's. Asked when the pointer moves and after
  // events.
  virtual std::optional<QCursor> cursorAtPoint(NSPoint point) const;

  // True from the first to a moment after the last of a run of resizes of the window by the user.
  bool inLiveResize() const { return inLiveResize_; }
  virtual void viewDidEndLiveResize();

  // Tooltips by rectangle; where rectangles overlap, the one added first shows. Elsewhere QWidget::toolTip() shows.
  void removeAllToolTips();
  void addToolTipRect(NSRect rect, const QString& text);
  QString toolTipAtPoint(NSPoint point) const;
  // Shows a text near a point at once, for the value under the pointer while dragging; an empty text hides it.
  void showToolTip(NSPoint point, const QString& text);

  // Drops. Drags that carry none of the registered types never reach the view. Updated and entered return what a drop
  // would do here, from draggingSourceOperationMask(); 0 refuses. Entered returns none by default, updated what entered
  // returns.
  void registerForDraggedTypes(const QStringList& types);
  virtual std::uint32_t draggingEntered(const NSDraggingInfo& info);
  virtual std::uint32_t draggingUpdated(const NSDraggingInfo& info);
  virtual void draggingExited();
  virtual bool performDragOperation(const NSDraggingInfo& info);

  // Accessibility: a name for the view, and its parts.
  virtual QString accessibilityLabel() const;  // the base returns QWidget::accessibleName()
  virtual std::vector<NSAccessibilityElement> accessibilityElements() const;
  // Assistive technology sets a part's value; the base does nothing.
  virtual void setAccessibilityValue(std::size_t element, double value);
  // Assistive technology gives a part the keyboard: select it. The view has got the keyboard by then, unless it takes
  // none. The base does nothing.
  virtual void takeAccessibilityFocus(std::size_t element);
  // Tells assistive technology what is new about the parts since the last call: their number and names, their values
  // and descriptions, and which one has the keyboard. Call it after every change.
  void accessibilityChanged();

  QSize sizeHint() const override;  // the frame size that was set last

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dragLeaveEvent(QDragLeaveEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  friend class NSLiveResizeWatch;
  friend class NSMouseSession;
  friend NSRect NSGetFrame(const QWidget& widget);
  friend void NSSetFrame(QWidget& widget, NSRect frame);

  using Handler = void (NSTarnView::*)(const NSEvent&);
  void layOutSubviews(const QObject* except = nullptr);
  void press(QMouseEvent* event, int clickCount);
  void pressLeft(const QMouseEvent& event, int clickCount);
  void tellRightPress();
  void letGo(const QMouseEvent& release);
  void letGoElsewhere(const QMouseEvent& event);
  void pass(Handler handler, const NSEvent& event);
  void passModifiers(const QKeyEvent& event);
  void updateCursor(QPointF position);
  void announceFocusedPart();
  bool wantsDrag(const NSDraggingInfo& info) const;
  void answerDrag(QDropEvent& event, std::uint32_t operation);

  struct ToolTip {
    NSRect rect;
    QString text;
  };
  QSize layoutSize_;  // the size that the subviews' geometry was computed for
  QSize wantedSize_;  // the size hint
  bool autoresizesSubviews_ = true;
  bool inLiveResize_ = false;
  bool leftButtonDown_ = false;
  bool isInPress_ = false;                          // mouseDown runs
  std::unique_ptr<QMouseEvent> releaseAfterPress_;  // came meanwhile
  std::unique_ptr<QMouseEvent> rightPress_;         // not yet told
  int rightClickCount_ = 0;
  bool rightPressTaken_ = false;
  bool cursorIsSet_ = false;
  std::vector<ToolTip> toolTips_;
  std::vector<NSAccessibilityElement> announcedParts_;  // as assistive technology knows them
  QStringList draggedTypes_;
  std::uint32_t dragOperation_ = NSDragOperationNone;  // what the last move over the view returned
};
