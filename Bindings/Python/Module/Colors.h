// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "TarnCore/TCColor.h"

#include <string>

namespace vorto::python {

// The color that a text names, as CSS writes it. ValueError with the place of the fault.
VortoColor colorOfText(const std::string& text);

}  // namespace vorto::python
