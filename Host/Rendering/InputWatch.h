// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSKeyValueObserving.h"
#include "Platform/QuartzComposer/QCPatch.h"

namespace host {

// Whether any input of a patch was set, or changed in place, since forget(): whoever did it, all changes of a port are
// announced. It does not outlive the patch.
class InputWatch : public NSKeyValueObserver {
 public:
  explicit InputWatch(const QCPatch& patch) {
    for (const auto& port : patch.inputPorts()) port->addObserver(this, "value", 0, nullptr);
  }
  bool hasSeenChange() const { return hasSeenChange_; }
  void forget() { hasSeenChange_ = false; }

  void observeValueForKeyPath(const std::string&, NSObject*, const PropertyList&, void*) override {
    hasSeenChange_ = true;
  }

 private:
  bool hasSeenChange_ = false;
};

}  // namespace host
