// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QString>

namespace host {

// What people read in the inspector's windows, in the language of the editors: the entry for an English text in the
// string tables of the bundle "VortoInspect", or that text itself. Texts with placeholders have them as QString::arg()
// takes them.
QString windowText(const char* english);

}  // namespace host
