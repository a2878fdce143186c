// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Bindings/Frei0r/In/ForeignEffect.h"
#include "Bindings/Frei0r/In/SharedFrames.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vorto::frei0r {

// One frame to be rendered from the inputs in SharedFrames into its output. An instance lasts as long as the size
// stays; parameters keep their values until others come, also over a change of size.
struct Order {
  FrameSize size;
  double time = 0;                                                // seconds
  std::vector<std::pair<std::uint32_t, ParameterValue>> changed;  // parameters by index
};

Bytes bytesOf(const Order& order);
std::optional<Order> orderOf(std::span<const std::uint8_t> bytes);  // nothing for bytes that are no order

}  // namespace vorto::frei0r
