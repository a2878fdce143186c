// SPDX-License-Identifier: BSD-3-Clause
#include "Errors.h"

#include "Host/Messages/Failure.h"
#include "Host/Texts/TextReader.h"

namespace vorto::python {

void bindErrors(py::module_& module) {
  static const py::object error = py::exception<Error>(module, "Error", PyExc_Exception);
  error.attr("__doc__") = "Something that was to be done failed; the message is the framework's reason.";
  py::register_exception_translator([](std::exception_ptr caught) {
    try {
      if (caught) std::rethrow_exception(caught);
    } catch (const Error& failure) {
      PyErr_SetString(error.ptr(), failure.what());
    } catch (const host::TextFault& failure) {
      PyErr_SetString(PyExc_ValueError, failure.what());
    } catch (const host::Failure& failure) {
      PyErr_SetString(error.ptr(), failure.what());
    }
  });
}

}  // namespace vorto::python
