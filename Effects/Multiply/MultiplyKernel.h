// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>

namespace vorto::effects {

// Multiplies the colors where both images cover: F * B + F * (1 - background alpha) + B * (1 - foreground alpha) for
// colors F and B, premultiplied; alpha is that of "over". Integer depths round once and stop at 1.0, which only a color
// above its alpha can reach.
template <class Layout>
void multiplyRow(const typename Layout::Channel* background, const typename Layout::Channel* foreground,
                 typename Layout::Channel* out, std::size_t count);

}  // namespace vorto::effects
