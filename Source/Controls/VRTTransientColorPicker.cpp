// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTTransientColorPicker.h"

#include "Controls/VRTColorPanel.h"
#include "Controls/VRTLateEnds.h"
#include "Controls/VRTRecentColors.h"
#include "Controls/VRTTransientColorPanel.h"
#include "Platform/Foundation/NSNotificationCenter.h"
#include "Platform/TarnKit/NSTarnView.h"

#include <QPointer>

namespace {

void post(const char* name, const void* sender) {
  NSNotificationCenter::defaultCenter().postNotificationName(name, sender);
}

}  // namespace

// What a picker is while it is open. Callbacks may destroy the view, close the picker and open another one; each step
// holds the session itself and checks whether it still runs.
struct VRTTransientColorPicker::Session : std::enable_shared_from_this<Session> {
  Session(VRTTransientColorPicker* newPicker, NSTarnView& newView, VRTColorSwatch::Kind newKind)
      : picker(newPicker), view(&newView), sender(&newView), kind(newKind) {}

  void open(const NSEvent& event);
  void report(const NSColor& color);
  void finish(bool taken);
  void finishHidden(bool taken);
  void die();

  std::unique_ptr<VRTTransientColorPicker> picker;
  QPointer<NSTarnView> view;
  const void* sender;  // of what is posted
  VRTColorSwatch::Kind kind;
  QPointer<VRTPickerWindow> panel;
  bool running = true;

  static std::shared_ptr<Session>& current() {
    static auto& session = *new std::shared_ptr<Session>;
    return session;
  }
};

// A press of the mouse opens the swatch; a double click, and the keyboard, which clicks nothing, open the panel.
void VRTTransientColorPicker::Session::open(const NSEvent& event) {
  const std::weak_ptr<Session> weak = weak_from_this();
  const auto with = [weak](auto step) {
    if (const std::shared_ptr<Session> session = weak.lock()) step(*session);
  };
  VRTPickerWindow::Handlers handlers{
      [with](const NSColor& color) { with([&](Session& session) { session.report(color); }); },
      [with](bool taken) { with([&](Session& session) { session.finishHidden(taken); }); },
      [with] { with([](Session& session) { session.die(); }); }};
  const QPoint position = event.globalPosition();
  const std::optional<NSColor>& oldColor = picker->options_.oldColor;
  if (event.clickCount() == 1) {
    panel = new VRTTransientColorPanel(*view, kind, position, oldColor, std::move(handlers));
  } else {
    panel = new VRTColorPanel(*view, kind, position, oldColor, std::move(handlers));
  }
  post(kVRTColorPickerDidOpen, sender);
  if (!running || !panel) return;
  if (picker->options_.didStart) picker->options_.didStart();
  if (!running || !panel) return;
  panel->show();
  panel->setFocus();
}

// A panel that is hidden before its pick is over is in the middle of Qt's own work; who is told may destroy it.
void VRTTransientColorPicker::Session::finishHidden(bool taken) {
  if (!running) return;
  if (!panel || panel->isVisible()) return finish(taken);
  VRTEndLater([session = shared_from_this(), taken] { session->finish(taken); });
}

void VRTTransientColorPicker::Session::report(const NSColor& color) {
  const std::shared_ptr<Session> self = shared_from_this();
  if (!running) return;
  picker->color_ = color;
  if (picker->action_) picker->action_(*picker);
}

void VRTTransientColorPicker::Session::finish(bool taken) {
  const std::shared_ptr<Session> self = shared_from_this();
  if (!running) return;
  running = false;
  if (current() == self) current().reset();
  if (panel) panel->dispose();
  VRTTransientColorPicker& ended = *picker;
  if (taken && ended.color_) VRTRecentColors::ofKind(kind).add(*ended.color_);
  if (!taken && ended.color_ && ended.options_.oldColor) {
    ended.color_ = ended.options_.oldColor;
    if (ended.action_) ended.action_(ended);
  }
  if (view && ended.options_.didEnd) ended.options_.didEnd(taken);
  post(kVRTColorPickerDidClose, sender);
}

void VRTTransientColorPicker::Session::die() {
  const std::shared_ptr<Session> self = shared_from_this();
  if (!running) return;
  running = false;
  if (current() == self) current().reset();
  VRTEndLater([told = sender] { post(kVRTColorPickerDidClose, told); });
}

VRTTransientColorPicker::VRTTransientColorPicker(Action action, Options options)
    : action_(std::move(action)), options_(std::move(options)) {}

VRTTransientColorPicker::~VRTTransientColorPicker() = default;

void VRTTransientColorPicker::popup(bool grayscale, NSTarnView* view, const NSEvent& event, Action action,
                                    Options options) {
  const QPointer<NSTarnView> owner(view);
  if (const std::shared_ptr<Session> previous = Session::current()) previous->finish(false);
  if (!owner) return;
  const auto session =
      std::make_shared<Session>(new VRTTransientColorPicker(std::move(action), std::move(options)), *owner,
                                grayscale ? VRTColorSwatch::Kind::grayscale : VRTColorSwatch::Kind::color);
  Session::current() = session;
  session->open(event);
}

void VRTTransientColorPicker::popupColorPickerFrom(NSTarnView* view, const NSEvent& event, Action action,
                                                   Options options) {
  popup(false, view, event, std::move(action), std::move(options));
}

void VRTTransientColorPicker::popupColorPickerFrom(NSTarnView* view, const NSEvent& event, Action action) {
  popup(false, view, event, std::move(action), {});
}

void VRTTransientColorPicker::popupGrayscalePickerFrom(NSTarnView* view, const NSEvent& event, Action action,
                                                       Options options) {
  popup(true, view, event, std::move(action), std::move(options));
}

void VRTTransientColorPicker::popupGrayscalePickerFrom(NSTarnView* view, const NSEvent& event, Action action) {
  popup(true, view, event, std::move(action), {});
}

VRTTransientColorPicker* VRTTransientColorPicker::current() {
  const std::shared_ptr<Session>& session = Session::current();
  return session ? session->picker.get() : nullptr;
}

QWidget* VRTTransientColorPicker::panel() {
  const std::shared_ptr<Session>& session = Session::current();
  return session ? session->panel.data() : nullptr;
}

void VRTTransientColorPicker::cancel() {
  const std::shared_ptr<Session> session = Session::current();
  if (session && session->picker.get() == this) session->finish(false);
}
