// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Jpeg/JpegErrors.h"

namespace host {

JpegErrors::JpegErrors() {
  jpeg_std_error(&manager_.base);
  manager_.base.error_exit = giveUp;
  manager_.base.emit_message = giveUpOnWarning;
  manager_.errors = this;
}

void JpegErrors::giveUp(j_common_ptr library) {
  JpegErrors& errors = errorsOf(library);
  if (errors.message_[0] == 0) library->err->format_message(library, errors.message_);
  std::longjmp(errors.manager_.jump, 1);
}

void JpegErrors::giveUpOnWarning(j_common_ptr library, int level) {
  if (level < 0) giveUp(library);  // others are remarks
}

}  // namespace host
