// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/PresetNameDialog.h"

#include "Host/Inspect/WindowText.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

namespace host {

PresetNameDialog::PresetNameDialog(const QStringList& collections, Callbacks callbacks, QWidget* parent)
    : QDialog(parent), callbacks_(std::move(callbacks)) {
  setWindowTitle(windowText("Save as Preset"));
  setAttribute(Qt::WA_DeleteOnClose);
  name_ = new QLineEdit(this);
  collection_ = new QComboBox(this);
  collection_->setEditable(true);
  collection_->addItem(windowText("My Presets"));
  collection_->addItems(collections);
  hint_ = new QLabel(this);
  hint_->setForegroundRole(QPalette::PlaceholderText);
  hint_->setWordWrap(true);
  buttons_ = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Cancel, this);
  buttons_->button(QDialogButtonBox::Cancel)->setText(windowText("Cancel"));

  auto* form = new QFormLayout;
  form->addRow(windowText("Name:"), name_);
  form->addRow(windowText("Collection:"), collection_);
  auto* column = new QVBoxLayout(this);
  column->addLayout(form);
  column->addWidget(hint_);
  column->addWidget(buttons_);
  QObject::connect(name_, &QLineEdit::textChanged, this, [this] { update(); });
  QObject::connect(collection_, &QComboBox::editTextChanged, this, [this] { update(); });
  QObject::connect(buttons_, &QDialogButtonBox::rejected, this, [this] { reject(); });
  QObject::connect(buttons_, &QDialogButtonBox::accepted, this, [this] {
    callbacks_.save(name_->text(), collection());
    accept();
  });
  update();
  resize(340, sizeHint().height());
}

// The first one stands for none.
QString PresetNameDialog::collection() const {
  const QString text = collection_->currentText().trimmed();
  return text == collection_->itemText(0) ? QString() : text;
}

void PresetNameDialog::update() {
  const QString name = name_->text().trimmed();
  const bool isTaken = !name.isEmpty() && callbacks_.isTaken(name, collection());
  QPushButton* save = buttons_->button(QDialogButtonBox::Save);
  save->setEnabled(!name.isEmpty());
  save->setText(windowText(isTaken ? "Replace" : "Save"));
  hint_->setText(isTaken ? windowText("There is a preset of this name; it will be replaced.") : QString());
}

}  // namespace host
