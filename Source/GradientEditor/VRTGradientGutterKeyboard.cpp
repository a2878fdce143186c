// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelGradient.h"
#include "GradientEditor/VRTGradientEditor.h"
#include "GradientEditor/VRTGradientGutter.h"
#include "GradientEditor/VRTGradientKeyboard.h"
#include "Platform/Foundation/NSNotificationCenter.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <iterator>

// The keyboard in a gutter. From the first key that changes something until the last one is let go is one interaction.

void VRTGradientGutter::keyDown(QKeyEvent& event) {
  if (!getGradientChannel() || !_enabled || !useKey(event)) VRTGradientView::keyDown(event);
}

bool VRTGradientGutter::useKey(const QKeyEvent& event) {
  const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
  const bool shift = modifiers == Qt::ShiftModifier;
  const bool control = modifiers == Qt::ControlModifier;
  if (modifiers != Qt::NoModifier && !shift && !control) return false;

  int direction = 0;
  switch (event.key()) {
    case Qt::Key_Left:
    case Qt::Key_Down:
    case Qt::Key_Home:
    case Qt::Key_PageUp:
      direction = -1;
      break;
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_End:
    case Qt::Key_PageDown:
      direction = 1;
      break;
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
    case Qt::Key_Return:
    case Qt::Key_Enter:
      break;
    default:
      return false;
  }
  if (interacting_ && !keying_) return true;  // the mouse has the gutter

  if (direction == 0) {
    if (control || shift || event.isAutoRepeat()) return true;
    const bool removes = event.key() == Qt::Key_Delete || event.key() == Qt::Key_Backspace;
    removes ? deleteByKey() : pickByKey();
    return true;
  }
  const bool neighbour = control || event.key() == Qt::Key_PageUp || event.key() == Qt::Key_PageDown;
  if (neighbour || !selectedSampleOfFolder()) {
    selectNeighbour(direction);
    return true;
  }
  pressedKey_ = event.key();
  if (event.key() == Qt::Key_Home || event.key() == Qt::Key_End) {
    moveByKeyTo(direction < 0 ? 0 : 1);
  } else {
    moveByKey(direction * (shift ? VRTGradientFineKeyStep : VRTGradientKeyStep));
  }
  return true;
}

void VRTGradientGutter::moveByKey(double step) {
  const VRTChannelGradientSample* sample = selectedSampleOfFolder();
  moveByKeyTo((selection().middle ? sample->middle : sample->position) + step);
}

void VRTGradientGutter::moveByKeyTo(double target) {
  const VRTChannelGradientSample* sample = selectedSampleOfFolder();
  if (selection().middle) {
    const double middle = VRTClampToUnit(target);
    if (middle != sample->middle) changeByKey([middle](VRTChannelGradientSample& changed) { changed.middle = middle; });
    return;
  }
  std::vector<double> others;
  for (const VRTChannelBase* child : getFolder()->getDescendants()) {
    const auto* other = dynamic_cast<const VRTChannelGradientSample*>(child);
    if (other && other != sample) others.push_back(other->position);
  }
  const double position = VRTFreeGradientPosition(sample->position, target, others);
  if (position == sample->position) return;
  changeByKey([position](VRTChannelGradientSample& changed) { changed.position = position; });
}

void VRTGradientGutter::changeByKey(const std::function<void(VRTChannelGradientSample&)>& change) {
  heldKeys_.insert(pressedKey_);
  if (!interacting_) {
    rememberFolder();
    keying_ = true;
    if (!beginInteraction()) return;
  }
  VRTChannelGradientSample* sample = folderIsRemembered() ? selectedSampleOfFolder() : nullptr;
  if (!sample) return;
  if (_needsToBeKeyframed) _keyframed = true;
  const VRTPortChange announced(gradientPort());
  change(*sample);
}

void VRTGradientGutter::keyReleaseEvent(QKeyEvent* event) {
  const bool held = !event->isAutoRepeat() && heldKeys_.erase(event->key()) > 0;
  if (!held) return VRTGradientView::keyReleaseEvent(event);
  event->accept();
  if (heldKeys_.empty() && keying_) finishInteraction(nullptr);
}

void VRTGradientGutter::selectNeighbour(int direction) {
  VRTGradientGutterMap samples;
  getSamples(samples);
  if (samples.empty()) return;
  const VRTChannelGradientSample* selected = selectedSampleOfFolder();
  auto chosen = direction > 0 ? samples.begin() : std::prev(samples.end());
  for (auto entry = samples.begin(); selected && entry != samples.end(); ++entry) {
    if (entry->second.sample != selected) continue;
    chosen = entry;
    if (direction > 0 && std::next(entry) != samples.end()) ++chosen;
    if (direction < 0 && entry != samples.begin()) --chosen;
    break;
  }
  if (chosen->second.sample != selected || selection().middle) select(chosen->second.sample, false, false);
}

void VRTGradientGutter::deleteByKey() {
  const QPointer<VRTGradientGutter> self(this);
  if (interacting_) finishInteraction(nullptr);
  if (!self || !getFolder() || !selectedSampleOfFolder() || selection().middle) return;
  if (getFolder()->getNumberOfDescendants() < 2) return;

  rememberFolder();
  if (!beginInteraction()) return;
  const auto port = gradientPort();
  VRTChannelGradientSample* sample = folderIsRemembered() ? selectedSampleOfFolder() : nullptr;
  interacting_ = false;
  if (sample) {
    const VRTPortChange change(port);
    VRTChannelGradientFolder* folder = getFolder();
    folder->removeDescendant(sample);
    delete sample;
    folder->sortAndRename();
    select(nullptr, false, false);
  }
  NSNotificationCenter::defaultCenter().postNotificationName("VortoEndInteraction", port.get());
}

void VRTGradientGutter::pickByKey() {
  const QPointer<VRTGradientGutter> self(this);
  if (interacting_) finishInteraction(nullptr);
  if (!self || !selectedSampleOfFolder() || selection().middle) return;
  if (!beginInteraction()) return;
  const VRTChannelGradientSample* sample = selectedSampleOfFolder();
  picking_ = true;
  if (sample) {
    const NSRect swatch = geometry().swatch(VRTClampToUnit(sample->position));
    const NSPoint centre = {swatch.origin.x + swatch.size.width / 2, swatch.origin.y + swatch.size.height / 2};
    const QPoint onScreen = mapToGlobal(toWidget(centre).toPoint());
    startColorPicker(NSEvent(convertPointToWindow(centre), 0, 1, onScreen));
  }
  if (self && picking_ && !VRTTransientColorPicker::current()) pickerDidEnd();
}

void VRTGradientGutter::focusInEvent(QFocusEvent* event) {
  VRTGradientView::focusInEvent(event);
  setNeedsDisplay(true);
}

void VRTGradientGutter::focusOutEvent(QFocusEvent* event) {
  const QPointer<VRTGradientGutter> self(this);
  VRTGradientView::focusOutEvent(event);
  setNeedsDisplay(true);
  // The keys that are down will be let go elsewhere.
  if (self && keying_) finishInteraction(nullptr);
}
