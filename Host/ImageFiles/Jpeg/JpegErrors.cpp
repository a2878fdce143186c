// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Jpeg/JpegErrors.h"

#include <jerror.h>

namespace host {
namespace {

// Warnings of what says nothing about pixels; the library goes on with what it has.
bool isHarmless(j_common_ptr library) {
  switch (library->err->msg_code) {
    case JWRN_JFIF_MAJOR:
    case JWRN_ADOBE_XFORM:
    case JWRN_NOT_SEQUENTIAL:
    case JWRN_BOGUS_PROGRESSION:
      return true;
    case JWRN_EXTRANEOUS_DATA:  // between markers; behind the first scan's it may be pixels
      return library->is_decompressor && reinterpret_cast<j_decompress_ptr>(library)->input_scan_number == 0;
    default:
      return false;
  }
}

}  // namespace

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
  if (level < 0 && !isHarmless(library)) giveUp(library);  // others are remarks
}

}  // namespace host
