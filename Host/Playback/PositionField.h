// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Playback/PositionText.h"

#include <QLineEdit>
#include <functional>

namespace host {

class Player;

// Shows where the playhead is, and takes where it is to go. Enter goes there, Escape takes back what was typed, the up
// and down keys and the wheel step.
class PositionField : public QLineEdit {
 public:
  explicit PositionField(Player& player, QWidget* parent = nullptr);

  PositionUnit unit() const { return unit_; }
  void setUnit(PositionUnit unit);  // of those that the run has; else its usual one
  void startTyping();               // takes the focus, all selected

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  void showPosition();
  void fitWidth();
  void commit();
  void mark(bool isUnderstood);

  Player& player_;
  PositionUnit unit_ = PositionUnit::Frames;
  int turned_ = 0;  // of the wheel, less than a notch
};

}  // namespace host
