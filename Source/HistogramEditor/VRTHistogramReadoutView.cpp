// SPDX-License-Identifier: BSD-3-Clause
#include "HistogramEditor/VRTHistogramReadoutView.h"

#include "Platform/TarnKit/NSGraphicsContext.h"
#include "Platform/TarnKit/NSTarnColor.h"

#include <QPainter>

namespace {

constexpr int kInset = 4;
constexpr double kSmallerFont = 0.82;

}  // namespace

VRTHistogramReadoutView::VRTHistogramReadoutView(QWidget* parent) : QWidget(parent) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setFocusPolicy(Qt::NoFocus);
  QFont small = font();
  small.setPointSizeF(small.pointSizeF() * kSmallerFont);
  setFont(small);
}

void VRTHistogramReadoutView::setReadout(const VRTHistogramReadout& readout, std::uint32_t bitsPerChannel) {
  level_ = VRTHistogramLevelText(readout.bin, bitsPerChannel);
  count_ = VRTHistogramCountText(readout);
  black_ = VRTHistogramBlackText(readout);
  white_ = VRTHistogramWhiteText(readout);
  update();
}

void VRTHistogramReadoutView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const NSGraphicsContext context(painter, *this, true);
  painter.fillRect(rect(), palette().color(QPalette::Window));
  const QRect upper = QRect(0, 0, width(), height() / 2).adjusted(kInset, 0, -kInset, 0);
  const QRect lower = upper.translated(0, height() / 2);
  painter.setPen(NSTarnColor::textColor().toQColor());
  painter.drawText(upper, Qt::AlignLeft | Qt::AlignVCenter, level_);
  painter.drawText(lower, Qt::AlignLeft | Qt::AlignVCenter, count_);
  painter.setPen(NSTarnColor::secondaryTextColor().toQColor());
  painter.drawText(upper, Qt::AlignRight | Qt::AlignVCenter, black_);
  painter.drawText(lower, Qt::AlignRight | Qt::AlignVCenter, white_);
}
