// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelGradient.h"
#include "GradientEditor/VRTGradientGutter.h"
#include "GradientEditor/VRTGradientKeyboard.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <iterator>

// The keyboard in a gutter.

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
  if (!gesture_.keysMayAct()) return true;

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
  if (event.key() == Qt::Key_Home || event.key() == Qt::Key_End) {
    moveByKeyTo(event.key(), direction < 0 ? 0 : 1);
  } else {
    moveByKey(event.key(), direction * (shift ? VRTGradientFineKeyStep : VRTGradientKeyStep));
  }
  return true;
}

void VRTGradientGutter::moveByKey(int key, double step) {
  const VRTChannelGradientSample* sample = selectedSampleOfFolder();
  moveByKeyTo(key, (selection().middle ? sample->middle : sample->position) + step);
}

void VRTGradientGutter::moveByKeyTo(int key, double target) {
  const VRTChannelGradientSample* sample = selectedSampleOfFolder();
  if (selection().middle) {
    const double middle = VRTClampToUnit(target);
    if (middle == sample->middle) return;
    return changeByKey(key, [middle](VRTChannelGradientSample& changed) { changed.middle = middle; });
  }
  std::vector<double> others;
  for (const VRTChannelBase* child : getFolder()->getDescendants()) {
    const auto* other = dynamic_cast<const VRTChannelGradientSample*>(child);
    if (other && other != sample) others.push_back(other->position);
  }
  const double position = VRTFreeGradientPosition(sample->position, target, others);
  if (position == sample->position) return;
  changeByKey(key, [position](VRTChannelGradientSample& changed) { changed.position = position; });
}

void VRTGradientGutter::changeByKey(int key, const std::function<void(VRTChannelGradientSample&)>& change) {
  if (!gesture_.isOpen()) rememberFolder();
  if (!gesture_.hold(key, gradientPort())) return;
  VRTChannelGradientSample* sample = folderIsRemembered() ? selectedSampleOfFolder() : nullptr;
  if (!sample) return;
  if (_needsToBeKeyframed) _keyframed = true;
  const VRTPortChange announced(gradientPort());
  change(*sample);
}

void VRTGradientGutter::keyReleaseEvent(QKeyEvent* event) {
  if (event->isAutoRepeat() || !gesture_.letGo(event->key())) return VRTGradientView::keyReleaseEvent(event);
  event->accept();
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
  const VRTGesture::Alive alive = gesture_.alive();
  gesture_.end();
  if (!alive || !getFolder() || !selectedSampleOfFolder() || selection().middle) return;
  if (getFolder()->getNumberOfDescendants() < 2) return;

  rememberFolder();
  if (!gesture_.start(VRTGesture::By::Keys, gradientPort())) return;
  gesture_.endWith([this](const VRTGesture::Ending& ending) { deleteSelectedSample(ending.port); });
}

void VRTGradientGutter::deleteSelectedSample(const std::shared_ptr<QCPort>& port) {
  VRTChannelGradientSample* sample = folderIsRemembered() ? selectedSampleOfFolder() : nullptr;
  if (!sample) return;
  const VRTPortChange change(port);
  VRTChannelGradientFolder* folder = getFolder();
  folder->removeDescendant(sample);
  delete sample;
  folder->sortAndRename();
  select(nullptr, false, false);
}

void VRTGradientGutter::pickByKey() {
  const VRTGesture::Alive alive = gesture_.alive();
  gesture_.end();
  if (!alive || !selectedSampleOfFolder() || selection().middle) return;
  if (!gesture_.start(VRTGesture::By::Picker, gradientPort())) return;
  const VRTChannelGradientSample* sample = selectedSampleOfFolder();
  if (sample) {
    const NSRect swatch = geometry().swatch(VRTClampToUnit(sample->position));
    const NSPoint centre = {swatch.origin.x + swatch.size.width / 2, swatch.origin.y + swatch.size.height / 2};
    const QPoint onScreen = mapToGlobal(toWidget(centre).toPoint());
    startColorPicker(NSEvent(convertPointToWindow(centre), 0, 0, onScreen));  // no click
  }
  if (alive && !VRTTransientColorPicker::current()) pickerDidEnd();
}

void VRTGradientGutter::focusInEvent(QFocusEvent* event) {
  VRTGradientView::focusInEvent(event);
  setNeedsDisplay(true);
}

void VRTGradientGutter::focusOutEvent(QFocusEvent* event) {
  VRTGradientView::focusOutEvent(event);
  setNeedsDisplay(true);
  gesture_.loseKeys();
}
