// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>

// What the kernels know of memory.
namespace vorto::kernels {

// Whether a destination of so many bytes is written past the caches: when it would not stay in them, and a line that is
// not read before it is written saves a third of the traffic. Not on processors whose cores write more slowly that way.
bool isStreamed(std::size_t bytes);

enum class Streaming { ByMachine, Never, Always };
void setStreaming(Streaming streaming);  // for the whole process, for tests

// Whether a loop that loads ahead of what it stores would read its own results. Two names of the same memory are no
// such case when as many bytes are written as read.
inline bool overlapsShifted(const std::uint8_t* destination, std::size_t written, const std::uint8_t* source,
                            std::size_t read) {
  if (destination == source && written == read) return false;
  return destination < source + read && source < destination + written;
}

// Copies as std::memmove does. Here and below, `streamed` writes past the caches where that is possible: where the two
// do not overlap and lie as it takes.
void copyBytes(std::uint8_t* destination, const std::uint8_t* source, std::size_t bytes, bool streamed);

// Exchanges the contents of two ranges that do not overlap.
void swapBytes(std::uint8_t* first, std::uint8_t* second, std::size_t bytes);

// The definitions.
void copyBytesScalar(std::uint8_t* destination, const std::uint8_t* source, std::size_t bytes);
void swapBytesScalar(std::uint8_t* first, std::uint8_t* second, std::size_t bytes);

}  // namespace vorto::kernels
