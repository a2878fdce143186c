// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Messages/Remark.h"

#include "Host/Messages/Utf8.h"

#include <cstdio>

namespace host {

void remark(const std::string& text) {
  std::fprintf(stderr, "vorto: %s\n", printable(text).c_str());
}

}  // namespace host
