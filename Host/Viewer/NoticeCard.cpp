// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Viewer/NoticeCard.h"

#include "Host/Inspect/Appearance.h"
#include "Host/Inspect/WindowText.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QToolButton>
#include <algorithm>
#include <cmath>
#include <utility>

namespace host {
namespace {

constexpr int kMargin = 16;
constexpr int kWidest = 560;
constexpr int kRing = 16;
constexpr int kTurnMilliseconds = 1200;
constexpr int kTickMilliseconds = 50;

}  // namespace

NoticeCard::NoticeCard(QWidget* parent)
    : QWidget(parent), text_(new QLabel(this)), time_(new QLabel(this)), button_(new QToolButton(this)) {
  text_->setTextFormat(Qt::PlainText);
  text_->setWordWrap(true);
  button_->setText(windowText("Cancel"));
  button_->setToolButtonStyle(Qt::ToolButtonTextOnly);
  QObject::connect(button_, &QToolButton::clicked, this, [this] {
    const auto cancel = cancel_;  // which may set another notice
    if (cancel) cancel();
  });
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(14 + kRing + 10, 10, 12, 10);
  row->setSpacing(12);
  row->addWidget(text_, 1);
  row->addWidget(time_);
  row->addWidget(button_);
  timer_.setInterval(kTickMilliseconds);
  timer_.callOnTimeout([this] { showTime(); });
  hide();
}

void NoticeCard::set(const QString& text, Viewer::NoticeKind kind, std::function<void()> cancel, double seconds) {
  const bool isSame = kind == kind_ && kind == Viewer::NoticeKind::Busy;
  kind_ = kind;
  words_ = text;
  cancel_ = std::move(cancel);
  if (!isSame || seconds > 0) {
    seconds_ = seconds;
    begun_.start();
  }
  const bool isFailed = kind == Viewer::NoticeKind::Failed;
  const InspectorColors colors = inspectorColors(parentWidget()->palette());
  QPalette own = parentWidget()->palette();
  if (isFailed) {
    for (const auto role : {QPalette::WindowText, QPalette::ButtonText, QPalette::Text})
      own.setColor(role, colors.errorText);
    own.setColor(QPalette::Window, colors.errorGround);
  }
  setPalette(own);
  text_->setText(text);
  setAccessibleName(text);
  time_->setVisible(kind == Viewer::NoticeKind::Busy);
  button_->setVisible(static_cast<bool>(cancel_));
  button_->setText(isFailed ? windowText("Try Again") : windowText("Cancel"));
  if (kind == Viewer::NoticeKind::Busy) {
    timer_.start();
  } else {
    timer_.stop();
  }
  showTime();
  placeIn(parentWidget()->size());
  setVisible(kind != Viewer::NoticeKind::None);
}

void NoticeCard::showTime() {
  const double seconds = seconds_ + (begun_.isValid() ? begun_.elapsed() / 1000.0 : 0);
  time_->setText(windowText("%1 s").arg(std::floor(seconds), 0, 'f', 0));
  update(0, 0, 14 + kRing + 4, height());
}

void NoticeCard::placeIn(QSize parent) {
  const int width = std::min({parent.width() - 2 * kMargin, kWidest, sizeHint().width() + 40});
  const int height = std::max(layout()->heightForWidth(width), layout()->minimumSize().height());
  setGeometry((parent.width() - width) / 2, parent.height() - height - kMargin, width, height);
}

void NoticeCard::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  QColor line = palette().color(QPalette::WindowText);
  line.setAlphaF(0.18f);
  painter.setPen(line);
  painter.setBrush(palette().color(QPalette::Window));
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 7, 7);
  const QRectF ring(14, (height() - kRing) / 2.0, kRing, kRing);
  const QColor ink = palette().color(QPalette::WindowText);
  if (kind_ == Viewer::NoticeKind::Busy) {
    const double turn = static_cast<double>(begun_.elapsed() % kTurnMilliseconds) / kTurnMilliseconds;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(line, 2));
    painter.drawEllipse(ring.adjusted(1, 1, -1, -1));
    painter.setPen(QPen(palette().color(QPalette::Highlight), 2, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(ring.adjusted(1, 1, -1, -1), static_cast<int>(-turn * 360 * 16), 90 * 16);
  } else {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(ink, 1.6));
    painter.drawEllipse(ring.adjusted(1, 1, -1, -1));
    painter.drawLine(QPointF(ring.center().x(), ring.top() + 4.5), QPointF(ring.center().x(), ring.top() + 8.5));
    painter.setPen(QPen(ink, 2, Qt::SolidLine, Qt::RoundCap));
    painter.drawPoint(QPointF(ring.center().x(), ring.top() + 11.5));
  }
}

}  // namespace host
