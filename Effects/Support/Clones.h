// SPDX-License-Identifier: BSD-3-Clause
#pragma once

// Marks a plain loop over a row that the compiler is to translate twice, for any processor and for wide vectors; the
// right one is picked when the plug-in is loaded. Both give the same bytes: arithmetic is strict in either.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
#define VORTO_CLONES __attribute__((target_clones("avx2", "default")))
#else
#define VORTO_CLONES
#endif
