// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Bindings/Frei0r/In/ForeignEffect.h"

#include <string>
#include <vector>

namespace vorto::frei0r {

struct Described {
  Report report;
  bool isFinal = true;  // false where another try may end otherwise: it took too long, or could not be tried
};

// Has every plug-in loaded and described by a process of its own, as many at once as there are processors. One that
// ends its process, or keeps it for longer than ten seconds (see patience()), gets a report that says so.
std::vector<Described> describePlugIns(const std::vector<std::string>& paths);

}  // namespace vorto::frei0r
