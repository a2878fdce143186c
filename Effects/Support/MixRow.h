// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/Arithmetic.h"

#include <cstddef>

// Rows of mixed(a, b, weight), which see.
namespace vorto::effects {

// `count` channels, one weight for all.
template <class Channel>
void mixRow(const Channel* a, const Channel* b, Channel* out, std::size_t count, MixWeight<Channel> weight);

// `count` pixels of four channels, a weight for each.
template <class Channel>
void mixPixels(const Channel* a, const Channel* b, Channel* out, std::size_t count, const MixWeight<Channel>* weights);

}  // namespace vorto::effects
