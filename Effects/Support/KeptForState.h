// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/PropertyList.h"

#include <optional>
#include <utility>

namespace vorto::effects {

// What was made of a parameter, kept from frame to frame while the parameter's state stays equal.
template <class Made>
class KeptForState {
 public:
  // `make` returns what is made of the parameter that has this state. Of a parameter without one it is made each time.
  template <class Make>
  const Made& of(std::optional<PropertyList> state, Make make) {
    if (!made_ || !state || state != state_) {
      made_ = make();
      state_ = std::move(state);
    }
    return *made_;
  }

 private:
  std::optional<PropertyList> state_;
  std::optional<Made> made_;
};

}  // namespace vorto::effects
