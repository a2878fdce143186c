// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

namespace host {

// Says something on standard error that is no failure, in one line.
void remark(const std::string& text);

}  // namespace host
