// SPDX-License-Identifier: BSD-3-Clause
#pragma once

// Measures, in points, that the parts of the inspector's column share.
namespace host::inspectorMetrics {

inline constexpr int kContentWidth = 236;  // that of the gradient editor; everything is aligned to it
inline constexpr int kSideMargin = 20;     // on the right it also holds the scroll bar
// How far the wells of the editors are inside their frames on the left and on the right; rows keep to it too.
inline constexpr int kLeftInset = 4;
inline constexpr int kRightInset = 2;

}  // namespace host::inspectorMetrics
