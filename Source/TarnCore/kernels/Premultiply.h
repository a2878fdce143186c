// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>

namespace vorto::kernels {

// Multiplies the three color bytes c of `count` pixels of four bytes by the pixel's alpha a: floor(c x a / 255) in
// integers. Alpha stays.
void premultiplyRGBA8(std::uint8_t* pixels, std::size_t count);
void premultiplyARGB8(std::uint8_t* pixels, std::size_t count);

// The definitions.
void premultiplyRGBA8Scalar(std::uint8_t* pixels, std::size_t count);
void premultiplyARGB8Scalar(std::uint8_t* pixels, std::size_t count);

}  // namespace vorto::kernels
