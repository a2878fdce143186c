// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/NSLiveResizeWatch.h"

#include "Platform/TarnKit/NSTarnView.h"

#include <QEvent>
#include <QPointer>
#include <vector>

namespace {

constexpr int kQuietMilliseconds = 200;  // without a resize, the user has let go
constexpr const char* kWatchName = "NSLiveResizeWatch";

std::vector<QPointer<QWidget>> viewsOf(QWidget& window) {
  std::vector<QPointer<QWidget>> views;
  if (dynamic_cast<NSTarnView*>(&window)) views.emplace_back(&window);
  for (QWidget* child : window.findChildren<QWidget*>()) {
    if (child->window() == &window && dynamic_cast<NSTarnView*>(child)) views.emplace_back(child);
  }
  return views;
}

}  // namespace

void NSLiveResizeWatch::watch(QWidget& window) {
  if (!window.findChild<QObject*>(kWatchName, Qt::FindDirectChildrenOnly)) new NSLiveResizeWatch(window);
}

NSLiveResizeWatch::NSLiveResizeWatch(QWidget& window) : QObject(&window), window_(window) {
  setObjectName(kWatchName);
  quiet_.setSingleShot(true);
  quiet_.setInterval(kQuietMilliseconds);
  connect(&quiet_, &QTimer::timeout, this, [this] { end(); });
  window.installEventFilter(this);
}

// Resizes that come from the window system are spontaneous; those that the program makes are not. The first one
// places the window and belongs to showing it.
bool NSLiveResizeWatch::eventFilter(QObject* watched, QEvent* event) {
  if (watched == &window_ && event->type() == QEvent::Resize && event->spontaneous() && window_.isVisible()) begin();
  return false;
}

void NSLiveResizeWatch::begin() {
  if (!quiet_.isActive()) {
    for (const QPointer<QWidget>& view : viewsOf(window_)) static_cast<NSTarnView*>(view.data())->inLiveResize_ = true;
  }
  quiet_.start();
}

void NSLiveResizeWatch::end() {
  for (const QPointer<QWidget>& view : viewsOf(window_)) {
    auto* live = static_cast<NSTarnView*>(view.data());
    if (!live || !live->inLiveResize_) continue;
    live->inLiveResize_ = false;
    live->viewDidEndLiveResize();
  }
}
