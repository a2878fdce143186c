// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/ShortcutPage.h"

#include "Host/Inspect/WindowText.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace host {
namespace {

QString keysOf(const QAction& action) {
  QStringList keys;
  for (const QKeySequence& sequence : action.shortcuts()) keys.append(sequence.toString(QKeySequence::NativeText));
  return keys.join(QStringLiteral("   "));
}

QString withoutMnemonic(QString text) {
  return text.remove('&').remove(QStringLiteral("\u2026"));
}

void addRow(QTreeWidgetItem* group, const QString& what, const QString& keys) {
  new QTreeWidgetItem(group, {what, keys});
}

QTreeWidgetItem* newGroup(QTreeWidget* list, const QString& title) {
  auto* item = new QTreeWidgetItem(list, {title});
  QFont font = list->font();
  font.setWeight(QFont::DemiBold);
  item->setFont(0, font);
  item->setFirstColumnSpanned(true);
  item->setFlags(Qt::ItemIsEnabled);
  return item;
}

}  // namespace

ShortcutPage::ShortcutPage(const QList<ShortcutGroup>& groups, QWidget* parent)
    : QDialog(parent), field_(new QLineEdit(this)), list_(new QTreeWidget(this)) {
  setWindowTitle(windowText("Keyboard Shortcuts"));
  setAttribute(Qt::WA_DeleteOnClose);
  field_->setPlaceholderText(windowText("Search"));
  field_->setAccessibleName(windowText("Search"));
  field_->setClearButtonEnabled(true);
  list_->setColumnCount(2);
  list_->setHeaderHidden(true);
  list_->setRootIsDecorated(false);
  list_->setIndentation(12);
  list_->setItemsExpandable(false);
  list_->setSelectionMode(QAbstractItemView::NoSelection);
  list_->setFrameShape(QFrame::NoFrame);
  list_->setAccessibleName(windowText("Keyboard Shortcuts"));
  list_->header()->setStretchLastSection(false);
  list_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
  list_->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
  for (const ShortcutGroup& group : groups) {
    auto* item = newGroup(list_, group.title);
    for (const QAction* action : group.actions) {
      if (!action->shortcut().isEmpty()) addRow(item, withoutMnemonic(action->text()), keysOf(*action));
    }
    for (const auto& [keys, what] : group.more) addRow(item, what, keys);
    if (item->childCount() == 0) delete item;
  }
  list_->expandAll();
  QObject::connect(field_, &QLineEdit::textChanged, this, [this](const QString& text) { search(text); });
  auto* column = new QVBoxLayout(this);
  column->addWidget(field_);
  column->addWidget(list_, 1);
  resize(460, 620);
}

void ShortcutPage::search(const QString& text) {
  const QStringList words = text.split(' ', Qt::SkipEmptyParts);
  for (int i = 0; i < list_->topLevelItemCount(); ++i) {
    QTreeWidgetItem* group = list_->topLevelItem(i);
    int shown = 0;
    for (int j = 0; j < group->childCount(); ++j) {
      QTreeWidgetItem* row = group->child(j);
      const QString whole = group->text(0) + ' ' + row->text(0) + ' ' + row->text(1);
      const bool fits =
          std::ranges::all_of(words, [&](const QString& word) { return whole.contains(word, Qt::CaseInsensitive); });
      row->setHidden(!fits);
      if (fits) ++shown;
    }
    group->setHidden(shown == 0);
  }
}

QList<ShortcutGroup> editorShortcuts() {
  return {
      {windowText("Gradient editor"),
       {},
       {{QStringLiteral("Page Up   Page Down"), windowText("The stop before or after; with Shift middle points too")},
        {QStringLiteral("\u2190   \u2192"), windowText("Move what is selected by 1 %; with Shift by 0.1 %")},
        {QStringLiteral("Home   End"), windowText("To the beginning or the end")},
        {QStringLiteral("Ins"), windowText("Add a stop halfway to the next one")},
        {QStringLiteral("Ctrl+D"), windowText("Copy the selected stop beside it")},
        {QStringLiteral("Del"), windowText("Remove the selected stop")},
        {QStringLiteral("Return"), windowText("Open the color panel")}}},
      {windowText("Levels editor"),
       {},
       {{QStringLiteral("Tab"), windowText("From handle to handle")},
        {QStringLiteral("\u2190   \u2192"), windowText("Move the handle by 1 %; with Shift by 0.1 %")},
        {QStringLiteral("Home   End"), windowText("To the beginning or the end")}}},
  };
}

}  // namespace host
