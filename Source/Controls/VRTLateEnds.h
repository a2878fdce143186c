// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <functional>

// Ends of interactions that are made up for. What makes them necessary (a view is hidden, loses the keyboard, dies)
// happens in the middle of Qt's own work, which does not expect that views are destroyed there; who is told of an end
// may do that. So such ends wait until Qt is done: they come when the event loop runs next, or before the next start of
// an interaction.
void VRTEndLater(std::function<void()> end);
// Runs all that wait, in their order.
void VRTDeliverLateEnds();
