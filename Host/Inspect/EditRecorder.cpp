// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/EditRecorder.h"

#include "Controls/VRTInteractions.h"
#include "Controls/VRTTransientColorPicker.h"

#include <QCoreApplication>
#include <QEvent>
#include <utility>

namespace host {

EditRecorder::EditRecorder(ParameterDocument& document, Told told)
    : document_(document),
      told_(std::move(told)),
      commit_([this] {
        document_.history().commit();
        told_.historyChanged();
      }),
      dropped_([this] { tellOfDrop(); }) {
  for (QCPort* port : document.parameters()) watch(*port);
  watchPickers();
  QCoreApplication::instance()->installEventFilter(this);
}

void EditRecorder::watch(QCPort& port) {
  watches_.push_back(std::make_unique<PortWatch>(port, [this, &port] {
    commit_.request();
    told_.valueChanged(port);
  }));
  auto& center = NSNotificationCenter::defaultCenter();
  observations_.push_back(center.addObserver(kVortoStartInteraction, &port, [this, &port](const NSNotification&) {
    document_.history().startInteraction(&port);
    told_.interactionStarted(port);
    tellInteractions();
  }));
  observations_.push_back(
      center.addObserver(kVortoEndInteraction, &port, [this, &port](const NSNotification&) { endInteraction(&port); }));
}

// One picker is open at a time, wherever.
void EditRecorder::watchPickers() {
  auto& center = NSNotificationCenter::defaultCenter();
  observations_.push_back(center.addObserver(kVRTColorPickerDidOpen, nullptr, [this](const NSNotification&) {
    document_.history().startInteraction(this);
    tellInteractions();
  }));
  observations_.push_back(
      center.addObserver(kVRTColorPickerDidClose, nullptr, [this](const NSNotification&) { endInteraction(this); }));
}

void EditRecorder::endInteraction(const void* source) {
  document_.history().endInteraction(source);
  tellInteractions();
  commit_.request();
}

void EditRecorder::tellInteractions() {
  if (told_.interactionsChanged) told_.interactionsChanged();
}

// What was done before is a step of its own, however fast the next event comes.
bool EditRecorder::eventFilter(QObject*, QEvent* event) {
  switch (event->type()) {
    case QEvent::Drop:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::KeyPress:
      if (dropped_.isPending()) dropped_.runNow();
      if (commit_.isPending()) commit_.runNow();
      if (event->type() == QEvent::Drop) dropped_.request();
      break;
    default:
      break;
  }
  return false;
}

void EditRecorder::tellOfDrop() {
  for (QCPort* port : document_.history().changedPorts()) told_.valueChanged(*port);
  commitNow();
}

}  // namespace host
