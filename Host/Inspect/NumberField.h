// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Inspect/EntryField.h"

#include <QTimer>
#include <limits>
#include <set>

class QCPort;
class QWheelEvent;

namespace host {

// The field for numbers in the inspector. What is typed is an expression (Host/Texts/NumberExpression.h). The arrows
// step, with Shift by a tenth, with Control ten times as far; so does the wheel while the field has the keyboard.
// Dragging the label scrubs, and so does dragging a field that has not got the keyboard; Escape then brings back what
// was there.
//
// Everything is an interaction with a port (Controls/VRTInteractions.h): a drag, held keys, a turn of the wheel, what
// was typed. The port must outlive the field. Whoever is told may destroy the field.
class NumberField : public EntryField {
 public:
  struct Told {
    std::function<void(double value)> changed;  // a new value, within the range: to be stored, and shown by setValue()
    std::function<void()> settled;              // before the end of an interaction that changed something; may be empty
    // Why a typed value cannot be stored, or nothing; may be empty.
    std::function<QString(double value)> refusal;
  };
  struct Numbers {
    double minimum = 0;
    double maximum = 1;
    double step = 0.01;
    int decimals = 4;      // shown at most; more is kept
    bool isWhole = false;  // whole numbers only
  };

  NumberField(QCPort& port, const Numbers& numbers, Told told, QWidget* parent);
  ~NumberField() override;

  // Shows a value, which may be beyond the range; nothing where there is none. Tells nobody.
  void setValue(std::optional<double> value);
  std::optional<double> value() const { return value_; }
  const Numbers& numbers() const { return numbers_; }
  bool isInteracting() const { return interactsBy_ != By::Nothing; }

  // Dragging the label scrubs too; it must not outlive the field.
  void addHandle(QWidget& label);
  // As its text.
  QString textOf(double value) const;

 protected:
  QString take(const QString& typed) override;
  QString shownText() const override;
  QString help() const override;
  bool isOwnKey(int key) const override;

  bool eventFilter(QObject* watched, QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  enum class By { Nothing, Mouse, Keys, Wheel };

  bool start(By by);  // false when the field has been destroyed
  void end();
  void lose();  // ends it when the events at hand have been handled: this is no place to tell others
  void give(double value);
  void stepBy(double steps);
  bool filterMouse(const QObject& watched, const QEvent& event);
  bool filterStepKey(QEvent& event);
  void turnWheel(QWheelEvent& event);
  void press(QPointF global);
  void scrubTo(QPointF global, Qt::KeyboardModifiers modifiers);
  void letGo();
  void release();
  void putBack();

  QCPort& port_;
  const Numbers numbers_;
  const Told told_;
  std::optional<double> value_;

  By interactsBy_ = By::Nothing;
  bool isLost_ = false;
  bool hasChanged_ = false;
  std::optional<double> before_;  // the interaction
  std::set<int> heldKeys_;
  QTimer wheelRests_;
  bool isPressed_ = false;
  bool scrubs_ = false;
  double lastX_ = 0;
  double scrubbed_ = 0;  // the value of the drag, without rounding and range
};

}  // namespace host
