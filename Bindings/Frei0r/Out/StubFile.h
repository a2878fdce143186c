// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>

namespace frei0r {

// What a stub stands for.
struct StubContents {
  std::string effect;
  std::uint32_t inputs = 0;
  std::string module;  // the module's path; empty: where it lies from the stub's folder
};

// Writes a stub: a copy of the template among the program's libraries, with its record filled. The old file stays where
// that fails, and where it is none that this function wrote. Throws Failure.
void writeStub(const std::string& path, const StubContents& contents);

// The path of the module among the program's libraries. Throws Failure where it is not installed.
std::string modulePath();

}  // namespace frei0r
