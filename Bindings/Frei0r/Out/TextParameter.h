// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

class QCPort;

namespace frei0r {

// Ports whose values are texts at the border: indexes, strings, gradients, levels, opaque data, images.

std::string explanationOfText(const QCPort& port);

// What the port holds, on one line; empty for opaque data, images, and what has no text.
std::string textOfPort(const QCPort& port);

// Gradients and levels are read as text first, and where that is none, as the path of a state. Throws Failure where the
// text does not fit, and then nothing has changed. An empty one changes string ports alone.
void setPortFromParameter(QCPort& port, const std::string& text);

}  // namespace frei0r
