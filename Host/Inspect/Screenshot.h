// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

class QWidget;

namespace host {

// Shows the window, waits until it is on the screen (or off it, without a display), and writes a picture of it in
// device pixels. Throws Failure when it does not appear or cannot be written; the old file stays then.
void writeScreenshot(QWidget& window, const std::string& path);

}  // namespace host
