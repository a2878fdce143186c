// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

// Puts the straight color of each pixel, and its alpha, through tables.
//
// Premultiplication is taken off and put back with the new alpha. Where alpha is 0 there is nothing to take off: the
// color is taken as it stands, and stays when the new alpha is 0 as well.
namespace vorto::effects {

// One value for each value of a channel. Of bytes the entries are wide, and of words there are more than that, so that
// vectors may read whole lanes.
template <class Channel>
using LevelsTable = std::vector<std::conditional_t<sizeof(Channel) == 1, std::uint32_t, std::uint16_t>>;

template <class Channel>
inline constexpr std::size_t kLevelsTableSize = sizeof(Channel) == 1 ? 256 : 65536 + 3;

template <class Channel>
struct LevelsTables {
  LevelsTable<Channel> red, green, blue;  // kLevelsTableSize each
  LevelsTable<Channel> alpha;             // as large, or empty where alpha stays

  bool keepsAlpha() const { return alpha.empty(); }
};

// For RGBA8, ARGB8 and RGBA16 (PixelLayout.h). The rows do not overlap.
template <class Layout>
void levelsRow(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count,
               const LevelsTables<typename Layout::Channel>& tables);

// The definition.
template <class Layout>
void levelsRowScalar(const typename Layout::Channel* in, typename Layout::Channel* out, std::size_t count,
                     const LevelsTables<typename Layout::Channel>& tables);

}  // namespace vorto::effects
