// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace host {

void printText(const std::string& text);
void printBytes(std::span<const std::uint8_t> bytes);

// Throws Failure when something of what was printed did not arrive (a full disk, a pipe that was closed).
void finishStandardOutput();

}  // namespace host
