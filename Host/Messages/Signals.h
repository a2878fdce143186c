// SPDX-License-Identifier: BSD-3-Clause
#pragma once

namespace host {

// From here on a signal by which people end a program (interrupt, hang-up, termination) first removes files that are
// not finished, and a limit on the size of files makes writing fail instead of ending the program. Signals that the
// program was started to ignore stay ignored.
void prepareForSignals();

}  // namespace host
