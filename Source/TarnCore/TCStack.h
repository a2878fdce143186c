// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

struct CrawlFree {
  void operator()(char* name) const { std::free(name); }
};

// One frame of a stack. Addresses are as wide as the platform's.
struct CrawlFrame {
  std::uintptr_t programCounter = 0;
  std::uintptr_t frameAddress = 0;  // the stack pointer of the frame at the call that it is in
  // The symbol with one leading underscore before the platform's own spelling ("__ZN3FooC2Ev", "_main"), or a method
  // name of the object runtime that begins with '-' or '+'. Allocated with malloc; null when unknown.
  std::unique_ptr<char, CrawlFree> symbolName;
  std::uintptr_t offset = 0;  // of the program counter from the symbol's start; 0 without a symbol
};

// The frames of the calling thread, innermost first: the caller of this function is frame 0 when `skip` is 0. At most
// kVortoMaximumFrames, so that runaway recursion still gives a trace.
std::vector<CrawlFrame> VortoCollectFrames(int skip);

inline constexpr std::size_t kVortoMaximumFrames = 512;

// Prints the header and the frames from index `firstFrame` (negative counts as 0) onward through VortoPrint. The name
// of each frame is freed once it is printed. A null program name leaves the name out of the header.
void VortoPrintFrames(std::vector<CrawlFrame>& frames, const char* programName, int firstFrame, int detailed);
