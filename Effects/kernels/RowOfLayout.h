// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/PixelLayout.h"

#include <tuple>

namespace vorto::effects {

// The row function of a layout among those of RGBA8, ARGB8, RGBA16 and RGBAFloat, as many as there are, in this order.
template <class Layout, class... Rows>
auto rowOfLayout(Rows... rows) {
  constexpr std::size_t index = std::is_same_v<Layout, RGBA8>    ? 0
                                : std::is_same_v<Layout, ARGB8>  ? 1
                                : std::is_same_v<Layout, RGBA16> ? 2
                                                                 : 3;
  return std::get<index>(std::tuple(rows...));
}

}  // namespace vorto::effects
