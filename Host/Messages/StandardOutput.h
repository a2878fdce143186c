// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace host {

// First of all: the numbers of the standard input, output and error that the program was started without are taken, so
// that no file which is opened later gets what goes there. Reading and writing them fails, as without.
void occupyStandardDescriptors();

void printText(const std::string& text);
void printBytes(std::span<const std::uint8_t> bytes);

// Throws Failure when something of what was printed did not arrive (a full disk, a pipe that was closed).
void finishStandardOutput();

}  // namespace host
