// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTGesture.h"

#include "Controls/VRTInteractions.h"

#include <utility>

VRTGesture::VRTGesture(Settle settle) : settle_(std::move(settle)), life_(std::make_shared<char>()) {}

VRTGesture::~VRTGesture() {
  life_.reset();
  if (!isOpen()) return;
  const std::shared_ptr<QCPort> port = port_.lock();
  by_ = By::Nothing;
  if (port) VRTPostEndInteraction(port.get());
}

VRTGesture::Alive VRTGesture::alive() const {
  Alive alive;
  alive.life_ = life_;
  return alive;
}

bool VRTGesture::start(By by, const std::shared_ptr<QCPort>& port) {
  const Alive owner = alive();
  by_ = by;
  port_ = VRTObjectReference<QCPort>(port.get());
  VRTPostStartInteraction(port.get());
  return owner && by_ == by;
}

// Closed first, so that whatever happens next the end is posted once. From there on the view may be gone.
void VRTGesture::close(const NSEvent* release, std::shared_ptr<QCPort> port, const Settle& settle) {
  const Ending ending{std::move(port), std::exchange(by_, By::Nothing), release};
  heldKeys_.clear();
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
  if (heldKeys_.empty()) loseKeys();
  return true;
}

void VRTGesture::loseKeys() {
  if (by_ == By::Keys) end();
}

void VRTGesture::lose() {
  if (by_ != By::Picker) end();
}
