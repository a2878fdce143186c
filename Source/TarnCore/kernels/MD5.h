// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>

namespace vorto::kernels {

// The block transform of RFC 1321 on `count` consecutive blocks of 64 bytes, which may lie at any address.
void md5Blocks(std::uint32_t state[4], const unsigned char* blocks, std::size_t count);

// The same, written as the RFC has it: what the fast form is compared with.
void md5BlocksScalar(std::uint32_t state[4], const unsigned char* blocks, std::size_t count);

}  // namespace vorto::kernels
