// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

namespace vorto::frei0r {

// Takes orders on kSocket until the host closes it: the exit code.
int renderWith(const std::string& path);

}  // namespace vorto::frei0r
