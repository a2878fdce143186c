// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Playback/PositionText.h"

#include <QWidget>
#include <vector>

class QHBoxLayout;
class QLabel;
class QToolButton;

namespace host {

class MemoryButton;
class PlaybackActions;
class Player;
class PositionField;
class TimelineStrip;
class TransportButton;

// Below the picture: the timeline, the buttons that play it, the position, what playing reaches, the memory that frames
// take, and at its right a line of the window's. Of a single picture there is that line only.
//
// Its actions() are everything that can be done, in groups with separators between them, for a menu; their keys work in
// the whole window.
class TimelineBar : public QWidget {
 public:
  explicit TimelineBar(Player& player, QWidget* parent = nullptr);  // which outlives it

  void setPictureText(const QString& text);
  void setInfo(QWidget* widget);  // in the place of that text; the bar takes it over
  void fit();                     // leaves out what finds no room; for when the size of that widget is another

  PlaybackActions& playbackActions() { return *actions_; }
  TimelineStrip& strip() { return *strip_; }
  PositionField& field() { return *field_; }
  PositionUnit unit() const;
  void setUnit(PositionUnit unit);

  QSize minimumSizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  TransportButton* addButton(QAction* action, int glyph);
  QToolButton* addTextButton(const QString& name);
  void addControls(QHBoxLayout* row);
  void follow();
  void showFigures();
  void nextUnit();
  void nextLooping();

  Player& player_;
  PlaybackActions* actions_;
  TimelineStrip* strip_;
  QWidget* controls_;  // all that a single picture has no use for, but for the strip
  TransportButton *goToIn_ = nullptr, *goToOut_ = nullptr;
  TransportButton* play_ = nullptr;
  TransportButton* loop_ = nullptr;
  PositionField* field_ = nullptr;
  QToolButton* unit_ = nullptr;
  QToolButton* mode_ = nullptr;
  QLabel* figures_ = nullptr;
  MemoryButton* memory_ = nullptr;
  QWidget* info_;
  QLabel* picture_;
};

}  // namespace host
