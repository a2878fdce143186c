// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelGradient.h"
#include "GradientEditor/VRTGradientGutter.h"
#include "GradientEditor/VRTGradientGutterOwner.h"

#include <iterator>

// The mouse in a gutter. Everything that tells others (a selection, a change, a notification) may destroy the gutter or
// replace the gradient: what was looked up before is not used afterwards.

namespace {

NSPoint singlePrecision(NSPoint point) {
  return {VRTSinglePrecision(point.x), VRTSinglePrecision(point.y)};
}

}  // namespace

void VRTGradientGutter::mouseDown(const NSEvent& event) {
  if (!getGradientChannel() || !_enabled) return VRTGradientView::mouseDown(event);
  if (!gesture_.clearForPress() || !getGradientChannel()) return;
  if (event.modifierFlags() & NSControlKeyMask) return rightMouseDown(event);
  bool onSample = false;
  if (!pressAt(convertPointFromWindow(event.locationInWindow()), event, &onSample)) return;
  if (!gesture_.start(VRTGesture::By::Mouse, gradientPort())) return;
  if (!_enabled) return endLostInteraction();  // since the selection was told: the release goes to the superview
  const VRTGradientGutterOwner* owner = editor();
  if (onSample && event.clickCount() == 2 && owner && !owner->delegate()) startColorPicker(event);
}

bool VRTGradientGutter::pressAt(NSPoint point, const NSEvent& event, bool* onSample) {
  _startingLocation = singlePrecision(point);
  rememberFolder();
  VRTGradientGutterMap samples;
  getSamples(samples);
  bool hitMiddle = false;
  const auto hit = findSampleIn(samples, point, &hitMiddle);
  const bool doubleClick = event.clickCount() == 2;

  if (hit == samples.end()) {
    if (point.y < VRTGradientGutterGeometry::kStripBottom) {
      _moving = MovingNothing;
      return select(nullptr, false, false);
    }
    const double position = geometry().positionOfX(point.x);
    VRTChannelGradientSample* inserted = getFolder()->insertSample(0.0, position);
    _startingValue = position;
    _moving = MovingSample;
    return select(inserted, false, false);
  }
  if (hitMiddle) {
    _startingValue = hit->second.middle;
    _nextSample = std::next(hit)->first;
    _moving = MovingMiddle;
    return select(hit->second.sample, true, doubleClick);
  }
  _startingValue = hit->first;
  _moving = MovingSample;
  *onSample = true;
  const bool copy = event.modifierFlags() & NSAlternateKeyMask;
  return select(copy ? copyOfSample(*hit->second.sample) : hit->second.sample, false, doubleClick);
}

// Samples share the id 0, and copies are made by id: the source gets one that no other sample has.
VRTChannelGradientSample* VRTGradientGutter::copyOfSample(VRTChannelGradientSample& sample) {
  VRTChannelGradientFolder* folder = getFolder();
  std::int32_t unused = 0;
  do {
    unused = VRTChannelBase().getID();
  } while (folder->getDescendant(unused));
  sample.setID(unused);
  return folder->cloneSample(static_cast<std::uint32_t>(unused));
}

void VRTGradientGutter::mouseDragged(const NSEvent& event) {
  if (!getGradientChannel() || !_enabled) return VRTGradientView::mouseDragged(event);
  if (_moving == MovingNothing || gesture_.isLost()) return;
  if (!folderIsRemembered()) return abandonDrag();
  // In single precision like the starting location: back on its pixel the distance is 0 at every pixel ratio.
  const NSPoint point = singlePrecision(convertPointFromWindow(event.locationInWindow()));
  const double travel = geometry().positionsOfDistance(point.x - _startingLocation.x);
  const VRTPortChange change(gradientPort());
  if (_moving == MovingSample) {
    dragSample(point, travel);
  } else {
    dragMiddle(travel);
  }
}

void VRTGradientGutter::dragSample(NSPoint point, double travel) {
  const double position = travel + _startingValue;
  const double rise = point.y - _startingLocation.y;
  if (geometry().dragIsOnGutter(position, rise)) {
    if (_pDeleted) {
      VRTChannelGradientSample* restored = _pDeleted.release();
      getFolder()->push_back(restored);
      if (!select(restored, false, false)) return;
    }
  } else {
    if (_pDeleted) return;
    VRTChannelGradientSample* dragged = selectedSampleOfFolder();
    if (dragged && getFolder()->getNumberOfDescendants() >= 2) {
      _deleteUndoHandled = true;
      getFolder()->removeDescendant(dragged);
      _pDeleted.reset(dragged);
      select(nullptr, false, false);
      return;
    }
  }
  VRTChannelGradientSample* sample = selectedSampleOfFolder();
  if (!sample) return;
  if (_needsToBeKeyframed) _keyframed = true;
  sample->position = VRTClampToUnit(position);
}

void VRTGradientGutter::dragMiddle(double travel) {
  VRTChannelGradientSample* sample = selectedSampleOfFolder();
  if (!sample) return;
  const double moved = VRTGradientGutterGeometry::middlesOfDistance(sample->position, _nextSample, travel);
  sample->middle = VRTClampToUnit(moved + _startingValue);
}

void VRTGradientGutter::mouseUp(const NSEvent& event) {
  if (!_enabled) return VRTGradientView::mouseUp(event);
  gesture_.release(event, gradientPort());
}

void VRTGradientGutter::rightMouseDown(const NSEvent& event) {
  // Without a gradient the superviews get a mouseDown, not a rightMouseDown.
  if (!getGradientChannel() || !_enabled) return VRTGradientView::mouseDown(event);
  const NSPoint point = convertPointFromWindow(event.locationInWindow());
  _startingLocation = singlePrecision(point);
  VRTGradientGutterMap samples;
  getSamples(samples);
  bool hitMiddle = false;
  const auto hit = findSampleIn(samples, point, &hitMiddle);
  if (hit == samples.end() || hitMiddle) return VRTGradientView::rightMouseDown(event);
  if (select(hit->second.sample, false, false)) startColorPicker(event);
}

void VRTGradientGutter::flagsChanged(const NSEvent&) {}
