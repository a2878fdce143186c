// SPDX-License-Identifier: BSD-3-Clause
#pragma once

class QCPort;
class QWidget;

namespace host {

// The editor of a number, boolean, index, string or color port, as wide as it is given; null for other kinds. It shows
// every change of the value, whoever makes it. A drag of a slider and an open color dialog are interactions. The wheel
// changes a value only while its editor has the keyboard, so that scrolling past does not.
//
// The port must outlive it.
QWidget* makeValueEditor(QCPort& port, QWidget* parent);

}  // namespace host
