// SPDX-License-Identifier: BSD-3-Clause
#pragma once

namespace host {

// The whole of a process that renders previews for another one, which started it: order after order until that one is
// gone. What fails is reported. Throws Failure when no other process is connected, or none can be talked to any more.
void runPreviewServer();

}  // namespace host
