// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "HistogramEditor/VRTHistogramReadout.h"

#include <QWidget>

// The readout of a histogram, on two lines, for as long as a level is pointed at: level and count on the left, what is
// clipped on the right. It lets the mouse through.
class VRTHistogramReadoutView : public QWidget {
 public:
  explicit VRTHistogramReadoutView(QWidget* parent);
  void setReadout(const VRTHistogramReadout& readout, std::uint32_t bitsPerChannel);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QString level_, count_, black_, white_;
};
