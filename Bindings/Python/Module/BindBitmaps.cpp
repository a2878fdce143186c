// SPDX-License-Identifier: BSD-3-Clause
#include "Module.h"

namespace vorto::python {

void bindBitmaps(py::module_&) {}

}  // namespace vorto::python
