// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/EffectChooser.h"

#include "Host/Inspect/WindowText.h"
#include "Platform/QuartzComposer/QCPatch.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

namespace host {
namespace {

constexpr int kName = Qt::UserRole;
constexpr int kSearched = Qt::UserRole + 1;

QString descriptionOf(const std::string& name) {
  const auto patch = describedEffect(name);
  const PropertyList* text = patch ? patch->attributes().find("description") : nullptr;
  return text ? QString::fromStdString(text->stringValue()) : QString();
}

}  // namespace

QString effectKindTitle(EffectKind kind) {
  switch (kind) {
    case EffectKind::Filter:
      return windowText("Filters");
    case EffectKind::Transition:
      return windowText("Transitions");
    case EffectKind::Generator:
      return windowText("Generators");
    case EffectKind::BlendMode:
      break;
  }
  return windowText("Blend Modes");
}

EffectChooser::EffectChooser(const std::string& present, std::function<void(const std::string& name)> chosen,
                             QWidget* parent)
    : QDialog(parent), chosen_(std::move(chosen)), field_(new QLineEdit(this)), list_(new QListWidget(this)) {
  setWindowTitle(windowText("Choose an Effect"));
  setAttribute(Qt::WA_DeleteOnClose);
  field_->setPlaceholderText(windowText("Search by name or what it does"));
  field_->setAccessibleName(windowText("Search"));
  field_->setClearButtonEnabled(true);
  field_->installEventFilter(this);
  list_->setFrameShape(QFrame::NoFrame);
  list_->setAccessibleName(windowText("Effects"));
  list_->setUniformItemSizes(true);
  QListWidgetItem* current = nullptr;
  for (const EffectKind kind : kEffectKinds) {
    for (const std::string& name : effectNames(kind)) {
      const QString text = QString::fromStdString(name);
      const QString detail = descriptionOf(name);
      auto* item = new QListWidgetItem(text + QStringLiteral("   \u2013   ") + effectKindTitle(kind), list_);
      item->setData(kName, text);
      item->setData(kSearched, QString(text + ' ' + effectKindTitle(kind) + ' ' + detail));
      item->setToolTip(detail);
      if (name == present && !current) current = item;
    }
  }
  if (current) list_->setCurrentItem(current);
  QObject::connect(field_, &QLineEdit::textChanged, this, [this](const QString& text) { search(text); });
  QObject::connect(field_, &QLineEdit::returnPressed, this, [this] { take(); });
  QObject::connect(list_, &QListWidget::itemActivated, this, [this] { take(); });
  QObject::connect(list_, &QListWidget::itemDoubleClicked, this, [this] { take(); });
  auto* column = new QVBoxLayout(this);
  column->addWidget(field_);
  column->addWidget(list_, 1);
  resize(420, 480);
}

void EffectChooser::search(const QString& text) {
  const QStringList words = text.split(' ', Qt::SkipEmptyParts);
  QListWidgetItem* first = nullptr;
  for (int i = 0; i < list_->count(); ++i) {
    QListWidgetItem* item = list_->item(i);
    const QString whole = item->data(kSearched).toString();
    const bool fits =
        std::ranges::all_of(words, [&](const QString& word) { return whole.contains(word, Qt::CaseInsensitive); });
    item->setHidden(!fits);
    if (fits && !first) first = item;
  }
  list_->setCurrentItem(first);
}

void EffectChooser::take() {
  const QListWidgetItem* item = list_->currentItem();
  if (!item || item->isHidden()) return;
  const std::string name = item->data(kName).toString().toStdString();
  close();
  chosen_(name);
}

// Up and down go through the list while one types.
bool EffectChooser::eventFilter(QObject*, QEvent* event) {
  if (event->type() != QEvent::KeyPress) return false;
  const int key = static_cast<QKeyEvent*>(event)->key();
  if (key != Qt::Key_Up && key != Qt::Key_Down) return false;
  const int step = key == Qt::Key_Up ? -1 : 1;
  for (int row = list_->currentRow() + step; row >= 0 && row < list_->count(); row += step) {
    if (list_->item(row)->isHidden()) continue;
    list_->setCurrentRow(row);
    break;
  }
  return true;
}

}  // namespace host
