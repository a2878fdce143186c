// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/LevelsFields.h"

#include "Channels/VRTChannelHistogram.h"
#include "Controls/VRTPortReference.h"
#include "HistogramEditor/VRTHistogramEditor.h"
#include "Host/Inspect/InspectorMetrics.h"
#include "Host/Inspect/WindowText.h"
#include "Ports/VRTObjects.h"
#include "Ports/VRTPorts.h"

#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>

namespace host {
namespace {

constexpr int kLevelsWidth = 212;  // that of the editor between its wells
constexpr int kLevelsInset = 3;
constexpr int kHandleWidth = 9;
constexpr int kHandleHeight = 7;
constexpr double kLargestGamma = 5;

// The handle that the field belongs to.
EntryField::Picture handlePicture(int gray) {
  return [gray](QPainter& painter, const QRectF& place) {
    const QPointF top(place.center().x(), place.center().y() - kHandleHeight / 2.0);
    QPainterPath handle(top);
    handle.lineTo(top + QPointF(kHandleWidth / 2.0, kHandleHeight));
    handle.lineTo(top + QPointF(-kHandleWidth / 2.0, kHandleHeight));
    handle.closeSubpath();
    painter.setPen(QPen(QColor(128, 128, 128), 1));
    painter.setBrush(QColor(gray, gray, gray));
    painter.drawPath(handle);
  };
}

}  // namespace

struct LevelsFields::Value {
  const char* name;
  double VRTChannelHistogramSample::*member;
  double maximum;
  int gray;
  int row, column;
};

const std::array<LevelsFields::Value, 5> LevelsFields::kValues = {{
    {"Input black", &VRTChannelHistogramSample::blackIn, 1, 0, 1, 0},
    {"Gamma", &VRTChannelHistogramSample::gamma, kLargestGamma, 128, 1, 1},
    {"Input white", &VRTChannelHistogramSample::whiteIn, 1, 255, 1, 2},
    {"Output black", &VRTChannelHistogramSample::blackOut, 1, 0, 4, 0},
    {"Output white", &VRTChannelHistogramSample::whiteOut, 1, 255, 4, 2},
}};

LevelsFields::LevelsFields(VRTHistogramPort& port, const VRTHistogramEditor& editor, const EntryField::Paste& paste,
                           QWidget* parent)
    : ParameterFields(parent), port_(port), watch_(port, [this] { refresh(); }) {
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(kLevelsInset, 0, 0, 0);
  grid->setHorizontalSpacing(7);
  grid->setVerticalSpacing(2);
  grid->setRowMinimumHeight(2, 2);  // between input and output
  for (int column = 0; column < 3; ++column) grid->setColumnStretch(column, 1);
  for (const auto& [title, row] : {std::pair{"Input", 0}, {"Output", 3}}) {
    auto* label = new QLabel(windowText(title), this);
    label->setForegroundRole(QPalette::PlaceholderText);
    grid->addWidget(label, row, 0, 1, 3);
  }
  for (std::size_t i = 0; i < kValues.size(); ++i) {
    fields_[i] = newField(kValues[i], paste);
    grid->addWidget(fields_[i], kValues[i].row, kValues[i].column);
  }
  setFixedWidth(kLevelsInset + kLevelsWidth);
  channel_ = NSNotificationCenter::defaultCenter().addObserver(kVRTHistogramChannelDidChange, &editor,
                                                               [this](const NSNotification&) { refresh(); });
  LevelsFields::refresh();
}

NumberField* LevelsFields::newField(const Value& value, const EntryField::Paste& paste) {
  NumberField::Numbers numbers;
  numbers.maximum = value.maximum;
  numbers.decimals = 3;
  auto* field = new NumberField(
      port_, numbers,
      {.changed = [this, member = value.member](double number) { give(member, number); }, .settled = {}, .refusal = {}},
      this);
  field->setName(windowText(value.name));
  field->setPicture(kHandleWidth, handlePicture(value.gray));
  field->setPaste(paste);
  return field;
}

VRTChannelHistogramSample* LevelsFields::sample() const {
  const auto value = std::dynamic_pointer_cast<VRTHistogram>(port_.rawValue());
  VRTChannelHistogram* channel = value ? value->kxChannelHistogram() : nullptr;
  if (!channel || channel->selectedChannel < 0) return nullptr;
  const auto selected = static_cast<std::size_t>(channel->selectedChannel);
  return selected < channel->samples.size() ? &channel->samples[selected] : nullptr;
}

void LevelsFields::give(double VRTChannelHistogramSample::*member, double value) {
  if (!sample()) return;
  const VRTPortChange announced(VRTObjectReference<QCPort>(&port_).lock());
  if (VRTChannelHistogramSample* present = sample()) present->*member = value;
}

void LevelsFields::refresh() {
  const VRTChannelHistogramSample* shown = sample();
  for (std::size_t i = 0; i < kValues.size(); ++i) {
    fields_[i]->setEnabled(shown != nullptr);
    fields_[i]->setValue(shown ? std::optional(shown->*kValues[i].member) : std::nullopt);
  }
}

}  // namespace host
