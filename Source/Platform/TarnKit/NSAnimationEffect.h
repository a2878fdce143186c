// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSGeometry.h"
#include "Platform/Visibility.h"

#include <QPoint>

constexpr int NSAnimationEffectDisappearingItemDefault = 0;
constexpr int NSAnimationEffectPoof = 10;

// Shows a short animation centred at a point of the screen and returns at once; it cleans up after itself. Both effects
// are a puff of smoke. A size of 0 x 0 means the effect's own. Without an application, or while it quits, nothing
// happens.
TARN_EXPORT void NSShowAnimationEffect(int effect, QPoint globalCentre, NSSize size);
