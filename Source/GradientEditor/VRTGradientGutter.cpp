// SPDX-License-Identifier: BSD-3-Clause
#include "GradientEditor/VRTGradientGutter.h"

#include "Channels/VRTChannelGradient.h"
#include "GradientEditor/VRTGradientGutterOwner.h"
#include "GradientEditor/VRTGradientSuccession.h"
#include "Platform/TarnKit/NSAnimationEffect.h"
#include "TarnCore/TCPrint.h"

#include <QEvent>
#include <algorithm>
#include <utility>

namespace {

constexpr const char* kSource = "GradientEditor/VRTGradientGutter";

}  // namespace

VRTGradientGutter::VRTGradientGutter(NSRect frame, QWidget* parent) : VRTGradientView(frame, parent) {}

VRTGradientGutter::~VRTGradientGutter() = default;

void VRTGradientGutter::setEnabled(bool enabled) {
  _enabled = enabled;
  if (!enabled) endLostInteraction();
  setFocusPolicy(enabled ? Qt::StrongFocus : Qt::NoFocus);
  updateToolTips();
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
  accessibilityChanged();
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
  const VRTGradientGutterOwner* owner = editor();
  if (!owner) return {};
  return {owner->getSelectedSample(), owner->getMiddleSelected()};
}

VRTChannelGradientSample* VRTGradientGutter::selectedSampleOfFolder() const {
  const VRTGradientGutterOwner* owner = editor();
  VRTChannelGradientSample* sample = owner ? owner->getSelectedSample() : nullptr;
  const VRTChannelGradientFolder* folder = sample ? getFolder() : nullptr;
  if (!folder) return nullptr;
  const auto& children = folder->getDescendants();
  return std::find(children.begin(), children.end(), sample) == children.end() ? nullptr : sample;
}

bool VRTGradientGutter::select(VRTChannelGradientSample* sample, bool middle, bool doubleClick) {
  const VRTGesture::Alive alive = gesture_.alive();
  if (VRTGradientGutterOwner* owner = editor()) owner->setSelectedSample(sample, middle, doubleClick);
  return static_cast<bool>(alive);
}

// What is edited between the start and the end of a gesture.

void VRTGradientGutter::rememberFolder() {
  VRTChannelGradientFolder* folder = getFolder();
  editedFolder_ = folder ? folder->getRef() : nullptr;
}

bool VRTGradientGutter::folderIsRemembered() const {
  const VRTChannelGradientFolder* folder = getFolder();
  return folder && editedFolder_ && editedFolder_->getChannel() == folder;
}

// The edited folder while it is one of the port's value. The gutter may have got another port meanwhile.
VRTChannelGradientFolder* VRTGradientGutter::editedFolderOf(const QCPort* port) const {
  VRTChannelGradient* channel = VRTGradientChannelOfPort(dynamic_cast<const VRTGradientPort*>(port));
  const VRTChannelBase* edited = editedFolder_ ? editedFolder_->getChannel() : nullptr;
  if (!channel || !edited) return nullptr;
  if (edited == &channel->rgbFolder) return &channel->rgbFolder;
  return edited == &channel->alphaFolder ? &channel->alphaFolder : nullptr;
}

void VRTGradientGutter::followGradient(const VRTChannelGradient& before, VRTChannelGradient& after) {
  const VRTChannelBase* edited = editedFolder_ ? editedFolder_->getChannel() : nullptr;
  const auto follow = [&](const VRTChannelGradientFolder& old, VRTChannelGradientFolder& fresh) {
    if (edited == &old && VRTHoldEqualSamples(old, fresh)) editedFolder_ = fresh.getRef();
  };
  follow(before.rgbFolder, after.rgbFolder);
  follow(before.alphaFolder, after.alphaFolder);
}

void VRTGradientGutter::abandonDrag() {
  _pDeleted.reset();
  _moving = MovingNothing;
}

// Positions may have crossed, and what was dragged off goes. The observers of the change may destroy the gutter.
void VRTGradientGutter::settle(const VRTGesture::Ending& ending) {
  if (ending.by == VRTGesture::By::Picker) return;
  const VRTPortChange change(ending.port);
  if (_pDeleted && ending.release) {
    NSShowAnimationEffect(NSAnimationEffectDisappearingItemDefault, ending.release->globalPosition(), NSSize{});
  }
  _pDeleted.reset();
  const bool moved = std::exchange(_moving, MovingNothing) != MovingNothing || ending.by == VRTGesture::By::Keys;
  VRTChannelGradientFolder* folder = moved ? editedFolderOf(ending.port.get()) : nullptr;
  if (folder) folder->sortAndRename();
}

void VRTGradientGutter::hideEvent(QHideEvent* event) {
  VRTGradientView::hideEvent(event);
  endLostInteraction();
}

void VRTGradientGutter::changeEvent(QEvent* event) {
  VRTGradientView::changeEvent(event);
  if (event->type() == QEvent::EnabledChange && !isEnabled()) endLostInteraction();
}
