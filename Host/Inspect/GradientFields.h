// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Channels/VRTChannelRef.h"
#include "Host/Inspect/NumberField.h"
#include "Host/Inspect/ParameterFields.h"
#include "Host/Inspect/PortWatch.h"
#include "Platform/Foundation/NSNotificationCenter.h"

#include <QPointer>
#include <array>
#include <vector>

class QAbstractButton;
class QGridLayout;
class QLabel;
class VRTChannelGradient;
class VRTChannelGradientFolder;
class VRTChannelGradientSample;
class VRTChannelGradientSampleAlpha;
class VRTChannelGradientSampleRGB;
class VRTGradientEditor;
class VRTGradientPort;

namespace host {

class ColorCodeField;
class ColorSwatch;
class InterpolationChoice;

// The stop that is selected in a gradient editor: its color or opacity, its place, and how the gradient goes on from
// it. Two buttons go from stop to stop. Changes are made as the editor makes them: between willChangeValue and
// didChangeValue of the port, with the stops sorted before the end of an interaction that moved one, and the selection
// kept. Colors may be beyond 0 to 1; everything else is limited to it. No stop comes to stand on another.
class GradientFields : public ParameterFields {
 public:
  GradientFields(VRTGradientPort& port, VRTGradientEditor& editor, EntryField::Paste paste, QWidget* parent);
  void refresh() override;
  bool takeColor(const Rgb& color) override;

 private:
  using Change = std::function<void(VRTChannelGradientSample& sample)>;

  void addHeading(QGridLayout& grid);
  void addColor(QGridLayout& grid);
  void addPlace(QGridLayout& grid);
  NumberField* newNumber(const char* label, const char* name, NumberField::Numbers numbers, NumberField::Told told);
  NumberField* newComponent(const char* label, const char* name, std::size_t index);
  void orderTabs();
  void forgetTyping();

  VRTChannelGradient* channel() const;
  VRTChannelGradientSample* sample() const;  // the selected one; null without editor
  VRTChannelGradientSampleRGB* colorSample() const;
  VRTChannelGradientSampleAlpha* opacitySample() const;
  VRTChannelGradientFolder* folder() const;  // that of the selected sample
  // Those of a folder from left to right.
  static std::vector<VRTChannelGradientSample*> inOrder(const VRTChannelGradientFolder& folder);
  std::vector<double> otherPositions() const;

  void change(const Change& change);        // of the selected sample, announced
  void changeAtOnce(const Change& change);  // as an interaction of its own
  void moveTo(double position);
  QString refusalOfPosition(double position) const;
  void sort();
  void selectNeighbour(int direction);
  void chooseColor();

  VRTGradientPort& port_;
  QPointer<VRTGradientEditor> editor_;
  VRTChannelRef shown_{nullptr};  // the stop that the fields are about
  const EntryField::Paste paste_;
  QLabel* title_ = nullptr;
  QAbstractButton* previous_ = nullptr;
  QAbstractButton* next_ = nullptr;
  ColorSwatch* swatch_ = nullptr;
  ColorCodeField* code_ = nullptr;
  std::array<NumberField*, 3> components_{};
  NumberField* opacity_ = nullptr;
  NumberField* position_ = nullptr;
  NumberField* middle_ = nullptr;
  InterpolationChoice* interpolation_ = nullptr;
  PortWatch watch_;
  NSNotificationCenter::Observation selection_;
};

}  // namespace host
