// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Texts/StateKind.h"

namespace host {

const char* stateKindName(StateKind kind) {
  switch (kind) {
    case StateKind::Gradient:
      return "gradient";
    case StateKind::Levels:
      return "levels";
    case StateKind::Opaque:
      break;
  }
  return "opaque";
}

}  // namespace host
