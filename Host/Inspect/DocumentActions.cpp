// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/DocumentActions.h"

#include "Host/Inspect/MessageBar.h"
#include "Host/Inspect/WindowText.h"
#include "Host/Rendering/PortKinds.h"

#include <QAction>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QWidget>
#include <algorithm>
#include <exception>
#include <utility>

namespace host {
namespace {

QString stateFilter() {
  return windowText("States (*.plist *.gradient *.levels *.inks);;All files (*)");
}

}  // namespace

DocumentActions::DocumentActions(ParameterDocument& document, MessageBar& messages, QWidget& window, Told told)
    : QObject(&window),
      document_(document),
      messages_(messages),
      window_(window),
      told_(std::move(told)),
      recorder_(document, {.valueChanged = [this](QCPort& port) { told_.valueChanged(port); },
                           .interactionStarted =
                               [this](QCPort& port) {
                                 if (ParameterDocument::hasStateFile(port)) active_ = &port;
                               },
                           .interactionsChanged =
                               [this] {
                                 if (told_.held) told_.held(document_.history().isInteracting());
                               },
                           .historyChanged = [this] { updateActions(); }}) {
  const auto& ports = document.parameters();
  const auto first = std::find_if(ports.begin(), ports.end(),
                                  [](const QCPort* port) { return ParameterDocument::hasStateFile(*port); });
  active_ = first == ports.end() ? nullptr : *first;

  openAction = addAction("Open State\u2026", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_O), [this] { open(active_); });
  saveAction = addAction("Save State", QKeySequence::Save, [this] { save(*active_); });
  saveAsAction =
      addAction("Save State As\u2026", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S), [this] { saveAs(*active_); });
  undoAction = addAction("Undo", QKeySequence::Undo, [this] {
    document_.history().undo();
    updateActions();
  });
  redoAction = addAction("Redo", QKeySequence(), [this] {
    document_.history().redo();
    updateActions();
  });
  redoAction->setShortcuts({Qt::CTRL | Qt::SHIFT | Qt::Key_Z, Qt::CTRL | Qt::Key_Y});
  resetAction = addAction("Reset", QKeySequence(), [this] { document_.resetAll(); });
  quitAction = addAction("Quit", QKeySequence(Qt::CTRL | Qt::Key_Q), [this] { window_.close(); });
  for (QAction* action : {openAction, saveAction, saveAsAction}) action->setEnabled(active_ != nullptr);
  resetAction->setEnabled(!ports.empty());
  updateActions();
}

QAction* DocumentActions::addAction(const char* text, const QKeySequence& keys, const std::function<void()>& done) {
  auto* action = new QAction(windowText(text), this);
  action->setShortcut(keys);
  QObject::connect(action, &QAction::triggered, this, done);
  window_.addAction(action);
  return action;
}

void DocumentActions::updateActions() {
  undoAction->setEnabled(document_.history().canUndo());
  redoAction->setEnabled(document_.history().canRedo());
  if (told_.changed) told_.changed();
}

bool DocumentActions::tried(const std::function<void()>& work) {
  try {
    work();
    messages_.clear();
    return true;
  } catch (const std::exception& error) {
    messages_.show(QString::fromStdString(error.what()));
    return false;
  }
}

void DocumentActions::load(const std::string& path, QCPort* preferred) {
  tried([&] {
    QCPort& port = document_.load(path, preferred);
    active_ = &port;
    recorder_.commitNow();
    told_.loaded(port);
  });
}

void DocumentActions::open(QCPort* port) {
  const QString path = QFileDialog::getOpenFileName(&window_, windowText("Open State"), {}, stateFilter());
  if (!path.isEmpty()) load(path.toStdString(), port);
}

void DocumentActions::save(QCPort& port) {
  if (document_.file(port).empty()) {
    saveAs(port);
  } else if (tried([&] { document_.save(port, document_.file(port)); })) {
    updateActions();
  }
}

void DocumentActions::saveAs(QCPort& port) {
  const QString present = QString::fromStdString(document_.file(port));
  const QString suggested = present.isEmpty() ? QString::fromStdString(port.name()).toLower() + ".plist" : present;
  const QString path = QFileDialog::getSaveFileName(&window_, windowText("Save State"), suggested, stateFilter());
  if (!path.isEmpty() && tried([&] { document_.save(port, path.toStdString()); })) updateActions();
}

bool DocumentActions::mayClose() {
  const std::vector<QCPort*> unsaved = document_.unsaved();
  if (unsaved.empty()) return true;
  QStringList names;
  for (const QCPort* port : unsaved) names.append(QString::fromStdString(port->name()));
  QMessageBox box(QMessageBox::Question, "Vorto", windowText("Save the changes to %1?").arg(names.join(", ")),
                  QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, &window_);
  box.setInformativeText(windowText("Without saving they are lost."));
  box.button(QMessageBox::Save)->setText(windowText("Save"));
  box.button(QMessageBox::Discard)->setText(windowText("Discard"));
  box.button(QMessageBox::Cancel)->setText(windowText("Cancel"));
  const int chosen = box.exec();
  if (chosen != QMessageBox::Save) return chosen == QMessageBox::Discard;
  for (QCPort* port : unsaved) save(*port);
  return document_.unsaved().empty();
}

void DocumentActions::reset(QCPort& port) {
  document_.reset(port);
}

}  // namespace host
