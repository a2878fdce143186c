// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>

namespace host {

// The standard input of this process, which can be read but once unless it is kept: in memory, for those that read it
// again and for other processes.

// The first that reads it keeps it. Before anybody has read it.
void keepStandardInputWhenRead();
// This process was given kept memory as its standard input.
void standardInputIsKept();

// Keeps it now, unless that has been done. Throws Failure, also for more than kLargestFile.
void keepStandardInput();
bool isStandardInputKept();
// A descriptor at its start, which is the caller's; -1 where it is not kept. Throws Failure.
int openedStandardInput();

// For one that reads it from here to its end: at its start where it is kept or is to be. Throws Failure.
void beginStandardInput();
bool wasStandardInputRead();  // by this process

// More than any file that is read has, in bytes.
inline constexpr std::uint64_t kLargestFile = std::uint64_t{1} << 34;

// Whether a path means something that only this process has open: "/dev/stdin", "/dev/fd/3", "/proc/self/fd/3".
bool isOwnDescriptor(const std::string& path);

}  // namespace host
