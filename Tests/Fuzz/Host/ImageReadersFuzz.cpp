// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Fuzz/Host/ImageModuleFuzz.h"
