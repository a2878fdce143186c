// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Module.h"

#include <string>

class QCPort;
namespace host {
class EffectRendering;
}

namespace vorto::python {

// Sets the port that a keyword names (by its key, or by its name with underscores for blanks; "levels.gamma" names a
// part of one) from what Python has: numbers, booleans, words of a menu, colors as three or four numbers or as text,
// gradients and levels as objects, as dictionaries, as text, preset:NAME or the path of a state; pictures as such or as
// paths. Returns the port. Throws where it is unknown or the value does not fit, naming the port.
QCPort& setPort(host::EffectRendering& effect, const std::string& keyword, const py::handle& value);

// A port's value as Python has it: colors as tuples, pictures as Bitmaps; None where there is none.
py::object portValue(const QCPort& port);

}  // namespace vorto::python
