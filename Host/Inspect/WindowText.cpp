// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/WindowText.h"

#include "Controls/VRTLocalizedText.h"

namespace host {

QString windowText(const char* english) {
  return VRTLocalizedTextOfBundle("org.vorto.inspect", english);
}

}  // namespace host
