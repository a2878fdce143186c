// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>

namespace vorto::effects {

// Porter and Duff's "over" on premultiplied pixels, color and alpha alike: foreground + background * (1 - foreground
// alpha). Integer depths round the product and stop at 1.0, which only a color above its alpha can reach.
template <class Layout>
void overRow(const typename Layout::Channel* background, const typename Layout::Channel* foreground,
             typename Layout::Channel* out, std::size_t count);

}  // namespace vorto::effects
