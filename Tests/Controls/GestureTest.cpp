// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTGesture.h"
#include "Controls/VRTInteractions.h"
#include "Platform/Foundation/NSNotificationCenter.h"
#include "Platform/QuartzComposer/QCPort.h"
#include "Platform/TarnKit/NSEvent.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QString>

namespace {

using By = VRTGesture::By;

// A gesture without a view, and what it tells in order: "start", who is settled for (with ^ when a button was let go),
// and "end".
struct GestureTest : testing::Test {
  GestureTest() {
    for (const std::string name : {"VortoStartInteraction", "VortoEndInteraction"}) {
      const std::string word = name == "VortoEndInteraction" ? "end " : "start ";
      observations.push_back(NSNotificationCenter::defaultCenter().addObserver(
          name, nullptr, [this, word](const NSNotification& told) { tell(told.object == port.get() ? word : "! "); }));
    }
  }
  void make() {
    gesture = std::make_unique<VRTGesture>([this](const VRTGesture::Ending& ending) {
      const char* by[] = {"nothing", "mouse", "keys", "picker"};
      tell(by[int(ending.by)] + std::string(ending.release ? "^ " : " "));
    });
  }
  void tell(const std::string& what) {
    log += what;
    if (onTold) onTold();
  }
  // Does what the letters say: press, release, Keys 1 and 2 down and up, a picker opens and closes, the keyboard or the
  // view is lost, the view is destroyed; and "." when Qt has done what it had to do.
  void act(char letter) {
    if (letter == '.') QCoreApplication::processEvents();
    if (!gesture) return;
    if (letter == 'p' && gesture->clearForPress()) gesture->start(By::Mouse, port);
    if (letter == 'r') gesture->release(NSEvent(), port);
    if ((letter == 'K' || letter == 'L') && gesture->catchUp()) gesture->hold(letter, port);
    if (letter == 'k' || letter == 'l') gesture->letGo(std::toupper(letter));
    if (letter == 'o') gesture->start(By::Picker, port);
    if (letter == 'c') gesture->end();
    if (letter == 'f') gesture->loseKeys();
    if (letter == 'v') gesture->lose();
    if (letter == 'd') gesture.reset();
  }
  std::string logOf(const std::string& letters) {
    make();
    for (const char letter : letters) act(letter);
    const std::string told = take();
    gesture.reset();
    act('.');  // what is still late belongs to nobody
    take();
    return told;
  }
  std::string take() { return std::exchange(log, {}); }

  std::shared_ptr<QCPort> port = std::make_shared<QCNumberPort>("number");
  std::vector<NSNotificationCenter::Observation> observations;
  std::string log;
  std::function<void()> onTold;
  std::unique_ptr<VRTGesture> gesture;
};

constexpr std::pair<const char*, const char*> kGestures[] = {
    {"pr", "start mouse^ end "},
    {"pfr", "start mouse^ end "},   // the keyboard is not what opened it
    {"KLkKkl", "start keys end "},  // until the last key is let go
    {"KLf.kl", "start keys end "},
    {"ovc", "start picker end "},  // pickers go on without the view
    {"Koc", "start keys end start picker end "},
    {"ccfvkl", ""},    // nothing is open
    {"pv", "start "},  // lost ends are made up for late
    {"Kd", "start "},
    {"pv.v.r", "start mouse end "},                   // once
    {"pvr.", "start mouse^ end "},                    // not when they come after all
    {"pv.rpr", "start mouse end start mouse^ end "},  // and not for the next press
    {"pvpr.", "start mouse end start mouse^ end "},   // which does not wait
    {"Kvk.", "start keys end "},
    {"Kf.k", "start keys end "},
    {"pvKvk.r", "start mouse end start keys end "},
    {"ppr", "start mouse end start mouse^ end "},  // a press ends whatever is open
    {"Kpkr", "start keys end start mouse^ end "},
    {"opr", "start picker end start mouse^ end "},
    {"pd.", "start end "},
    {"od.", "start end "},
    {"pvd.", "start end "},
    {"pv.d.", "start mouse end "},
};

TEST_F(GestureTest, EveryStartHasItsEnd) {
  for (const auto& [letters, told] : kGestures) EXPECT_EQ(logOf(letters), told) << letters;
  EXPECT_EQ(logOf("r"), "nothing^ end ") << "a press without a start";
  EXPECT_EQ(logOf("pv.rr"), "start mouse end nothing^ end ");
  EXPECT_EQ(logOf("Kv.r"), "start keys end nothing^ end ") << "keys owe no release";
}

// Whoever is told, of anything, may end the gesture or destroy its view.
TEST_F(GestureTest, EveryStartHasItsEndWhateverThoseDoWhoAreTold) {
  for (const auto& gestureAndLog : kGestures) {
    const std::string letters = gestureAndLog.first;
    for (const char deed : {'d', 'v', 'c'}) {
      for (int which = 0; which < 6; ++which) {
        onTold = [&, left = which]() mutable {
          if (left-- == 0) act(deed);
        };
        const std::string told = logOf(letters + "d.");
        const QString words = QString::fromStdString(told);
        EXPECT_EQ(words.count("start"), words.count("end"))
            << letters << ", " << deed << " at " << which << ": " << told;
      }
    }
  }
}

TEST_F(GestureTest, SaysWhatIsOpenAndWhetherTheViewLives) {
  make();
  const VRTGesture::Alive alive = gesture->alive();
  EXPECT_TRUE(gesture->start(By::Mouse, port));
  EXPECT_EQ(gesture->openedBy(), By::Mouse);
  EXPECT_FALSE(gesture->keysMayAct());
  gesture->endWith([this](const VRTGesture::Ending& ending) { tell(ending.port == port ? "own " : "! "); });
  EXPECT_TRUE(gesture->hold(1, port));
  EXPECT_TRUE(gesture->keysMayAct());
  EXPECT_FALSE(gesture->letGo(2));
  EXPECT_TRUE(gesture->letGo(1));
  EXPECT_FALSE(gesture->isOpen());
  onTold = [this] { act('c'); };
  EXPECT_FALSE(gesture->start(By::Mouse, port)) << "ended by whom it told";
  onTold = [this] { act('d'); };
  EXPECT_TRUE(alive);
  EXPECT_FALSE(gesture->start(By::Mouse, port));
  EXPECT_FALSE(alive);
  EXPECT_FALSE(VRTGesture::Alive());
  act('.');
  EXPECT_EQ(take(), "start own end start keys end start mouse end start end ");
}

TEST_F(GestureTest, EndsForThePortThatItStartedWith) {
  make();
  gesture->start(By::Mouse, port);
  gesture->release(NSEvent(), std::make_shared<QCNumberPort>("other"));
  EXPECT_EQ(take(), "start mouse^ end ");
  gesture->start(By::Mouse, std::make_shared<QCNumberPort>("dying"));
  gesture.reset();
  act('.');
  EXPECT_EQ(take(), "! ") << "nobody is left to hear of the end";
}

}  // namespace
