// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

// Whether a text is one JSON value and nothing else.
bool isJson(const std::string& text);
