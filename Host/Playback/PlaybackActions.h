// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QAction>
#include <QList>
#include <QObject>
#include <cstdint>
#include <functional>

namespace host {

class Player;

// What can be done with a player, for menus and keys. Space is none of the keys: it plays where nothing that has the
// focus wants it, which the window decides.
class PlaybackActions : public QObject {
 public:
  // `goToPosition` lets people type one.
  PlaybackActions(Player& player, const std::function<void()>& goToPosition, QObject* parent);

  // In groups, with separators between them.
  const QList<QAction*>& all() const { return all_; }

  QAction* play = nullptr;  // or pause
  QAction* playBackward = nullptr;
  QAction *stepBack = nullptr, *stepForward = nullptr;
  QAction *stepBackFar = nullptr, *stepForwardFar = nullptr;  // ten frames
  QAction *goToFirst = nullptr, *goToLast = nullptr, *goToIn = nullptr, *goToOut = nullptr;
  QAction* goToPosition = nullptr;
  QAction *setIn = nullptr, *setOut = nullptr, *clearRange = nullptr;
  QAction *loopOff = nullptr, *loopAround = nullptr, *loopBackAndForth = nullptr;
  QAction *everyFrame = nullptr, *realTime = nullptr;
  QAction* readAhead = nullptr;
  QAction* emptyCache = nullptr;

 private:
  QAction* add(const char* text, const QKeySequence& keys, const std::function<void()>& work);
  QAction* addChoice(const char* text, const QKeySequence& keys, const std::function<void()>& work);
  void addSeparator();
  void addMoves(const std::function<void()>& typing);
  void update();

  Player& player_;
  QList<QAction*> all_;
};

}  // namespace host
