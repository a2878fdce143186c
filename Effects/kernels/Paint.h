// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/PixelLayout.h"

#include <array>
#include <cstddef>

namespace vorto::effects {

// Makes all of `count` pixels the given one: of RGBA8, ARGB8, RGBA16 or RGBAFloat, as it is stored.
template <class Layout, class Channel = typename Layout::Channel>
void paintRow(const std::array<Channel, 4>& pixel, Channel* out, std::size_t count);

}  // namespace vorto::effects
