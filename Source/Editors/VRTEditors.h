// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

// Makes the editors of this library known to the parameter ports: from then on setupParameterView() of gradient and
// levels ports returns new editors. A host calls it once, after it has made its QApplication; further calls change
// nothing.
TARN_EXPORT void VRTStartEditors();
