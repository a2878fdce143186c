// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSKeyValueObserving.h"
#include "Platform/QuartzComposer/QCPort.h"

#include <functional>
#include <utility>

namespace host {

// Calls a function after every change of a port's value, as long as it lives.
class PortWatch : public NSKeyValueObserver {
 public:
  PortWatch(QCPort& port, std::function<void()> changed) : changed_(std::move(changed)) {
    port.addObserver(this, "value", 0, nullptr);
  }
  void observeValueForKeyPath(const std::string&, NSObject*, const PropertyList&, void*) override { changed_(); }

 private:
  const std::function<void()> changed_;
};

}  // namespace host
