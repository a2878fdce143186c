// SPDX-License-Identifier: BSD-3-Clause
#pragma once

namespace host {

// Puts the program with the window, vorto-inspect, in this one's place, with the same arguments. Throws Failure when it
// is not installed or cannot be started; does not return otherwise.
[[noreturn]] void executeInspector(char** argv);

}  // namespace host
