// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <filesystem>

// What the kernel says of the machine's graphics cards, read from its folder of them (/sys/class/drm).
namespace cgl {

// The connectors that show a picture.
std::uint32_t activeDisplays(const std::filesystem::path& cards);
// The dedicated memory of the first card that has any, in bytes; 0 when none has.
std::uint64_t dedicatedMemory(const std::filesystem::path& cards);
// The machine's main memory in bytes.
std::uint64_t mainMemory();

}  // namespace cgl
