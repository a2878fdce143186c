// SPDX-License-Identifier: BSD-3-Clause
#pragma once

// Makes views and their parts known to Qt's accessibility interface. Calling it again does nothing.
void NSInstallViewAccessibility();
