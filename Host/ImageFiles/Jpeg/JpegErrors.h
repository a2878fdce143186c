// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdio>

#include <jpeglib.h>

#include <csetjmp>

namespace host {

// What the library says goes nowhere but here. It leaves its functions by a jump when it gives up, which it also does
// where it would only warn of lost data: after damage it would go on with what it makes up.
class JpegErrors {
 public:
  JpegErrors();
  JpegErrors(const JpegErrors&) = delete;
  JpegErrors& operator=(const JpegErrors&) = delete;

  jpeg_error_mgr* manager() { return &manager_.base; }
  const char* firstMessage() const { return message_; }  // empty before there is one

  void forget() { message_[0] = 0; }

  // Runs calls of the library; false when it gave up. Nothing that a step makes may need destroying.
  template <class Step>
  bool run(Step step) {
    if (setjmp(manager_.jump) != 0) {  // NOLINT: the library's way
      return false;
    }
    step();
    return true;
  }

 private:
  struct Manager {
    jpeg_error_mgr base;  // first: the library hands its address back
    std::jmp_buf jump;
    JpegErrors* errors;
  };
  static JpegErrors& errorsOf(j_common_ptr library) { return *reinterpret_cast<Manager*>(library->err)->errors; }
  [[noreturn]] static void giveUp(j_common_ptr library);
  static void giveUpOnWarning(j_common_ptr library, int level);

  Manager manager_{};
  char message_[JMSG_LENGTH_MAX] = {};
};

}  // namespace host
