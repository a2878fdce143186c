// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>

// The OpenGL enumerants used here, by their standard names without the prefix (which OpenGL's own headers define as
// macros).
namespace gl {

constexpr std::uint32_t UNSIGNED_SHORT = 0x1403;
constexpr std::uint32_t FLOAT = 0x1406;
constexpr std::uint32_t HALF_FLOAT = 0x140B;
constexpr std::uint32_t UNSIGNED_INT_8_8_8_8 = 0x8035;
constexpr std::uint32_t UNSIGNED_INT_8_8_8_8_REV = 0x8367;
constexpr std::uint32_t UNSIGNED_SHORT_8_8 = 0x85BA;  // of YCbCr 4:2:2

constexpr std::uint32_t RGB = 0x1907;
constexpr std::uint32_t RGBA = 0x1908;
constexpr std::uint32_t LUMINANCE = 0x1909;
constexpr std::uint32_t LUMINANCE_ALPHA = 0x190A;
constexpr std::uint32_t BGRA = 0x80E1;
constexpr std::uint32_t YCBCR_422 = 0x85B9;

constexpr std::uint32_t RGBA8 = 0x8058;
constexpr std::uint32_t RGBA16 = 0x805B;
constexpr std::uint32_t RGBA32F = 0x8814;
constexpr std::uint32_t RGBA16F = 0x881A;

constexpr std::uint32_t MAX_TEXTURE_SIZE = 0x0D33;
constexpr std::uint32_t RENDERER = 0x1F01;
constexpr std::uint32_t VERSION = 0x1F02;
constexpr std::uint32_t EXTENSIONS = 0x1F03;
constexpr std::uint32_t NUM_EXTENSIONS = 0x821D;

constexpr std::uint32_t GPU_MEMORY_INFO_DEDICATED_VIDMEM = 0x9047;  // KiB

}  // namespace gl
