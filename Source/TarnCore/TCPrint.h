// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

#include <cstdarg>

// Diagnostic text of the framework.
//
// Everything goes to standard output, or, when the environment variable tcPrintUseLogFile exists at the first message
// (whatever its value), to the file /tmp/output.PID.log. The file is truncated when it is opened, once in a process,
// and flushed after every message; while it cannot be opened nothing is printed, and the next message tries again. Any
// thread may print; an indented message is two and a stack trace many, between which those of other threads may come.

// The one output routine. Returns what the C library's print function returns; -1 when the log file cannot be opened.
TARN_EXPORT int VortoPrintVA(const char* format, std::va_list args) __attribute__((format(printf, 1, 0)));
TARN_EXPORT int VortoPrint(const char* format, ...) __attribute__((format(printf, 1, 2)));
// The message behind 2 x level spaces.
TARN_EXPORT int VortoPrintIndent(unsigned level, const char* format, ...) __attribute__((format(printf, 2, 3)));

// Reports that code was reached which must never run, or which is declared but not implemented: one line that names the
// source and the line, then a tab. The message travels with the call and is not part of that output. Flushes and
// aborts.
[[noreturn]] TARN_EXPORT void VortoUnreachable(const char* file, int line, const char* message);

// The program name that stack traces show, "UNKNOWN" before the first call. The pointer is kept, not copied; with null
// the header shows the process id alone.
TARN_EXPORT void VortoPrintStackStart(const char* programName);
TARN_EXPORT void VortoPrintStackStop();  // does nothing
// Prints the stack of the caller, innermost frame first, from frame index `firstFrame` onward (0 is the caller itself;
// negative counts as 0). A non-zero `detailed` adds frame addresses and offsets; `reserved` is not used.
TARN_EXPORT void VortoPrintStack(int firstFrame, int reserved, int detailed);
