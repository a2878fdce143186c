// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <pybind11/pybind11.h>

// The parts of the module; each function adds the names of one subject. They are called in this order, so that a later
// one finds the classes of those before it.
namespace vorto::python {

namespace py = pybind11;

void bindErrors(py::module_& module);
void bindValues(py::module_& module);
void bindColors(py::module_& module);
void bindBitmaps(py::module_& module);
void bindChannels(py::module_& module);
void bindRegistry(py::module_& module);
void bindFiles(py::module_& module);
void bindClips(py::module_& module);
void bindDocuments(py::module_& module);
void bindPythonEffects(py::module_& module);

}  // namespace vorto::python
