// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCPlugIn.h"

void definedNowhere(GFNodeManager& manager);

QC_PLUGIN_ENTRY(definedNowhere)
