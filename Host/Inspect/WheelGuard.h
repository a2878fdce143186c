// SPDX-License-Identifier: BSD-3-Clause
#pragma once

class QWidget;

namespace host {

// The wheel acts on the widget only while it has the keyboard; otherwise it scrolls what the widget is in.
void guardWheel(QWidget& widget);

}  // namespace host
