// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/PresetPart.h"

#include "Host/Inspect/FlatButton.h"
#include "Host/Inspect/InspectorMetrics.h"
#include "Host/Inspect/PresetTray.h"
#include "Host/Inspect/UndoHistory.h"
#include "Host/Inspect/WindowText.h"
#include "Platform/QuartzComposer/QCPort.h"

#include <QVBoxLayout>

namespace host {

PresetPart::PresetPart(QCPort& port, StateKind kind, QWidget* parent)
    : QWidget(parent), port_(port), kind_(kind), button_(new FlatButton(FlatButton::Look::Disclosure, this)) {
  setFixedWidth(inspectorMetrics::kContentWidth);
  button_->setText(windowText("Presets"));
  button_->setAccessibleName(windowText("Presets"));
  QObject::connect(button_, &QAbstractButton::toggled, this, [this](bool on) { setOpen(on); });
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(4);
  column->addWidget(button_, 0, Qt::AlignLeft);
}

void PresetPart::setOpen(bool open) {
  button_->setChecked(open);
  if (open && !tray_) {
    tray_ = new PresetTray(kind_,
                           {.present = [this] { return port_.stateValue(); },
                            .apply = [this](const PropertyList& state) { setEditedState(port_, state); }},
                           this);
    tray_->setFixedHeight(tray_->sizeHint().height());
    layout()->addWidget(tray_);
  }
  if (tray_) tray_->setVisible(open);
}

}  // namespace host
