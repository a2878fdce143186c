// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Channels/kernels/GradientDefinition.h"

// Whole gradient tables at the speed of the machine: gradientTableDefinition bit for bit, many positions at once.
namespace vorto::kernels {

void gradientTable(GradientEntries color, GradientEntries opacity, std::uint8_t* out, std::uint32_t count);
void gradientTable(GradientEntries color, GradientEntries opacity, std::uint16_t* out, std::uint32_t count);
void gradientTable(GradientEntries color, GradientEntries opacity, float* out, std::uint32_t count);

}  // namespace vorto::kernels
