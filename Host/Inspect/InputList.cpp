// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/InputList.h"

#include "Host/Inspect/Drops.h"
#include "Host/Inspect/FlatButton.h"
#include "Host/Inspect/InspectorMetrics.h"
#include "Host/Inspect/WindowText.h"

#include <QDropEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <utility>

namespace host {
namespace {

constexpr int kLabelWidth = 78;
constexpr int kRowHeight = 26;

}  // namespace

InputList::InputList(const QStringList& roles, Told told, QWidget* parent) : QWidget(parent), told_(std::move(told)) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(inspectorMetrics::kLeftInset, 0, inspectorMetrics::kRightInset, 0);
  column->setSpacing(4);
  for (qsizetype i = 0; i < roles.size(); ++i) {
    auto* row = new QWidget(this);
    row->setAcceptDrops(true);
    row->installEventFilter(this);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    auto* label = new QLabel(roles[i], row);
    label->setFixedWidth(kLabelWidth);
    auto* button = new FlatButton(FlatButton::Look::Well, row);
    button->setFixedHeight(kRowHeight);
    label->setBuddy(button);
    layout->addWidget(label);
    layout->addWidget(button, 1);
    column->addWidget(row);
    const auto input = static_cast<std::size_t>(i);
    QObject::connect(button, &QAbstractButton::clicked, this, [this, input] { told_.wanted(input); });
    button->setProperty("role", roles[i]);
    buttons_.append(button);
    rows_.append(row);
  }
  setPaths({});
}

void InputList::setPaths(const QStringList& paths) {
  for (qsizetype i = 0; i < buttons_.size(); ++i) {
    const QString path = paths.value(i);
    const QString name = path.isEmpty() ? windowText("Open\u2026") : QFileInfo(path).fileName();
    QAbstractButton* button = buttons_[i];
    button->setText(name);
    button->setToolTip(path.isEmpty() ? windowText("Open a picture, sequence or clip, or drop one here") : path);
    button->setAccessibleName(button->property("role").toString() + ": " + name);
  }
}

bool InputList::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::DragEnter) {
    auto* drag = static_cast<QDragEnterEvent*>(event);
    if (!droppedFile(*drag->mimeData()).empty()) drag->acceptProposedAction();
    return true;
  }
  if (event->type() == QEvent::Drop) {
    auto* drop = static_cast<QDropEvent*>(event);
    const qsizetype row = rows_.indexOf(static_cast<QWidget*>(watched));
    const std::string path = droppedFile(*drop->mimeData());
    if (row < 0 || path.empty()) return false;
    drop->acceptProposedAction();
    told_.dropped(static_cast<std::size_t>(row), QString::fromStdString(path));
    return true;
  }
  return false;
}

}  // namespace host
