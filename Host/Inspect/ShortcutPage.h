// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QAction>
#include <QDialog>
#include <QList>
#include <QString>

class QLineEdit;
class QTreeWidget;

namespace host {

// What can be done with keys, in groups.
struct ShortcutGroup {
  QString title;
  QList<QAction*> actions;                  // those without keys are left out
  QList<std::pair<QString, QString>> more;  // what no action does: the keys, and what they do
};

// A page of all keys, with a field to search in it. It stays beside the window while people work.
class ShortcutPage : public QDialog {
 public:
  ShortcutPage(const QList<ShortcutGroup>& groups, QWidget* parent);

  void search(const QString& text);  // rows that hold all of its words, in any case

 private:
  QLineEdit* field_;
  QTreeWidget* list_;
};

// The keys of the gradient and levels editors, and of number fields.
QList<ShortcutGroup> editorShortcuts();

}  // namespace host
