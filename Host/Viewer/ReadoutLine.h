// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Viewer/PixelReadout.h"

#include <QColor>
#include <QString>
#include <QWidget>
#include <optional>

namespace host {

class Viewer;

// A sample as people read it: integers as they are, halves with 4 places and floats with 6, large ones with fewer.
QString sampleText(double sample, Depth depth);
// "x 812  y 440  Before 128 64 12  Result 0.123456 ...", for screen readers and the clipboard.
QString readoutText(const PixelReadout& readout);

// The pixel under the viewer's pointer in a line: where it is, what the file has there, what became of it. A swatch has
// each color; values outside 0 to 1 stand out.
class ReadoutLine : public QWidget {
 public:
  // The viewer must outlive it.
  ReadoutLine(Viewer& viewer, QWidget* parent = nullptr);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return {200, sizeHint().height()}; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void show(const std::optional<PixelReadout>& readout);
  double paintValues(QPainter& painter, double x, const QString& title, const PixelValues& values) const;

  Viewer& viewer_;
  std::optional<PixelReadout> readout_;
};

}  // namespace host
