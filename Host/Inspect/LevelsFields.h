// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Inspect/NumberField.h"
#include "Host/Inspect/ParameterFields.h"
#include "Host/Inspect/PortWatch.h"
#include "Platform/Foundation/NSNotificationCenter.h"

#include <array>
#include <cstddef>

class QLabel;
class VRTChannelHistogram;
class VRTChannelHistogramSample;
class VRTHistogramEditor;
class VRTHistogramPort;

namespace host {

// The five values of the channel that the levels select, under the handles that they belong to. Ranges are those of the
// handles: gamma 0 to 5, the others 0 to 1.
class LevelsFields : public ParameterFields {
 public:
  LevelsFields(VRTHistogramPort& port, const VRTHistogramEditor& editor, const EntryField::Paste& paste,
               QWidget* parent);
  void refresh() override;

 private:
  struct Value;
  static const std::array<Value, 5> kValues;

  VRTChannelHistogramSample* sample() const;  // of the selected channel; null without levels
  NumberField* newField(const Value& value, const EntryField::Paste& paste);
  void give(double VRTChannelHistogramSample::*member, double value);

  VRTHistogramPort& port_;
  std::array<NumberField*, 5> fields_{};
  PortWatch watch_;
  NSNotificationCenter::Observation channel_;
};

}  // namespace host
