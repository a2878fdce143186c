// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Texts/ParameterNotes.h"

namespace host {

void noteAddedStops(Notes& notes, std::size_t count, const char* source) {
  if (count == 0) return;
  notes.push_back((count == 1 ? "1 stop was" : std::to_string(count) + " stops were") +
                  std::string(" added, so that ") + source + " is met within 1/255");
}

}  // namespace host
