// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/QuartzComposer/QCComposition.h"
#include "Platform/QuartzComposer/QCPatch.h"

// Inside this room only.

class GFNodeManager;
class QCNodeTable;

// Makes an instance of a composition, its nodes through the manager. Null, with the cause, when a node cannot be made
// or lacks a port that the composition names, values do not fit, or ports that are connected do not match.
std::shared_ptr<QCPatch> QCPatchWithComposition(const QCComposition& composition, GFNodeManager& manager,
                                                std::string* reason);

// The ports of such an instance, with nothing behind them. It is made under the same rules, but from the shells of the
// compositions in the table, so that checking many compositions takes no longer than reading them.
std::shared_ptr<QCPatch> QCShellOfComposition(const QCComposition& composition, GFNodeManager& manager,
                                              const QCNodeTable& table, std::string* reason);
