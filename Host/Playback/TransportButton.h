// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QAbstractButton>

namespace host {

enum class TransportGlyph {
  Play,
  PlayBackward,
  Pause,
  StepBack,
  StepForward,
  GoToIn,
  GoToOut,
  Once,
  Around,
  BackAndForth
};

// A flat button with a drawn sign. Its name for screen readers is its tool tip without the key.
class TransportButton : public QAbstractButton {
 public:
  explicit TransportButton(TransportGlyph glyph, QWidget* parent = nullptr);

  void setGlyph(TransportGlyph glyph);
  TransportGlyph glyph() const { return glyph_; }
  void setTexts(const QString& name, const QString& keys);

 protected:
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  TransportGlyph glyph_;
};

}  // namespace host
