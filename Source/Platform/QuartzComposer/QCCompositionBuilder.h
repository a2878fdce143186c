// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/QuartzComposer/QCComposition.h"
#include "Platform/QuartzComposer/QCPatch.h"

// Inside this room only.

class GFNodeManager;

// Makes an instance of a composition, its nodes through the manager. Null, with the cause, when a node cannot be made
// or lacks a port that the composition names, values do not fit, or ports that are connected do not match.
std::shared_ptr<QCPatch> QCPatchWithComposition(const QCComposition& composition, GFNodeManager& manager,
                                                std::string* reason);
