// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTGesture.h"

#include "Controls/VRTInteractions.h"
#include "Controls/VRTLateEnds.h"

#include <utility>

VRTGesture::VRTGesture(Settle settle) : settle_(std::move(settle)), life_(std::make_shared<char>()) {}

VRTGesture::~VRTGesture() {
  life_.reset();
  if (!isOpen()) return;
  VRTEndLater([reference = port_] {
    if (const std::shared_ptr<QCPort> port = reference.lock()) VRTPostEndInteraction(port.get());
  });
}

VRTGesture::Alive VRTGesture::alive() const {
  Alive alive;
  alive.life_ = life_;
  return alive;
}

bool VRTGesture::start(By by, const std::shared_ptr<QCPort>& port) {
  const Alive owner = alive();
  end();
  if (!owner || !catchUp() || isOpen()) return false;
  if (by == By::Mouse) releaseIsMadeUpFor_ = false;
  by_ = by;
  port_ = VRTObjectReference<QCPort>(port.get());
  VRTPostStartInteraction(port.get());
  return owner && by_ == by;
}

bool VRTGesture::catchUp() const {
  const Alive owner = alive();
  VRTDeliverLateEnds();
  return static_cast<bool>(owner);
}

// Closed first, so that whatever happens next the end is posted once. From there on the view may be gone.
void VRTGesture::close(const NSEvent* release, std::shared_ptr<QCPort> port, const Settle& settle) {
  const Ending ending{std::move(port), std::exchange(by_, By::Nothing), release};
  heldKeys_.clear();
  isLost_ = false;
  const Settle copy = settle;
  if (copy) copy(ending);
  VRTPostEndInteraction(ending.port.get());
}

void VRTGesture::end() {
  endWith(settle_);
}

void VRTGesture::endWith(const Settle& settle) {
  if (!isOpen()) return;
  if (by_ == By::Mouse) releaseIsMadeUpFor_ = true;
  close(nullptr, port_.lock(), settle);
}

bool VRTGesture::clearForPress() {
  if (!catchUp()) return false;
  const Alive owner = alive();
  end();
  if (!owner) return false;
  releaseIsMadeUpFor_ = false;
  return true;
}

void VRTGesture::release(const NSEvent& event, const std::shared_ptr<QCPort>& port) {
  if (std::exchange(releaseIsMadeUpFor_, false)) return;
  close(&event, isOpen() ? port_.lock() : port, settle_);
}

bool VRTGesture::hold(int key, const std::shared_ptr<QCPort>& port) {
  heldKeys_.insert(key);
  return isOpen() || start(By::Keys, port);
}

bool VRTGesture::letGo(int key) {
  if (heldKeys_.erase(key) == 0) return false;
  if (heldKeys_.empty() && by_ == By::Keys) end();
  return true;
}

void VRTGesture::loseKeys() {
  if (by_ == By::Keys) endLate();
}

void VRTGesture::lose() {
  if (by_ != By::Picker) endLate();
}

void VRTGesture::endLate() {
  if (!isOpen() || isLost_) return;
  isLost_ = true;
  VRTEndLater([this, owner = alive()] {
    if (owner && isLost_) end();
  });
}
