// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cinttypes>

// The library's header as C has it: what plug-ins export and hosts look up.
extern "C" {
#pragma GCC visibility push(default)
#include <frei0r.h>
#pragma GCC visibility pop
}
