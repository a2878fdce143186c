// SPDX-License-Identifier: BSD-3-Clause
#pragma once

namespace host {

// Each does what it hears of through the connection (kChildSocket), until its other end is gone. Returns the exit code.
int runReader();
int runWriter();

}  // namespace host
