// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/PresetView.h"

#include "Host/Inspect/Appearance.h"
#include "Host/Inspect/PresetDelegate.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

namespace host {
namespace {

// A thin bar without buttons.
constexpr const char* kQuietScrollBar =
    "QScrollBar { background: transparent; width: 10px; margin: 0; }"
    "QScrollBar::handle { background: rgba(128, 128, 132, 110); border-radius: 3px; min-height: 24px; margin: 2px; }"
    "QScrollBar::handle:hover { background: rgba(128, 128, 132, 190); }"
    "QScrollBar::add-line, QScrollBar::sub-line { height: 0; }"
    "QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }";

}  // namespace

PresetView::PresetView(QWidget* parent) : QListView(parent) {
  setViewMode(QListView::IconMode);
  setMovement(QListView::Static);
  setResizeMode(QListView::Adjust);
  setSelectionMode(QAbstractItemView::SingleSelection);
  setEditTriggers(QAbstractItemView::EditKeyPressed);
  setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setDragEnabled(true);
  setDragDropMode(QAbstractItemView::DragOnly);
  setFrameShape(QFrame::NoFrame);
  setMouseTracking(true);
  viewport()->setAttribute(Qt::WA_Hover);
  verticalScrollBar()->setStyleSheet(kQuietScrollBar);
}

void PresetView::setEmptyText(const QString& text) {
  emptyText_ = text;
  viewport()->update();
}

bool PresetView::isOnStar(const QModelIndex& index, const QPoint& place) const {
  return index.isValid() && index.flags() & Qt::ItemIsEnabled &&
         PresetDelegate::starRect(visualRect(index)).contains(place);
}

void PresetView::mousePressEvent(QMouseEvent* event) {
  const QModelIndex index = indexAt(event->position().toPoint());
  const bool isLeft = event->button() == Qt::LeftButton;
  pressed_ = isLeft ? QPersistentModelIndex(index) : QPersistentModelIndex();
  wasStarPressed_ = isLeft && isOnStar(index, event->position().toPoint());
  if (!wasStarPressed_) QListView::mousePressEvent(event);
}

void PresetView::mouseReleaseEvent(QMouseEvent* event) {
  const QPoint place = event->position().toPoint();
  const QModelIndex index = indexAt(place);
  const bool isClick = event->button() == Qt::LeftButton && index.isValid() && pressed_ == index;
  const bool isStar = wasStarPressed_;
  pressed_ = QPersistentModelIndex();
  wasStarPressed_ = false;
  if (!isStar) QListView::mouseReleaseEvent(event);
  if (!isClick || !(index.flags() & Qt::ItemIsEnabled)) return;
  if (isStar && isOnStar(index, place)) {
    if (starred) starred(index);
  } else if (!isStar && taken) {
    taken(index);
  }
}

// The second press of two quick clicks is one like the first.
void PresetView::mouseDoubleClickEvent(QMouseEvent* event) {
  mousePressEvent(event);
}

void PresetView::keyPressEvent(QKeyEvent* event) {
  const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (isEnter && state() != EditingState && currentIndex().isValid()) {
    if (taken) taken(currentIndex());
    event->accept();
    return;
  }
  QListView::keyPressEvent(event);
}

// The width decides how wide cells are.
void PresetView::resizeEvent(QResizeEvent* event) {
  QListView::resizeEvent(event);
  if (event->size().width() != event->oldSize().width()) scheduleDelayedItemsLayout();
}

// The keyboard begins at the first preset, which a heading stands before.
void PresetView::focusInEvent(QFocusEvent* event) {
  QListView::focusInEvent(event);
  if (event->reason() != Qt::MouseFocusReason) enter();
}

void PresetView::enter() {
  setFocus(Qt::TabFocusReason);
  if (currentIndex().isValid() || !model()) return;
  for (int row = 0; row < model()->rowCount(); ++row) {
    const QModelIndex index = model()->index(row, 0);
    if (!(index.flags() & Qt::ItemIsEnabled)) continue;
    setCurrentIndex(index);
    return;
  }
}

void PresetView::paintEvent(QPaintEvent* event) {
  QListView::paintEvent(event);
  if (!model() || model()->rowCount() > 0 || emptyText_.isEmpty()) return;
  QPainter painter(viewport());
  painter.setPen(inspectorColors(palette()).dimText);
  painter.drawText(viewport()->rect().adjusted(16, 0, -16, 0), Qt::AlignCenter | Qt::TextWordWrap, emptyText_);
}

}  // namespace host
