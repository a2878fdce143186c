// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <functional>

class QAccessibleEvent;

// Makes views and their parts known to Qt's accessibility interface. Calling it again does nothing.
void NSInstallViewAccessibility();

// Hears, besides assistive technology and whether or not there is any, what views tell of their parts; for tests. Null
// hears nothing any more.
using NSAccessibilityListener = std::function<void(QAccessibleEvent& event)>;
void NSListenToAccessibility(NSAccessibilityListener heard);
