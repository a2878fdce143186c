// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/WindowMenus.h"

#include "Host/Inspect/WindowText.h"

#include <QMainWindow>
#include <QMenuBar>
#include <utility>

namespace host {

QAction* newWindowAction(QWidget& window, const char* text, const QKeySequence& keys, std::function<void()> done) {
  auto* action = new QAction(windowText(text), &window);
  action->setShortcut(keys);
  QObject::connect(action, &QAction::triggered, &window, std::move(done));
  window.addAction(action);
  return action;
}

ShortcutGroup addMenu(QMainWindow& window, const QString& title, const QList<QList<QAction*>>& groups, QMenu** menu) {
  QMenu* added = window.menuBar()->addMenu(title);
  ShortcutGroup shortcuts{QString(title).remove('&'), {}, {}};
  for (const QList<QAction*>& group : groups) {
    if (group.isEmpty()) continue;
    if (!added->isEmpty()) added->addSeparator();
    added->addActions(group);
    for (QAction* action : group) {
      if (!action->menu()) shortcuts.actions.append(action);
      if (action->menu()) shortcuts.actions.append(action->menu()->actions());
    }
  }
  if (menu) *menu = added;
  return shortcuts;
}

QAction* newSubMenu(QWidget& window, const char* text, const std::function<void(QMenu& menu)>& fill) {
  auto* menu = new QMenu(windowText(text), &window);
  QObject::connect(menu, &QMenu::aboutToShow, menu, [menu, fill] {
    menu->clear();
    fill(*menu);
  });
  return menu->menuAction();
}

}  // namespace host
