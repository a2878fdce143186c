// SPDX-License-Identifier: BSD-3-Clause
#pragma once

// ICU's C interface with UniChar as its unit, so that no text is cast on its way in or out. Include ICU through this
// header only; never from a public one.
#define UCHAR_TYPE unsigned short
#define U_SHOW_CPLUSPLUS_API 0

#include <unicode/ucnv.h>
#include <unicode/ucnv_err.h>
#include <unicode/ucol.h>
#include <unicode/ucsdet.h>
#include <unicode/uloc.h>
#include <unicode/ustring.h>
