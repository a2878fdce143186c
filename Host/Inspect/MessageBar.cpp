// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/MessageBar.h"

#include "Host/Inspect/Appearance.h"
#include "Host/Inspect/WindowText.h"

#include <QApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

namespace host {

MessageBar::MessageBar(QWidget* parent) : QWidget(parent), label_(new QLabel(this)) {
  takeColors();
  setAutoFillBackground(true);

  label_->setWordWrap(true);
  label_->setTextFormat(Qt::PlainText);
  label_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  auto* close = new QToolButton(this);
  close->setText(QStringLiteral("\u00d7"));
  close->setAutoRaise(true);
  close->setAccessibleName(windowText("Close the message"));
  QObject::connect(close, &QToolButton::clicked, this, [this] { clear(); });

  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(16, 6, 8, 6);
  row->addWidget(label_, 1);
  row->addWidget(close, 0, Qt::AlignTop);
  hide();
}

void MessageBar::takeColors() {
  const InspectorColors colors = inspectorColors(QApplication::palette());
  QPalette own = QApplication::palette();
  own.setColor(QPalette::Window, colors.errorGround);
  for (const auto role : {QPalette::WindowText, QPalette::ButtonText, QPalette::Text})
    own.setColor(role, colors.errorText);
  setPalette(own);
}

void MessageBar::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::ApplicationPaletteChange) takeColors();
}

void MessageBar::show(const QString& text) {
  label_->setText(text);
  setVisible(true);
}

void MessageBar::clear() {
  label_->clear();
  setVisible(false);
}

QString MessageBar::text() const {
  return label_->text();
}

}  // namespace host
