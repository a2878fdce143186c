// SPDX-License-Identifier: BSD-3-Clause
#pragma once

// Where the program that runs a foreign plug-in finds what it was given.
namespace vorto::frei0r {

inline constexpr int kLifeline = 3;  // a pipe that nothing is written to; its other end closes with the host
inline constexpr int kReport = 4;    // describing: a pipe that takes the report
inline constexpr int kSocket = 4;    // rendering: takes orders, gives answers
inline constexpr int kFrames = 5;    // rendering: SharedFrames

}  // namespace vorto::frei0r
