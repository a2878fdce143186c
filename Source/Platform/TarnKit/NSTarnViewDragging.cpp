// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/NSTarnView.h"

#include <QDragEnterEvent>
#include <QMimeData>
#include <QPointer>

namespace {

// What Qt calls an operation. A generic one is what the source proposes.
Qt::DropAction actionFor(std::uint32_t operation, const QDropEvent& event) {
  if (operation & NSDragOperationCopy) return Qt::CopyAction;
  if (operation & NSDragOperationMove) return Qt::MoveAction;
  if (operation & NSDragOperationLink) return Qt::LinkAction;
  if (!(operation & NSDragOperationGeneric)) return Qt::IgnoreAction;
  return event.possibleActions() & Qt::CopyAction ? Qt::CopyAction : event.proposedAction();
}

}  // namespace

void NSTarnView::registerForDraggedTypes(const QStringList& types) {
  draggedTypes_ = types;
  setAcceptDrops(!types.isEmpty());
}

std::uint32_t NSTarnView::draggingEntered(const NSDraggingInfo&) {
  return NSDragOperationNone;
}

std::uint32_t NSTarnView::draggingUpdated(const NSDraggingInfo&) {
  return dragOperation_;
}

void NSTarnView::draggingExited() {}

bool NSTarnView::performDragOperation(const NSDraggingInfo&) {
  return false;
}

bool NSTarnView::wantsDrag(const NSDraggingInfo& info) const {
  for (const QString& type : draggedTypes_) {
    if (info.pasteboardHasType(type)) return true;
  }
  return false;
}

void NSTarnView::answerDrag(QDropEvent& event, std::uint32_t operation) {
  dragOperation_ = operation;
  event.setDropAction(actionFor(operation, event));
  event.setAccepted(event.dropAction() != Qt::IgnoreAction);
}

// The drag is accepted as such, whatever a drop would do just here: Qt sends no further moves to a view that refuses to
// be entered.
void NSTarnView::dragEnterEvent(QDragEnterEvent* event) {
  const NSDraggingInfo info(*event, *this);
  if (!wantsDrag(info)) return event->ignore();
  const QPointer<NSTarnView> self(this);
  const std::uint32_t operation = draggingEntered(info);
  if (self) answerDrag(*event, operation);
  event->accept();
}

void NSTarnView::dragMoveEvent(QDragMoveEvent* event) {
  const QPointer<NSTarnView> self(this);
  const std::uint32_t operation = draggingUpdated(NSDraggingInfo(*event, *this));
  if (self) answerDrag(*event, operation);
}

void NSTarnView::dragLeaveEvent(QDragLeaveEvent*) {
  draggingExited();
}

void NSTarnView::dropEvent(QDropEvent* event) {
  const NSDraggingInfo info(*event, *this);
  const Qt::DropAction action = actionFor(dragOperation_, *event);
  const bool done = wantsDrag(info) && performDragOperation(info);
  event->setDropAction(done ? action : Qt::IgnoreAction);
  event->setAccepted(done);
}
