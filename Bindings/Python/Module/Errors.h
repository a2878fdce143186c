// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Module.h"

#include <string>

namespace vorto::python {

// Thrown in C++, caught as vorto.Error in Python: something that was done failed, for this reason.
class Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace vorto::python
