// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSNotificationCenter.h"

class QCPort;

namespace host {

// What every editor posts, with its port as the sender, around a gesture that is one thing to people: a drag, a dialog
// that changes the value while it is open.
inline constexpr const char* StartInteraction = "VortoStartInteraction";
inline constexpr const char* EndInteraction = "VortoEndInteraction";

inline void startInteraction(const QCPort& port) {
  NSNotificationCenter::defaultCenter().postNotificationName(StartInteraction, &port);
}

inline void endInteraction(const QCPort& port) {
  NSNotificationCenter::defaultCenter().postNotificationName(EndInteraction, &port);
}

}  // namespace host
