// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Inspect/ShortcutPage.h"

#include <QAction>
#include <QKeySequence>
#include <QList>
#include <QMenu>
#include <functional>

class QMainWindow;

namespace host {

// An action of a window, by its English text, that works wherever the keyboard is in that window.
QAction* newWindowAction(QWidget& window, const char* text, const QKeySequence& keys, std::function<void()> done);

// A menu of a window's menu bar with groups of actions, separated by lines, and the group of the page of shortcuts that
// they make.
ShortcutGroup addMenu(QMainWindow& window, const QString& title, const QList<QList<QAction*>>& groups,
                      QMenu** menu = nullptr);

// An entry that opens a menu, filled each time it opens.
QAction* newSubMenu(QWidget& window, const char* text, const std::function<void(QMenu& menu)>& fill);

}  // namespace host
