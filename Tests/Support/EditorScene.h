// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Controls/VRTInteractions.h"
#include "Platform/Foundation/NSKeyValueObserving.h"
#include "Platform/Foundation/NSNotificationCenter.h"
#include "Platform/QuartzComposer/QCPort.h"
#include "Platform/TarnKit/NSTarnView.h"

#include <QApplication>
#include <QPointer>
#include <QTest>

// An editor on a port, in a window, and one of its gutters, driven by events of the window system. What the port tells
// is logged: "start", "change" and "end".
class EditorScene : public NSKeyValueObserver {
 public:
  ~EditorScene() override {
    observations_.clear();
    if (port_) port_->removeObserver(this, "value");
  }
  EditorScene(const EditorScene&) = delete;
  EditorScene& operator=(const EditorScene&) = delete;

  // What gestures of any editor need.
  virtual void attach(EditorScene* other) = 0;  // to the port of another scene; to none
  virtual std::shared_ptr<NSObject> newValue() const = 0;
  virtual NSPoint handle() const = 0;   // a point on something that the mouse and the key Right move up
  virtual NSPoint nothing() const = 0;  // a point where a press does nothing
  virtual double position() const = 0;  // of what is moved, 0 to 1
  virtual void chooseHandle() = 0;      // for the keyboard, which the gutter has
  virtual bool settles() const = 0;     // whether ends announce a change of their own
  virtual void updateEditor() = 0;

  void observeValueForKeyPath(const std::string&, NSObject*, const PropertyList&, void*) override { note("change"); }
  void note(const std::string& what) {
    log += log.empty() ? what : " " + what;
    if (onNote) onNote(what);
  }
  std::string takeLog() { return std::exchange(log, {}); }
  int count(const char* word) const { return int(QString::fromStdString(log).count(word)); }
  QCPort& port() const { return *port_; }
  void letGoOfPort() {
    observations_.clear();
    port_->removeObserver(this, "value");
    port_.reset();
  }
  QWidget* part(const char* name) const { return window->findChild<QWidget*>(name); }
  template <class Part>
  Part* part() const {
    for (QWidget* child : window->findChildren<QWidget*>()) {
      if (auto* part = dynamic_cast<Part*>(child)) return part;
    }
    return nullptr;
  }

  // The mouse, at points of the gutter. Rows are those of whole points, so that (x, y) hits what covers y to y + 1.
  // When the gutter is not there the pointer stays where it was, and without a window nothing happens at all.
  void press(NSPoint point, Qt::KeyboardModifiers modifiers = {}, Qt::MouseButton button = Qt::LeftButton) {
    place(point);
    if (window) QTest::mousePress(window->windowHandle(), button, modifiers, pointer_);
  }
  void move(NSPoint point) {
    place(point);
    if (window) QTest::mouseMove(window->windowHandle(), pointer_);
  }
  void release(Qt::KeyboardModifiers modifiers = {}, Qt::MouseButton button = Qt::LeftButton) {
    if (window) QTest::mouseRelease(window->windowHandle(), button, modifiers, pointer_);
  }
  void drag(NSPoint from, NSPoint to) {
    press(from);
    move(to);
    release();
  }
  void doubleClick(NSPoint point) {
    place(point);
    QTest::mouseDClick(window->windowHandle(), Qt::LeftButton, {}, pointer_);
  }

  // The keyboard of the window.
  void focus(QWidget* widget = nullptr) {
    window->activateWindow();
    (widget ? widget : gutter.data())->setFocus(Qt::TabFocusReason);
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
  }
  void keyDown(int key, Qt::KeyboardModifiers modifiers = {}) {
    if (window) QTest::keyPress(window->windowHandle(), static_cast<Qt::Key>(key), modifiers);
  }
  void keyUp(int key) {
    if (window) QTest::keyRelease(window->windowHandle(), static_cast<Qt::Key>(key));
  }
  void key(int key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(window->windowHandle(), static_cast<Qt::Key>(key), modifiers);
  }
  void repeatKey(int key) const {
    for (const QEvent::Type type : {QEvent::KeyRelease, QEvent::KeyPress}) {
      QKeyEvent event(type, key, {}, {}, true);
      if (gutter && gutter->isVisible()) QApplication::sendEvent(gutter, &event);
    }
  }

  std::unique_ptr<NSTarnView> window;
  QPointer<NSTarnView> editor;
  QPointer<NSTarnView> gutter;
  std::string log;
  std::function<void(const std::string&)> onNote;

 protected:
  EditorScene() = default;
  // Shows the editor in a window of its own, and listens to the port after the editor.
  void show(NSTarnView* shown, NSRect frame, std::shared_ptr<QCPort> port) {
    window = std::make_unique<NSTarnView>(NSMakeRect(0, 0, frame.size.width + 40, frame.size.height + 85));
    editor = shown;
    window->addSubview(*shown);
    shown->setFrame(frame);
    window->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    port_ = std::move(port);
    port_->addObserver(this, "value", 0, nullptr);
    const auto listen = [this](const char* name, const char* told) {
      observations_.push_back(NSNotificationCenter::defaultCenter().addObserver(
          name, port_.get(), [this, told](const NSNotification&) { note(told); }));
    };
    listen("VortoStartInteraction", "start");
    listen("VortoEndInteraction", "end");
  }

 private:
  void place(NSPoint point) {
    if (!gutter || gutter->window() != window.get()) return;
    const double row = gutter->isFlipped() ? point.y : gutter->height() - 1 - point.y;
    pointer_ = gutter->mapTo(window.get(), QPointF(point.x, row)).toPoint();
  }

  std::shared_ptr<QCPort> port_;
  std::vector<NSNotificationCenter::Observation> observations_;
  QPoint pointer_;  // in the window
};
