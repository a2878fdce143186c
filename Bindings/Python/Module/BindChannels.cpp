// SPDX-License-Identifier: BSD-3-Clause
#include "Module.h"

namespace vorto::python {

void bindChannels(py::module_&) {}

}  // namespace vorto::python
