// SPDX-License-Identifier: BSD-3-Clause
#include "GradientEditor/VRTGradientGutter.h"

#include "Channels/VRTChannelGradient.h"
#include "GradientEditor/VRTGradientEditor.h"
#include "Platform/Foundation/NSNotificationCenter.h"
#include "Platform/TarnKit/NSAnimationEffect.h"
#include "TarnCore/TCPrint.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr const char* kSource = "GradientEditor/VRTGradientGutter";

}  // namespace

VRTGradientGutter::VRTGradientGutter(NSRect frame, QWidget* parent) : VRTGradientView(frame, parent) {}

VRTGradientGutter::~VRTGradientGutter() {
  if (!interacting_) return;
  const auto port = gradientPort();
  if (port) NSNotificationCenter::defaultCenter().postNotificationName("VortoEndInteraction", port.get());
}

void VRTGradientGutter::setGradientEditor(VRTGradientEditor* editor) {
  _pGradientEditor = editor;
}

VRTGradientEditor* VRTGradientGutter::editor() const {
  return static_cast<VRTGradientEditor*>(_pGradientEditor.data());
}

void VRTGradientGutter::setEnabled(bool enabled) {
  _enabled = enabled;
  setFocusPolicy(enabled ? Qt::StrongFocus : Qt::NoFocus);
}

VRTChannelGradientFolder* VRTGradientGutter::getFolder() const {
  VortoUnreachable(kSource, 654, "Subclass must define getFolder");
}

void VRTGradientGutter::getSamples(VRTGradientGutterMap&) const {
  VortoUnreachable(kSource, 660, "Subclass must define getSample");
}

VRTGradientGutterMap::const_iterator VRTGradientGutter::findSampleIn(const VRTGradientGutterMap& samples,
                                                                     NSPoint location, bool* hitMiddle) const {
  return VRTHitTestGradientGutter(samples, geometry(), selection(), location, hitMiddle);
}

void VRTGradientGutter::setInterpolation(int) {}

QMenu* VRTGradientGutter::menuForEvent(const NSEvent&) {
  return nullptr;
}

void VRTGradientGutter::update() {
  VRTGradientView::update();
  if (_moving == MovingNothing) updateToolTips();
  announceAccessibility();
}

void VRTGradientGutter::setBounds(NSRect bounds) {
  VRTGradientView::setBounds(bounds);
  if (!inLiveResize()) updateToolTips();
}

void VRTGradientGutter::viewDidEndLiveResize() {
  VRTGradientView::viewDidEndLiveResize();
  updateToolTips();
}

// The selection.

VRTGradientSelection VRTGradientGutter::selection() const {
  const VRTGradientEditor* owner = editor();
  if (!owner) return {};
  return {owner->getSelectedSample(), owner->getMiddleSelected()};
}

VRTChannelGradientSample* VRTGradientGutter::selectedSampleOfFolder() const {
  const VRTGradientEditor* owner = editor();
  VRTChannelGradientSample* sample = owner ? owner->getSelectedSample() : nullptr;
  const VRTChannelGradientFolder* folder = sample ? getFolder() : nullptr;
  if (!folder) return nullptr;
  const auto& children = folder->getDescendants();
  return std::find(children.begin(), children.end(), sample) == children.end() ? nullptr : sample;
}

bool VRTGradientGutter::select(VRTChannelGradientSample* sample, bool middle, bool doubleClick) {
  const QPointer<VRTGradientGutter> self(this);
  if (VRTGradientEditor* owner = editor()) owner->setSelectedSample(sample, middle, doubleClick);
  return self;
}

// Interactions: what belongs together, between two notifications.

void VRTGradientGutter::rememberFolder() {
  VRTChannelGradientFolder* folder = getFolder();
  editedFolder_ = folder ? folder->getRef() : nullptr;
}

bool VRTGradientGutter::folderIsRemembered() const {
  const VRTChannelGradientFolder* folder = getFolder();
  return folder && editedFolder_ && editedFolder_->getChannel() == folder;
}

void VRTGradientGutter::abandonDrag() {
  _pDeleted.reset();
  _moving = MovingNothing;
}

bool VRTGradientGutter::beginInteraction() {
  const QPointer<VRTGradientGutter> self(this);
  const auto port = gradientPort();
  interacting_ = true;
  NSNotificationCenter::defaultCenter().postNotificationName("VortoStartInteraction", port.get());
  return self;
}

void VRTGradientGutter::finishInteraction(const NSEvent* release) {
  const auto port = gradientPort();
  interacting_ = picking_ = false;
  heldKeys_.clear();
  {
    const VRTPortChange change(port);
    if (_pDeleted) {
      if (release) {
        NSShowAnimationEffect(NSAnimationEffectDisappearingItemDefault, release->globalPosition(), NSSize{});
      }
      _pDeleted.reset();
    }
    const bool dragged = std::exchange(_moving, MovingNothing) != MovingNothing;
    const bool keyed = std::exchange(keying_, false);
    if ((dragged || keyed) && folderIsRemembered()) getFolder()->sortAndRename();
  }
  // The observers of the change may have destroyed the gutter.
  NSNotificationCenter::defaultCenter().postNotificationName("VortoEndInteraction", port.get());
}

void VRTGradientGutter::endLostInteraction() {
  if (!interacting_ || picking_) return;
  endMadeUp_ = !keying_;
  finishInteraction(nullptr);
}

void VRTGradientGutter::hideEvent(QHideEvent* event) {
  VRTGradientView::hideEvent(event);
  endLostInteraction();
}
