// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Texts/StateKind.h"

#include <QCache>
#include <QPixmap>
#include <QStyledItemDelegate>

class QAbstractItemView;

namespace host {

// Draws presets (PresetModel) as cells, as many in a row as fit: the picture, below it the name and a star, which is
// seen on favorites and under the pointer. Pictures are drawn once, when they come into sight.
class PresetDelegate : public QStyledItemDelegate {
 public:
  PresetDelegate(StateKind kind, QAbstractItemView& view);

  // Of a cell, within its rectangle.
  static QRect starRect(const QRect& cell);

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const override;

  // How many pictures have been drawn; for tests.
  int drawnPictures() const { return drawn_; }

 private:
  int contentWidth() const;
  void paintHeading(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const;
  void paintPicture(QPainter& painter, const QRect& place, const QStyleOptionViewItem& option,
                    const QModelIndex& index) const;
  bool paintStar(QPainter& painter, const QRect& place, const QStyleOptionViewItem& option, bool isFavorite) const;
  const QPixmap& picture(const QModelIndex& index, QSize points) const;

  const StateKind kind_;
  QAbstractItemView& view_;
  mutable QCache<QString, QPixmap> pictures_;
  mutable int drawn_ = 0;
};

}  // namespace host
