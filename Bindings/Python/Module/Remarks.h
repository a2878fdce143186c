// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Module.h"

#include "Host/Messages/Remark.h"

#include <type_traits>
#include <utility>
#include <vector>

namespace vorto::python {

// Keeps what the host's parts say on this thread, and says it as warnings.
class Remarks {
 public:
  Remarks() : redirected_([this](host::Remark remark) { remarks_.push_back(std::move(remark)); }) {}

  // With the interpreter's lock. Throws where the user has warnings raise exceptions.
  void warn() {
    for (const host::Remark& each : std::exchange(remarks_, {})) {
      if (PyErr_WarnEx(PyExc_UserWarning, each.text.c_str(), 1) != 0) throw py::error_already_set();
    }
  }

 private:
  std::vector<host::Remark> remarks_;
  host::RemarksRedirected redirected_;
};

// Work whose remarks become warnings; what it throws goes on.
template <class Work>
auto withRemarks(Work work) {
  Remarks remarks;
  if constexpr (std::is_void_v<decltype(work())>) {
    work();
    remarks.warn();
  } else {
    auto result = work();
    remarks.warn();
    return result;
  }
}

// The same for work that gives the interpreter's lock up meanwhile.
template <class Work>
auto withoutLock(Work work) {
  return withRemarks([&] {
    const py::gil_scoped_release released;
    return work();
  });
}

}  // namespace vorto::python
