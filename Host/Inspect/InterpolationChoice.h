// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QWidget>
#include <array>
#include <cstdint>
#include <functional>
#include <optional>

class QAbstractButton;
class QButtonGroup;

namespace host {

// How a gradient goes on from a stop: constant, linear or smooth, side by side.
class InterpolationChoice : public QWidget {
 public:
  using Chosen = std::function<void(std::int32_t interpolation)>;  // who is told may destroy the choice
  InterpolationChoice(const Chosen& chosen, QWidget* parent);
  // A VRTGradientInterpolation; for any other, and for nothing, none is chosen.
  void setInterpolation(std::optional<std::int32_t> interpolation);

 private:
  QButtonGroup* group_;
};

}  // namespace host
