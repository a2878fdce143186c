// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/EffectWindow.h"

#include "Host/Inspect/Appearance.h"
#include "Host/Inspect/DocumentActions.h"
#include "Host/Inspect/Drops.h"
#include "Host/Inspect/InspectorColumn.h"
#include "Host/Inspect/MessageBar.h"
#include "Host/Inspect/TransportBar.h"
#include "Host/Inspect/WindowText.h"
#include "Host/Viewer/Viewer.h"
#include "TarnCore/TCBitmap.h"

#include <QAction>
#include <QCloseEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMenuBar>
#include <QVBoxLayout>

namespace host {
namespace {

QString pictureText(const VortoBitmap& bitmap, double zoom) {
  const QString depth =
      bitmap.bitsPerChannel == 32 ? windowText("float") : windowText("%1-bit").arg(bitmap.bitsPerChannel);
  return QStringLiteral("%1 \u00d7 %2   %3   %4 %")
      .arg(bitmap.width)
      .arg(bitmap.height)
      .arg(depth)
      .arg(zoom * 100, 0, 'f', 0);
}

PreviewPictureRef pictureOf(const BitmapRef& result) {
  auto picture = std::make_shared<PreviewPicture>();
  picture->result = result;
  if (result) picture->size = {result->width, result->height};
  return picture;
}

}  // namespace

EffectWindow::EffectWindow(EffectSession& session)
    : session_(session), render_([this] { render(); }), preview_(new Viewer(this)), messages_(new MessageBar(this)) {
  transport_ = new TransportBar(
      session.timeline(), session.position(), [this](std::uint64_t position) { return goTo(position); }, this);
  actions_ = new DocumentActions(session.document(), *messages_, *this,
                                 {.valueChanged = [this](QCPort&) { render_.request(); },
                                  .loaded = [this](QCPort& port) { column_->loaded(port); },
                                  .changed = [this] { updateTitle(); }});
  column_ = new InspectorColumn(
      *actions_, {QString::fromStdString(session.name()), QString::fromStdString(session.description())}, this);
  preview_->whenChanged(this, [this] {
    if (session_.result()) transport_->setPictureText(pictureText(*session_.result(), preview_->zoom()));
  });
  layOut();
  addMenus();
  setAcceptDrops(true);
  updateTitle();
  resize(1120, 700);
  preview_->setSpaceCall([this] { transport_->togglePlaying(); });
  preview_->setFocus();
}

void EffectWindow::layOut() {
  auto* center = new QWidget(this);
  auto* left = new QVBoxLayout;
  left->setSpacing(0);
  left->addWidget(preview_, 1);
  left->addWidget(messages_);
  left->addWidget(transport_);
  auto* row = new QHBoxLayout(center);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(0);
  row->addLayout(left, 1);
  row->addWidget(column_);
  setCentralWidget(center);
}

void EffectWindow::addMenus() {
  auto* savePictureAction = new QAction(windowText("Save Picture\u2026"), this);
  savePictureAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_E));
  QObject::connect(savePictureAction, &QAction::triggered, this, [this] { savePicture(); });
  QMenu* file = menuBar()->addMenu(windowText("&File"));
  file->addActions({actions_->openAction, actions_->saveAction, actions_->saveAsAction});
  file->addSeparator();
  file->addAction(savePictureAction);
  file->addSeparator();
  file->addAction(actions_->quitAction);
  QMenu* edit = menuBar()->addMenu(windowText("&Edit"));
  edit->addActions({actions_->undoAction, actions_->redoAction});
  edit->addSeparator();
  edit->addAction(actions_->resetAction);
}

bool EffectWindow::goTo(std::uint64_t position) {
  if (!actions_->tried([&] { session_.goTo(position); })) return false;
  render_.cancel();  // what is pending is done here
  return render();
}

bool EffectWindow::render() {
  ++renderCount_;
  return actions_->tried([this] { preview_->setPicture(pictureOf(session_.render())); });
}

void EffectWindow::savePicture() {
  const QString path =
      QFileDialog::getSaveFileName(this, windowText("Save Picture"), QString::fromStdString(session_.name()) + ".png",
                                   windowText("Pictures (*.png *.jpg *.jpeg *.tif *.tiff *.exr)"));
  if (path.isEmpty()) return;
  if (render_.isPending()) renderNow();
  actions_->tried([&] { session_.savePicture(path.toStdString()); });
}

void EffectWindow::updateTitle() {
  if (column_) column_->updateTitles();
  const QString names = QString::fromStdString(session_.inputNames());
  setWindowTitle((names.isEmpty() ? QString() : names + " \u2013 ") + QString::fromStdString(session_.name()));
}

void EffectWindow::closeEvent(QCloseEvent* event) {
  event->setAccepted(actions_->mayClose());
}

// Space comes here from widgets that have no use for it: buttons press themselves, lists open, fields take it as text.
void EffectWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Space || event->modifiers() != Qt::NoModifier) return QMainWindow::keyPressEvent(event);
  if (!event->isAutoRepeat()) transport_->togglePlaying();
}

void EffectWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (!droppedFile(*event->mimeData()).empty()) event->acceptProposedAction();
}

void EffectWindow::dropEvent(QDropEvent* event) {
  event->acceptProposedAction();
  actions_->load(droppedFile(*event->mimeData()), actions_->activePort());
}

}  // namespace host
