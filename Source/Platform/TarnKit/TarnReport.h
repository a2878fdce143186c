// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

// Prints a line on standard error the first time that this text is reported in the process.
void TarnReportOnce(const std::string& text);
