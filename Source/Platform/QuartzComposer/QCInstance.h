// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/QuartzComposer/QCPatch.h"

// Inside this room only.

// What a factory makes. Null, with a line on standard error, when it throws or makes nothing.
std::shared_ptr<QCPatch> QCMakeInstance(std::string_view name, const QCPatch::Factory& factory);

// One line on standard error, whatever the names in it hold: what (a path or a name), and why.
void QCReport(std::string_view what, std::string_view reason);
