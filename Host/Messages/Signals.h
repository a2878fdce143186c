// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <sys/types.h>

#include <csignal>

namespace host {

// The signals by which people end a program.
inline constexpr int kEndingSignals[] = {SIGINT, SIGTERM, SIGHUP};

// From here on a signal by which people end a program (interrupt, hang-up, termination) first ends the processes that
// it has started and removes files that are not finished, and a limit on the size of files makes writing fail instead
// of ending the program. Signals that the program was started to ignore stay ignored.
void prepareForSignals();

// A process that this one has started and waits for: a signal that ends this one ends it first, and waits until it has
// cleared up. Until noLongerEnds(), which is called before anything else can have its number.
void endWithThisProgram(pid_t process);
void noLongerEnds(pid_t process);

}  // namespace host
