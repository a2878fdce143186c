// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/NumberEditor.h"

#include "Controls/VRTInteractions.h"
#include "Host/Inspect/NumberField.h"
#include "Host/Inspect/WheelGuard.h"

#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QSlider>
#include <algorithm>
#include <cmath>
#include <limits>

namespace host {
namespace {

constexpr int kSliderSteps = 1000;
constexpr double kWidestSlider = 4096;  // beyond it a step of a slider is too much for anybody
constexpr int kBoxWidth = 66;

int decimalsFor(const PortRange& range) {
  if (!range.minimum || !range.maximum) return 3;
  const double span = *range.maximum - *range.minimum;
  return span <= 10 ? 3 : span <= 1000 ? 1 : 0;
}

NumberField::Numbers numbersOf(const PortRange& range, bool whole) {
  NumberField::Numbers numbers;
  numbers.minimum = range.minimum.value_or(whole ? 0 : std::numeric_limits<double>::lowest());
  numbers.maximum =
      range.maximum.value_or(whole ? std::numeric_limits<std::uint32_t>::max() : std::numeric_limits<double>::max());
  const double span = numbers.maximum - numbers.minimum;
  numbers.step = whole ? 1 : std::isfinite(span) ? std::clamp(span / 100, 0.01, 1.0) : 0.1;
  numbers.decimals = decimalsFor(range);
  numbers.isWhole = whole;
  return numbers;
}

}  // namespace

NumberEditor::NumberEditor(QCPort& port, QWidget* parent)
    : QWidget(parent),
      port_(port),
      range_(portRange(port)),
      whole_(portKindOf(port) == PortKind::Index),
      field_(new NumberField(port, numbersOf(range_, whole_),
                             {.changed = [this](double value) { give(value); }, .settled = {}, .refusal = {}}, this)),
      watch_(port, [this] { show(present()); }) {
  field_->setFixedWidth(kBoxWidth);
  field_->setName(QString::fromStdString(port.name()));
  const double span = field_->numbers().maximum - field_->numbers().minimum;
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(8);
  if (range_.minimum && range_.maximum && span > 0 && span <= kWidestSlider) {
    addSlider();
    row->addWidget(slider_, 1);
  } else {
    row->addStretch(1);
  }
  row->addWidget(field_);
  setFocusProxy(field_);
  show(present());
}

void NumberEditor::addSlider() {
  const double span = *range_.maximum - *range_.minimum;
  slider_ = new QSlider(Qt::Horizontal, this);
  slider_->setRange(0, whole_ ? static_cast<int>(span) : kSliderSteps);
  slider_->setPageStep(std::max(1, slider_->maximum() / 10));
  slider_->setAccessibleName(QString::fromStdString(port_.name()));
  guardWheel(*slider_);
  QObject::connect(slider_, &QSlider::valueChanged, this,
                   [this, span](int step) { give(*range_.minimum + span * step / slider_->maximum()); });
  QObject::connect(slider_, &QSlider::sliderPressed, this, [this] { VRTPostStartInteraction(&port_); });
  QObject::connect(slider_, &QSlider::sliderReleased, this, [this] { VRTPostEndInteraction(&port_); });
}

double NumberEditor::present() const {
  const auto* index = dynamic_cast<const QCIndexPort*>(&port_);
  return index ? index->indexValue() : dynamic_cast<const QCNumberPort&>(port_).doubleValue();
}

void NumberEditor::show(double value) {
  field_->setValue(value);
  if (!slider_) return;
  const QSignalBlocker quietSlider(slider_);
  const double part = (value - *range_.minimum) / (*range_.maximum - *range_.minimum);
  if (std::isfinite(part))
    slider_->setValue(static_cast<int>(std::lround(std::clamp(part, 0.0, 1.0) * slider_->maximum())));
}

void NumberEditor::give(double value) {
  port_.setValue(whole_ ? NSNumber::numberWithInt(static_cast<std::uint32_t>(std::lround(value)))
                        : NSNumber::numberWithDouble(value));
}

}  // namespace host
