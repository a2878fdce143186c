// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/Arithmetic.h"

#include <cstddef>

// Rows of mixed(a, b, weight), which see. Weights lie in their range. Rows do not overlap.
namespace vorto::effects {

// `count` pixels of four channels, one weight for all.
template <class Channel>
void mixRow(const Channel* a, const Channel* b, Channel* out, std::size_t count, MixWeight<Channel> weight);

// `count` pixels of four channels, a weight for each.
template <class Channel>
void mixPixels(const Channel* a, const Channel* b, Channel* out, std::size_t count, const MixWeight<Channel>* weights);

// The definitions.
template <class Channel>
void mixRowScalar(const Channel* a, const Channel* b, Channel* out, std::size_t count, MixWeight<Channel> weight);
template <class Channel>
void mixPixelsScalar(const Channel* a, const Channel* b, Channel* out, std::size_t count,
                     const MixWeight<Channel>* weights);

}  // namespace vorto::effects
