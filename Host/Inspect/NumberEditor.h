// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Inspect/PortWatch.h"
#include "Host/Rendering/PortKinds.h"

#include <QWidget>

class QSlider;

namespace host {

class NumberField;

// A number, or an index that has no menu: a field, and a slider when the range is limited.
class NumberEditor : public QWidget {
 public:
  NumberEditor(QCPort& port, QWidget* parent);
  NumberField& field() { return *field_; }

 private:
  void addSlider();
  void show(double value);
  void give(double value);
  double present() const;

  QCPort& port_;
  const PortRange range_;
  const bool whole_;
  QSlider* slider_ = nullptr;
  NumberField* field_ = nullptr;
  PortWatch watch_;
};

}  // namespace host
