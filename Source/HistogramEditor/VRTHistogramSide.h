// SPDX-License-Identifier: BSD-3-Clause
#pragma once

// Which image of an effect a histogram is of.
enum class VRTHistogramSide { Input, Result };
