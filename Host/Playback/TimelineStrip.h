// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Playback/PositionText.h"
#include "Host/Playback/TimelineGeometry.h"

#include <QAbstractSlider>
#include <vector>

namespace host {

class Player;
struct FrameSpan;

// The timeline itself: a ruler, what is in memory, the points between which is played, and the playhead. For screen
// readers and the keyboard it is a slider of frames.
class TimelineStrip : public QAbstractSlider {
 public:
  explicit TimelineStrip(Player& player, QWidget* parent = nullptr);

  void setUnit(PositionUnit unit);
  TimelineGeometry geometryNow() const { return {QSizeF(size()), count_}; }

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override { mousePressEvent(event); }
  void leaveEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  void follow();
  void updatePlayhead();
  void updateTicks();
  void moveTo(const QPointF& at, Qt::KeyboardModifiers modifiers);
  QRectF playheadRect(std::uint64_t frame) const;
  QRectF cellRect(std::uint64_t frame) const;
  void paintTrack(QPainter& painter, const TimelineGeometry& geometry);
  void paintSpans(QPainter& painter, const TimelineGeometry& geometry, const std::vector<FrameSpan>& spans,
                  const QColor& color, double height);
  void paintRuler(QPainter& painter, const TimelineGeometry& geometry, const QRect& exposed);
  void paintPlayhead(QPainter& painter, const TimelineGeometry& geometry);

  Player& player_;
  PositionUnit unit_ = PositionUnit::Frames;
  std::uint64_t count_ = 1;
  std::uint64_t painted_ = 0;  // where the playhead is on the screen
  std::vector<TimelineTick> ticks_;
  std::vector<FrameSpan> rendered_;
  std::vector<FrameSpan> decoded_;
  std::optional<TimelineGeometry::Part> held_;
  std::optional<TimelineGeometry::Part> hovered_;
  double fineFrame_ = 0;  // of a fine drag
  double lastX_ = 0;
  int turned_ = 0;  // of the wheel, less than a notch
  bool isFollowing_ = false;
};

}  // namespace host
