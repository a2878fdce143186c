// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSNotificationCenter.h"

#include <algorithm>
#include <vector>

struct NSNotificationCenter::Observation::Entry {
  std::string name;
  const void* sender;
  std::function<void(const NSNotification&)> handler;
  bool active = true;
};

struct NSNotificationCenter::State {
  std::vector<std::weak_ptr<Observation::Entry>> entries;  // in the order of registration
};

NSNotificationCenter::Observation::~Observation() {
  if (entry_) {
    entry_->active = false;  // a handler that runs just now keeps itself until it returns
  }
}

NSNotificationCenter::Observation& NSNotificationCenter::Observation::operator=(Observation&& other) noexcept {
  Observation former(std::move(*this));
  entry_ = std::move(other.entry_);
  return *this;
}

NSNotificationCenter& NSNotificationCenter::defaultCenter() {
  // Never destroyed: objects that outlive main() may still post.
  static NSNotificationCenter* const center = new NSNotificationCenter;
  return *center;
}

NSNotificationCenter::NSNotificationCenter() : state_(std::make_shared<State>()) {}
NSNotificationCenter::~NSNotificationCenter() = default;

NSNotificationCenter::Observation NSNotificationCenter::addObserver(
    std::string_view name, const void* sender, std::function<void(const NSNotification&)> handler) {
  std::erase_if(state_->entries, [](const auto& each) { return each.expired(); });
  Observation observation;
  observation.entry_ =
      std::make_shared<Observation::Entry>(Observation::Entry{std::string(name), sender, std::move(handler)});
  state_->entries.push_back(observation.entry_);
  return observation;
}

void NSNotificationCenter::postNotificationName(std::string_view name, const void* sender) {
  const NSNotification notification{std::string(name), sender};
  // A copy: handlers add and remove observers, and may destroy the center. Who is added meanwhile is not told.
  const std::vector<std::weak_ptr<Observation::Entry>> entries = state_->entries;
  for (const auto& each : entries) {
    const std::shared_ptr<Observation::Entry> entry = each.lock();
    if (!entry || !entry->active || entry->name != notification.name || !entry->handler) {
      continue;
    }
    if (entry->sender == nullptr || entry->sender == sender) {
      entry->handler(notification);
    }
  }
}
