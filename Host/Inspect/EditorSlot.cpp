// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/EditorSlot.h"

#include "HistogramEditor/VRTHistogramEditor.h"
#include "Host/Inspect/WindowText.h"
#include "Platform/TarnKit/NSTarnView.h"
#include "Ports/VRTPorts.h"

#include <QEvent>
#include <QLabel>
#include <QVBoxLayout>

namespace host {

EditorSlot::EditorSlot(QCPort& port, QWidget* parent) : QWidget(parent), port_(port) {
  if (auto* viewing = dynamic_cast<ParameterView*>(&port)) editor_ = viewing->setupParameterView();
  if (!editor_) {
    auto* label = new QLabel(windowText("This parameter has no editor."), this);
    label->setForegroundRole(QPalette::PlaceholderText);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(label);
    return;
  }
  editor_->setParent(this);
  editor_->move(0, 0);
  editor_->show();
  editor_->installEventFilter(this);
  setFixedSize(editor_->size());
  attach(false);  // until it is shown
}

QSize EditorSlot::sizeHint() const {
  return editor_ ? editor_->size() : QWidget::sizeHint();
}

void EditorSlot::attach(bool on) {
  if (on == attached_) return;
  auto* levels = dynamic_cast<VRTHistogramEditor*>(editor_.data());
  if (!levels) return;
  levels->setHistogramPort(on ? dynamic_cast<VRTHistogramPort*>(&port_) : nullptr);
  attached_ = on;
}

void EditorSlot::refresh() {
  if (!isVisible()) return;
  attach(false);
  attach(true);
}

bool EditorSlot::eventFilter(QObject* watched, QEvent* event) {
  // In that order: an editor that is being destroyed sends events too, and is none any more.
  if (event->type() == QEvent::Resize && watched == editor_) setFixedSize(editor_->size());
  return QWidget::eventFilter(watched, event);
}

void EditorSlot::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  attach(true);
}

void EditorSlot::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  attach(false);
}

}  // namespace host
