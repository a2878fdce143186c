// SPDX-License-Identifier: BSD-3-Clause
#pragma once

namespace host {

// The standard input for several processes, each of which reads it from its start.
class SharedInput {
 public:
  // Reads it to its end; this process then finds the same there. Throws Failure.
  SharedInput();
  ~SharedInput();
  SharedInput(const SharedInput&) = delete;
  SharedInput& operator=(const SharedInput&) = delete;

  // A descriptor at its start, which is the caller's. Throws Failure.
  int opened() const;

 private:
  int memory_ = -1;
};

// In a process whose standard input that is: from its start again. Nothing for any other, which can be read but once.
void rewindSharedInput();

}  // namespace host
