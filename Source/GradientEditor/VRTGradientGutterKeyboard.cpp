// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelGradient.h"
#include "GradientEditor/VRTGradientGutter.h"
#include "GradientEditor/VRTGradientKeyboard.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <algorithm>
#include <iterator>

// The keyboard in a gutter.

void VRTGradientGutter::keyDown(QKeyEvent& event) {
  if (!getGradientChannel() || !_enabled || !useKey(event)) VRTGradientView::keyDown(event);
}

bool VRTGradientGutter::useKey(const QKeyEvent& event) {
  const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
  const bool shift = modifiers == Qt::ShiftModifier;
  const bool control = modifiers == Qt::ControlModifier;
  const bool both = modifiers == (Qt::ControlModifier | Qt::ShiftModifier);
  if (modifiers != Qt::NoModifier && !shift && !control && !both) return false;
  if (event.key() == Qt::Key_D && !control) return false;

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
    case Qt::Key_Insert:
    case Qt::Key_D:
      break;
    default:
      return false;
  }
  if (!gesture_.catchUp() || !gesture_.keysMayAct() || !getGradientChannel()) return true;

  if (direction == 0) {
    const bool takesControl = event.key() == Qt::Key_D;
    if (control != takesControl || shift || both || event.isAutoRepeat()) return true;
    changeOnceByKey(event.key());
    return true;
  }
  const bool pages = event.key() == Qt::Key_PageUp || event.key() == Qt::Key_PageDown;
  if (pages || control || both || !selectedSampleOfFolder()) {
    selectNeighbour(direction, both || (pages && shift));
    return true;
  }
  if (event.key() == Qt::Key_Home || event.key() == Qt::Key_End) {
    moveByKeyTo(event.key(), direction < 0 ? 0 : 1);
  } else {
    moveByKey(event.key(), direction * (shift ? VRTGradientFineKeyStep : VRTGradientKeyStep));
  }
  return true;
}

void VRTGradientGutter::changeOnceByKey(int key) {
  switch (key) {
    case Qt::Key_Insert:
      return insertByKey();
    case Qt::Key_D:
      return copyByKey();
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
      return deleteByKey();
    default:
      return pickByKey();
  }
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
  const double position = VRTFreeGradientPosition(sample->position, target, positionsExcept(sample));
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

std::vector<double> VRTGradientGutter::positionsExcept(const VRTChannelGradientSample* sample) const {
  std::vector<double> positions;
  for (const VRTChannelBase* child : getFolder()->getDescendants()) {
    const auto* other = dynamic_cast<const VRTChannelGradientSample*>(child);
    if (other && other != sample) positions.push_back(other->position);
  }
  return positions;
}

// Stops and the middle points between them stand in one row: a stop at 2 n, the middle point after it at 2 n + 1. Among
// stops alone a middle point counts as its stop.
void VRTGradientGutter::selectNeighbour(int direction, bool middlesToo) {
  VRTGradientGutterMap samples;
  getSamples(samples);
  if (samples.empty()) return;
  const std::ptrdiff_t last = std::ptrdiff_t{2} * std::ssize(samples) - 2;
  std::ptrdiff_t chosen = direction > 0 ? 0 : last;
  const VRTChannelGradientSample* selected = selectedSampleOfFolder();
  const bool isMiddle = selected && selection().middle;
  std::ptrdiff_t place = 0;
  for (const auto& [position, record] : samples) {
    if (selected && record.sample == selected) {
      const std::ptrdiff_t here = isMiddle && middlesToo ? place + 1 : place;
      chosen = std::clamp(here + (middlesToo ? direction : direction + direction), std::ptrdiff_t{0}, last);
    }
    place += 2;
  }
  const auto entry = std::next(samples.begin(), chosen / 2);
  const bool middle = chosen % 2 == 1;
  if (entry->second.sample != selected || isMiddle != middle) select(entry->second.sample, middle, false);
}

void VRTGradientGutter::changeFolderByKey(const FolderChange& change) {
  const VRTGesture::Alive alive = gesture_.alive();
  gesture_.end();
  if (!alive || !getFolder()) return;
  rememberFolder();
  if (!gesture_.start(VRTGesture::By::Keys, gradientPort())) return;
  gesture_.endWith([this, change](const VRTGesture::Ending& ending) {
    if (!folderIsRemembered()) return;
    const VRTPortChange announced(ending.port);
    VRTChannelGradientSample* selected = change(*getFolder());
    getFolder()->sortAndRename();
    select(selected, false, false);
  });
}

void VRTGradientGutter::deleteByKey() {
  const VRTChannelGradientFolder* present = getFolder();
  if (!selectedSampleOfFolder() || selection().middle || present->getNumberOfDescendants() < 2) return;
  changeFolderByKey([this](VRTChannelGradientFolder& folder) {
    VRTChannelGradientSample* sample = selectedSampleOfFolder();
    if (sample) folder.removeDescendant(sample);
    delete sample;
    return nullptr;
  });
}

// Where the selected middle point is; otherwise in the middle of the segment after the selected sample, or of the one
// that ends the gradient with it. Without a selection in the middle of the widest one.
void VRTGradientGutter::insertByKey() {
  VRTGradientGutterMap samples;
  getSamples(samples);
  const VRTChannelGradientSample* selected = selectedSampleOfFolder();
  double start = samples.empty() ? 0 : samples.begin()->first;
  double end = start < 0.5 ? 1 : 0;
  double middle = 0.5;
  double widest = -1;
  for (auto entry = samples.begin(); entry != samples.end() && std::next(entry) != samples.end(); ++entry) {
    const auto next = std::next(entry);
    const bool isSelected = selected && (entry->second.sample == selected || next->second.sample == selected);
    if (selected ? !isSelected : !(next->first - entry->first > widest)) continue;
    start = entry->first;
    end = next->first;
    widest = end - start;
    if (entry->second.sample != selected) continue;
    if (selection().middle) middle = entry->second.middle;
    break;
  }
  const double position = VRTClampToUnit(VRTGradientGutterGeometry::positionOfMiddle(start, end, middle));
  if (!VRTGradientPositionIsFree(position, positionsExcept(nullptr))) return;
  changeFolderByKey([position](VRTChannelGradientFolder& folder) { return folder.insertSample(0.0, position); });
}

void VRTGradientGutter::copyByKey() {
  VRTChannelGradientSample* source = selectedSampleOfFolder();
  if (!source || selection().middle) return;
  const double beside = source->position + VRTGradientCopyStep;
  const double target = beside > 1 ? source->position - VRTGradientCopyStep : beside;
  const double position = VRTFreeGradientPosition(source->position, target, positionsExcept(nullptr));
  if (position == source->position) return;
  changeFolderByKey([this, position](VRTChannelGradientFolder&) {
    VRTChannelGradientSample* original = selectedSampleOfFolder();
    VRTChannelGradientSample* copy = original ? copyOfSample(*original) : nullptr;
    if (copy) copy->position = position;
    return copy;
  });
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
