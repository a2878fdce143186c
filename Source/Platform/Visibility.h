// SPDX-License-Identifier: BSD-3-Clause
#pragma once

// Every symbol of the shared libraries is hidden unless its declaration carries this mark.
#define TARN_EXPORT __attribute__((visibility("default")))
