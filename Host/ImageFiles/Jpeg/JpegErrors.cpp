// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Jpeg/JpegErrors.h"

namespace host {

JpegErrors::JpegErrors() {
  jpeg_std_error(&manager_.base);
  manager_.base.error_exit = giveUp;
  manager_.base.output_message = note;  // also of the first warning
  manager_.errors = this;
}

void JpegErrors::giveUp(j_common_ptr library) {
  note(library);
  std::longjmp(reinterpret_cast<Manager*>(library->err)->jump, 1);
}

void JpegErrors::note(j_common_ptr library) {
  JpegErrors& errors = errorsOf(library);
  if (errors.message_[0] == 0) library->err->format_message(library, errors.message_);
}

}  // namespace host
