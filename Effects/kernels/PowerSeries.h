// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <numbers>

// x ^ e = 2 ^ (e log2 x), with both functions as series whose terms are the textbook's (M. Abramowitz and I. A. Stegun,
// Handbook of Mathematical Functions, 4.1.27 and 4.2.1).
namespace vorto::effects::power {

// x is 2^k m with m from the root of 1/2 to the root of 2. Added to the bits of x, the first puts k + 1023 above the
// mantissa; the second are the bits of the root of 1/2, from which m's grow.
inline constexpr std::uint64_t kRootOfHalfBits = 0x3FE6A09E667F3BCD;
inline constexpr std::uint64_t kToExponent = 0x3FF0000000000000 - kRootOfHalfBits;
inline constexpr std::uint64_t kMantissa = 0x000FFFFFFFFFFFFF;

// log2 m = 2 / ln 2 (s + s^3 / 3 + s^5 / 5 ...) with s = (m - 1) / (m + 1), at most 0.172. From the highest power on,
// for s squared; what is left out is less than 2^-45 of the whole.
inline constexpr double kTwoOverLn2 = 2 / std::numbers::ln2;
inline constexpr double kLogarithm[] = {kTwoOverLn2 / 17, kTwoOverLn2 / 15, kTwoOverLn2 / 13,
                                        kTwoOverLn2 / 11, kTwoOverLn2 / 9,  kTwoOverLn2 / 7,
                                        kTwoOverLn2 / 5,  kTwoOverLn2 / 3,  kTwoOverLn2};

// 2^f = 1 + f ln 2 + (f ln 2)^2 / 2! ... for f from -1/2 to 1/2. From the highest power on; what is left out is less
// than 2^-32.
inline constexpr double kLn2 = std::numbers::ln2;
inline constexpr double kLn2Squared = kLn2 * kLn2;
inline constexpr double kLn2Fourth = kLn2Squared * kLn2Squared;
inline constexpr double kExponential[] = {kLn2Fourth * kLn2Fourth / 40320,
                                          kLn2Fourth* kLn2Squared* kLn2 / 5040,
                                          kLn2Fourth* kLn2Squared / 720,
                                          kLn2Fourth* kLn2 / 120,
                                          kLn2Fourth / 24,
                                          kLn2Squared* kLn2 / 6,
                                          kLn2Squared / 2,
                                          kLn2,
                                          1};

// No float lies beyond 2 to these, and within them 2^k is a normal double.
inline constexpr double kMostExponent = 1000;
// Adding it rounds to an integer, whose bits are then its last ones.
inline constexpr double kRounder = 0x1.8p52;

}  // namespace vorto::effects::power
