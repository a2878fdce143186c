// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/InterpolationChoice.h"

#include "Channels/VRTChannelGradientSample.h"
#include "Host/Inspect/WindowText.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QHBoxLayout>
#include <QPainter>
#include <QPainterPath>

namespace host {
namespace {

constexpr int kHeight = 22;
constexpr double kRadius = 3;
constexpr QSizeF kCurve{11, 8};
constexpr int kGap = 5;

QPainterPath curveOf(std::int32_t interpolation, QPointF lowerLeft) {
  const double w = kCurve.width();
  const double h = kCurve.height();
  QPainterPath path(lowerLeft);
  switch (interpolation) {
    case VRTGradientConstant:
      path.lineTo(lowerLeft + QPointF(w / 2, 0));
      path.lineTo(lowerLeft + QPointF(w / 2, -h));
      path.lineTo(lowerLeft + QPointF(w, -h));
      break;
    case VRTGradientLinear:
      path.lineTo(lowerLeft + QPointF(w, -h));
      break;
    default:
      path.cubicTo(lowerLeft + QPointF(w * 0.55, 0), lowerLeft + QPointF(w * 0.45, -h), lowerLeft + QPointF(w, -h));
      break;
  }
  return path;
}

class Segment : public QAbstractButton {
 public:
  Segment(std::int32_t interpolation, const QString& title, QWidget* parent)
      : QAbstractButton(parent), interpolation_(interpolation) {
    setText(title);
    setAccessibleName(title);
    setCheckable(true);
    setFocusPolicy(Qt::StrongFocus);
    setFixedHeight(kHeight);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  }
  QSize sizeHint() const override {
    return {static_cast<int>(kCurve.width()) + kGap + fontMetrics().horizontalAdvance(text()) + 10, kHeight};
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette& colors = palette();
    if (!isEnabled()) painter.setOpacity(0.45);
    const bool isDark = colors.color(QPalette::Window).lightness() < 128;
    const QColor outline = colors.color(isDark ? QPalette::Light : QPalette::Mid);
    painter.setPen(QPen(hasFocus() ? colors.color(QPalette::Highlight) : outline, hasFocus() ? 1.5 : 1));
    painter.setBrush(isChecked() ? colors.color(isDark ? QPalette::Light : QPalette::Base) : Qt::transparent);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.75, 0.75, -0.75, -0.75), kRadius, kRadius);

    const QColor ink = colors.color(isChecked() ? QPalette::WindowText : QPalette::PlaceholderText);
    const double textWidth = fontMetrics().horizontalAdvance(text());
    const double left = std::max(4.0, (width() - kCurve.width() - kGap - textWidth) / 2);
    painter.setBrush(Qt::NoBrush);
    QPen pen(ink, 1.3);
    pen.setCapStyle(Qt::RoundCap);
    pen.setJoinStyle(Qt::RoundJoin);
    painter.setPen(pen);
    painter.drawPath(curveOf(interpolation_, {left, (height() + kCurve.height()) / 2}));
    painter.drawText(QRectF(left + kCurve.width() + kGap, 0, width(), height()), Qt::AlignLeft | Qt::AlignVCenter,
                     text());
  }

 private:
  const std::int32_t interpolation_;
};

}  // namespace

InterpolationChoice::InterpolationChoice(const Chosen& chosen, QWidget* parent)
    : QWidget(parent), group_(new QButtonGroup(this)) {
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(4);
  for (const auto& [interpolation, title] :
       {std::pair{VRTGradientConstant, "Constant"}, {VRTGradientLinear, "Linear"}, {VRTGradientSmooth, "Smooth"}}) {
    auto* segment = new Segment(interpolation, windowText(title), this);
    group_->addButton(segment, interpolation);
    row->addWidget(segment, segment->sizeHint().width());  // room for long words
  }
  setAccessibleName(windowText("Interpolation"));
  setToolTip(windowText("How the gradient goes on from this stop"));
  // Clicks and arrow keys; what setInterpolation() does is none.
  QObject::connect(group_, &QButtonGroup::idClicked, this, [chosen](int id) { chosen(id); });
}

void InterpolationChoice::setInterpolation(std::optional<std::int32_t> interpolation) {
  QAbstractButton* button = interpolation ? group_->button(*interpolation) : nullptr;
  if (button && button->isChecked()) return;
  group_->setExclusive(button != nullptr);
  if (button) button->setChecked(true);
  if (button) return;
  for (QAbstractButton* each : group_->buttons()) each->setChecked(false);
  group_->setExclusive(true);
}

}  // namespace host
