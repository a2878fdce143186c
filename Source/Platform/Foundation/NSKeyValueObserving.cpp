// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSKeyValueObserving.h"

#include "Platform/Foundation/NSObservationTable.h"
#include "Platform/Foundation/PropertyList.h"

#include <algorithm>

namespace {

PropertyList changeOfKindSetting() {
  PropertyList change;
  change.set("kind", PropertyList::integer(1));
  return change;
}

}  // namespace

NSKeyValueObserver::NSKeyValueObserver() : liveness_(std::make_shared<NSKeyValueObserver*>(this)) {}

NSKeyValueObserver::~NSKeyValueObserver() {
  *liveness_ = nullptr;
}

void NSObservationTable::add(NSKeyValueObserver* observer, std::string_view keyPath, void* context) {
  dropTheDead();
  registrations_.push_back({++lastNumber_, observer->liveness_, std::string(keyPath), context});
}

void NSObservationTable::remove(const NSKeyValueObserver* observer, std::string_view keyPath) {
  const auto newest = std::find_if(registrations_.rbegin(), registrations_.rend(), [&](const Registration& each) {
    return *each.observer == observer && each.keyPath == keyPath && observer != nullptr;
  });
  if (newest != registrations_.rend()) {
    registrations_.erase(std::next(newest).base());
  }
}

void NSObservationTable::notify(const std::string& key, NSObject* object) {
  std::vector<std::uint64_t> numbers;
  for (const Registration& each : registrations_) {
    if (each.keyPath == key) {
      numbers.push_back(each.number);
    }
  }
  if (numbers.empty()) {
    return;
  }
  const PropertyList change = changeOfKindSetting();
  for (const std::uint64_t number : numbers) {
    const Registration* registration = find(number);
    if (registration == nullptr || *registration->observer == nullptr) {
      continue;
    }
    // The observer may change the table: nothing of it is used once it is told.
    (*registration->observer)->observeValueForKeyPath(key, object, change, registration->context);
  }
}

const NSObservationTable::Registration* NSObservationTable::find(std::uint64_t number) const {
  const auto place =
      std::lower_bound(registrations_.begin(), registrations_.end(), number,
                       [](const Registration& each, std::uint64_t value) { return each.number < value; });
  return place == registrations_.end() || place->number != number ? nullptr : &*place;
}

void NSObservationTable::dropTheDead() {
  std::erase_if(registrations_, [](const Registration& each) { return *each.observer == nullptr; });
}
