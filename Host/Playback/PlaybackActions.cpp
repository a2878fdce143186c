// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Playback/PlaybackActions.h"

#include "Host/Inspect/WindowText.h"
#include "Host/Playback/Player.h"

#include <QActionGroup>

namespace host {

PlaybackActions::PlaybackActions(Player& player, const std::function<void()>& typing, QObject* parent)
    : QObject(parent), player_(player) {
  play = add("Play", {}, [this] { player_.togglePlaying(); });
  playBackward = add("Play Backward", Qt::SHIFT | Qt::Key_Space,
                     [this] { player_.isPlaying() && player_.isBackward() ? player_.pause() : player_.play(true); });
  addSeparator();
  addMoves(typing);
  addSeparator();
  setIn = add("Set In Point", Qt::Key_I, [this] { player_.setInPoint(player_.position()); });
  setOut = add("Set Out Point", Qt::Key_O, [this] { player_.setOutPoint(player_.position()); });
  clearRange = add("Play Whole Length", Qt::SHIFT | Qt::Key_X, [this] { player_.clearRange(); });
  addSeparator();
  loopAround = addChoice("Loop", {}, [this] { player_.setLooping(Looping::Around); });
  loopBackAndForth = addChoice("Loop Back and Forth", {}, [this] { player_.setLooping(Looping::BackAndForth); });
  loopOff = addChoice("Play Once", {}, [this] { player_.setLooping(Looping::Off); });
  addSeparator();
  everyFrame = addChoice("Every Frame", {}, [this] { player_.setMode(PlayMode::EveryFrame); });
  realTime = addChoice("Real Time", {}, [this] { player_.setMode(PlayMode::RealTime); });
  addSeparator();
  readAhead = addChoice("Read Ahead When Paused", {}, [this] { player_.setReadsAhead(readAhead->isChecked()); });
  emptyCache = add("Empty the Cache", {}, [this] { player_.emptyCache(); });

  for (const auto& choices : {QList{loopAround, loopBackAndForth, loopOff}, QList{everyFrame, realTime}}) {
    auto* group = new QActionGroup(this);
    for (QAction* action : choices) group->addAction(action);
  }
  player_.listen(*this, {.stateChanged = [this] { update(); }});
  update();
}

void PlaybackActions::addMoves(const std::function<void()>& typing) {
  stepBack = add("Previous Frame", Qt::Key_Comma, [this] { player_.step(-1); });
  stepForward = add("Next Frame", Qt::Key_Period, [this] { player_.step(1); });
  stepBackFar = add("Ten Frames Back", Qt::CTRL | Qt::Key_Comma, [this] { player_.step(-10); });
  stepForwardFar = add("Ten Frames Forward", Qt::CTRL | Qt::Key_Period, [this] { player_.step(10); });
  for (QAction* action : {stepBack, stepForward, stepBackFar, stepForwardFar}) action->setAutoRepeat(true);
  addSeparator();
  goToFirst = add("Go to First Frame", Qt::CTRL | Qt::Key_Home, [this] { player_.goTo(0); });
  goToLast = add("Go to Last Frame", Qt::CTRL | Qt::Key_End, [this] { player_.goTo(player_.times().last()); });
  goToIn = add("Go to In Point", Qt::SHIFT | Qt::Key_I, [this] { player_.goTo(player_.inPoint()); });
  goToOut = add("Go to Out Point", Qt::SHIFT | Qt::Key_O, [this] { player_.goTo(player_.outPoint()); });
  goToPosition = add("Go to Position\u2026", Qt::CTRL | Qt::Key_G, typing);
}

QAction* PlaybackActions::add(const char* text, const QKeySequence& keys, const std::function<void()>& work) {
  auto* action = new QAction(windowText(text), this);
  action->setShortcut(keys);
  action->setAutoRepeat(false);
  QObject::connect(action, &QAction::triggered, this, work);
  all_.append(action);
  return action;
}

QAction* PlaybackActions::addChoice(const char* text, const QKeySequence& keys, const std::function<void()>& work) {
  QAction* action = add(text, keys, work);
  action->setCheckable(true);
  return action;
}

void PlaybackActions::addSeparator() {
  auto* separator = new QAction(this);
  separator->setSeparator(true);
  all_.append(separator);
}

void PlaybackActions::update() {
  const bool moves = player_.times().count() > 1;
  for (QAction* action : all_) action->setEnabled(moves);
  emptyCache->setEnabled(true);
  clearRange->setEnabled(moves && player_.hasRange());
  play->setText(player_.isPlaying() ? windowText("Pause") : windowText("Play"));
  loopAround->setChecked(player_.looping() == Looping::Around);
  loopBackAndForth->setChecked(player_.looping() == Looping::BackAndForth);
  loopOff->setChecked(player_.looping() == Looping::Off);
  everyFrame->setChecked(player_.mode() == PlayMode::EveryFrame);
  realTime->setChecked(player_.mode() == PlayMode::RealTime);
  readAhead->setChecked(player_.readsAhead());
}

}  // namespace host
