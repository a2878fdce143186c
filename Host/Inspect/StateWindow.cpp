// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/StateWindow.h"

#include "Host/Inspect/DocumentActions.h"
#include "Host/Inspect/Drops.h"
#include "Host/Inspect/EditorSlot.h"
#include "Host/Inspect/InspectorMetrics.h"
#include "Host/Inspect/MessageBar.h"
#include "Host/Inspect/ParameterSection.h"

#include <QAction>
#include <QCloseEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QVBoxLayout>

namespace host {
namespace {

constexpr int kMargin = 20;

}  // namespace

StateWindow::StateWindow(std::unique_ptr<ParameterDocument> document)
    : document_(std::move(document)), messages_(new MessageBar(this)) {
  actions_ = new DocumentActions(*document_, *messages_, *this,
                                 {.valueChanged = [](QCPort&) {},
                                  .loaded = [this](QCPort&) { section_->slot().refresh(); },
                                  .changed = [this] { updateTitle(); }});
  actions_->openAction->setShortcuts({QKeySequence::Open, actions_->openAction->shortcut()});
  section_ = new ParameterSection(*document_->parameters().front(), *actions_, ParameterSection::Folding::None, this);
  section_->setFixedWidth(inspectorMetrics::kContentWidth);
  auto* inner = new QVBoxLayout;
  inner->setContentsMargins(kMargin - inspectorMetrics::kLeftInset, kMargin - 6,
                            kMargin - inspectorMetrics::kRightInset, kMargin - 2);
  inner->addWidget(section_);
  auto* outer = new QVBoxLayout(this);
  outer->setContentsMargins(0, 0, 0, 0);
  outer->setSpacing(0);
  outer->addLayout(inner);
  outer->addStretch(1);
  outer->addWidget(messages_);
  setAcceptDrops(true);
  updateTitle();
}

void StateWindow::updateTitle() {
  if (!section_) return;
  const ParameterDocument& document = actions_->document();
  section_->updateTitle();
  const QString file = QString::fromStdString(document.file(section_->port()));
  setWindowTitle(QFileInfo(file).fileName() + "[*] \u2013 Vorto");
  setWindowModified(document.isModified(section_->port()));
}

void StateWindow::closeEvent(QCloseEvent* event) {
  event->setAccepted(actions_->mayClose());
}

void StateWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (!droppedFile(*event->mimeData()).empty()) event->acceptProposedAction();
}

void StateWindow::dropEvent(QDropEvent* event) {
  event->acceptProposedAction();
  actions_->load(droppedFile(*event->mimeData()), &section_->port());
}

}  // namespace host
