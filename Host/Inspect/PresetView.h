// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QListView>
#include <functional>

namespace host {

// The cells of a tray of presets. A click or Enter takes a preset, a click on its star makes it a favorite or none, F2
// renames it, and it can be dragged out.
class PresetView : public QListView {
 public:
  explicit PresetView(QWidget* parent);

  std::function<void(const QModelIndex& index)> taken;
  std::function<void(const QModelIndex& index)> starred;
  // Gives it the keyboard, at the first preset where none is current.
  void enter();
  bool isRenaming() const { return state() == EditingState; }
  // What stands where no preset is shown.
  void setEmptyText(const QString& text);

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;

 private:
  bool isOnStar(const QModelIndex& index, const QPoint& place) const;

  QPersistentModelIndex pressed_;
  bool wasStarPressed_ = false;
  QString emptyText_;
};

}  // namespace host
