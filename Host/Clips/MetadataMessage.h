// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/FileMetadata.h"
#include "Host/Processes/Message.h"

namespace host {

void put(MessageWriter& message, const Rational& rational);
Rational takeRational(MessageReader& message);  // throws Failure without a denominator

// All that is said about colors, and what else a clip can say: pixel aspect, frame rate, time code.
void put(MessageWriter& message, const FileMetadata& metadata);
FileMetadata takeMetadata(MessageReader& message);  // throws Failure

}  // namespace host
