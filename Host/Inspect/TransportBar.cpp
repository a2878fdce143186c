// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/TransportBar.h"

#include "Host/Inspect/WindowText.h"

#include <QAbstractButton>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QSignalBlocker>
#include <QSlider>
#include <algorithm>
#include <cmath>
#include <utility>

namespace host {
namespace {

class PlayButton : public QAbstractButton {
 public:
  explicit PlayButton(QWidget* parent) : QAbstractButton(parent) {
    setFixedSize(26, 26);
    setCheckable(true);
    setFocusPolicy(Qt::TabFocus);
    setAccessibleName(windowText("Play"));
    setToolTip(windowText("Play or pause (Space)"));
  }

 protected:
  void enterEvent(QEnterEvent*) override { update(); }
  void leaveEvent(QEvent*) override { update(); }
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    if (underMouse() || isDown()) {
      painter.setBrush(palette().color(QPalette::Light));
      painter.drawRoundedRect(rect(), 4, 4);
    }
    if (hasFocus()) {
      painter.setBrush(Qt::NoBrush);
      painter.setPen(palette().color(QPalette::Highlight));
      painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
      painter.setPen(Qt::NoPen);
    }
    painter.setBrush(palette().color(QPalette::WindowText));
    if (isChecked()) {
      painter.drawRect(QRectF(8, 8, 3.5, 10));
      painter.drawRect(QRectF(14.5, 8, 3.5, 10));
    } else {
      QPainterPath triangle(QPointF(9, 7));
      triangle.lineTo(19, 13);
      triangle.lineTo(9, 19);
      triangle.closeSubpath();
      painter.drawPath(triangle);
    }
  }
};

}  // namespace

TransportBar::TransportBar(const Timeline& timeline, std::uint64_t position, std::function<bool(std::uint64_t)> goTo,
                           QWidget* parent)
    : QWidget(parent), timeline_(timeline), position_(position), goTo_(std::move(goTo)), picture_(new QLabel(this)) {
  setFixedHeight(40);
  picture_->setForegroundRole(QPalette::PlaceholderText);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(16, 0, 16, 0);
  row->setSpacing(12);
  if (timeline_.count() > 1) {
    addControls();
  } else {
    row->addStretch(1);
  }
  row->addWidget(picture_);
  timer_.setTimerType(Qt::PreciseTimer);
  timer_.setInterval(std::max(1, static_cast<int>(std::lround(std::min(1000 / timeline_.rate(), 1e6)))));
  timer_.callOnTimeout([this] { advance(); });
}

void TransportBar::addControls() {
  button_ = new PlayButton(this);
  slider_ = new QSlider(Qt::Horizontal, this);
  slider_->setRange(0, static_cast<int>(std::min<std::uint64_t>(timeline_.count() - 1, 1 << 30)));
  slider_->setAccessibleName(windowText("Time"));
  time_ = new QLabel(this);
  time_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  time_->setMinimumWidth(
      time_->fontMetrics().horizontalAdvance(QString::fromStdString(timeline_.labelAt(timeline_.count() - 1))) + 8);
  auto* row = static_cast<QHBoxLayout*>(layout());
  row->addWidget(button_);
  row->addWidget(slider_, 1);
  row->addWidget(time_);
  showPosition();
  QObject::connect(button_, &QAbstractButton::clicked, this, [this](bool on) { setPlaying(on); });
  QObject::connect(slider_, &QSlider::valueChanged, this, [this](int value) {
    position_ = static_cast<std::uint64_t>(value);
    if (!goTo_(position_)) setPlaying(false);
    showPosition();
  });
}

void TransportBar::setPlaying(bool playing) {
  const bool runs = playing && timeline_.count() > 1;
  if (runs) timer_.start();
  if (!runs) timer_.stop();
  if (button_) button_->setChecked(runs);
}

void TransportBar::advance() {
  position_ = timeline_.next(position_);
  showPosition();
  if (!goTo_(position_)) setPlaying(false);
}

void TransportBar::showPosition() {
  const QSignalBlocker quiet(slider_);
  slider_->setValue(static_cast<int>(position_));
  time_->setText(QString::fromStdString(timeline_.labelAt(position_)));
}

void TransportBar::setPictureText(const QString& text) {
  picture_->setText(text);
}

}  // namespace host
