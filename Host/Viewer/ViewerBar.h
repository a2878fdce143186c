// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Viewer/ViewSettings.h"

#include <QWidget>
#include <functional>
#include <vector>

class QHBoxLayout;

namespace host {

class BarButton;
class BarNumber;
class Viewer;

// The viewer's settings in a slim row: zoom, comparison, channels, exposure and gamma; at the right what the colors are
// shown as, and what is behind transparency.
class ViewerBar : public QWidget {
 public:
  // The viewer must outlive it.
  ViewerBar(Viewer& viewer, QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  struct Segment {
    BarButton* button;
    std::function<bool(const ViewSettings&)> isChosen;
  };

  void addZoom(QHBoxLayout& row);
  void addCompare(QHBoxLayout& row);
  void addChannels(QHBoxLayout& row);
  void addNumbers(QHBoxLayout& row);
  void addDisplay(QHBoxLayout& row);
  void addGround(QHBoxLayout& row);
  BarButton* addSegment(QHBoxLayout& row, const char* name, const std::function<void(ViewSettings&)>& change,
                        const std::function<bool(const ViewSettings&)>& isChosen);
  void change(const std::function<void(ViewSettings&)>& change);
  void update();

  Viewer& viewer_;
  std::vector<Segment> segments_;
  BarButton* zoom_ = nullptr;
  BarNumber* exposure_ = nullptr;
  BarNumber* gamma_ = nullptr;
  BarButton* reset_ = nullptr;
  BarButton* display_ = nullptr;
  BarButton* ground_ = nullptr;
};

}  // namespace host
