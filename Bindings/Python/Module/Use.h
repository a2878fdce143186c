// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Errors.h"

#include <string>
#include <thread>

namespace vorto::python {

// An object that one thread at a time may use, and that gives the interpreter's lock up meanwhile: who comes in between
// gets an exception. The lock is held where one is made and where it ends, so that nothing else is needed.
class InUse {
 public:
  InUse(bool& flag, const std::string& what) : flag_(flag) {
    if (flag_) throw Error(what + " is in use by another thread: give each thread one of its own");
    flag_ = true;
  }
  ~InUse() { flag_ = false; }
  InUse(const InUse&) = delete;
  InUse& operator=(const InUse&) = delete;

 private:
  bool& flag_;
};

}  // namespace vorto::python
