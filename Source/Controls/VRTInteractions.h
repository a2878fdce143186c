// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

class QCPort;

// What an editor posts with its port as the sender around a gesture that is one thing to people: a drag, keys that are
// held, a picker that changes the value while it is open.
//
// Every start has one end. One that got lost (the editor is hidden, disabled, detached or destroyed in mid-drag) is
// made up for: it is posted when the events at hand have been handled, and before the next start. So observers may
// destroy the editor, and its window, at any notification.
inline constexpr const char* kVortoStartInteraction = "VortoStartInteraction";
inline constexpr const char* kVortoEndInteraction = "VortoEndInteraction";

// Post them to the default notification center, for editors of a host's own.
TARN_EXPORT void VRTPostStartInteraction(const QCPort* port);
TARN_EXPORT void VRTPostEndInteraction(const QCPort* port);
