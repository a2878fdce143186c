// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Inspect/Timeline.h"

#include <QTimer>
#include <QWidget>
#include <functional>

class QAbstractButton;
class QLabel;
class QSlider;

namespace host {

// Below the preview: play and pause, the position in time, and a line about the picture. Playing shows every frame, at
// most at the timeline's rate, and starts anew at the end. Without a timeline only the line is there.
class TransportBar : public QWidget {
 public:
  // `goTo` takes a position; false stops playing.
  TransportBar(const Timeline& timeline, std::uint64_t position, std::function<bool(std::uint64_t)> goTo,
               QWidget* parent = nullptr);

  void togglePlaying() { setPlaying(!isPlaying()); }
  void setPlaying(bool playing);
  bool isPlaying() const { return timer_.isActive(); }
  void setPictureText(const QString& text);

 private:
  void addControls();
  void advance();
  void showPosition();

  const Timeline timeline_;
  std::uint64_t position_;
  const std::function<bool(std::uint64_t)> goTo_;
  QTimer timer_;
  QAbstractButton* button_ = nullptr;
  QSlider* slider_ = nullptr;
  QLabel* time_ = nullptr;
  QLabel* picture_;
};

}  // namespace host
