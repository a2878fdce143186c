// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTGesture.h"
#include "Controls/VRTInteractions.h"
#include "Platform/Foundation/NSNotificationCenter.h"
#include "Platform/QuartzComposer/QCPort.h"
#include "Platform/TarnKit/NSEvent.h"

#include <gtest/gtest.h>

namespace {

using By = VRTGesture::By;

// A gesture without a view, and what it tells in order.
struct GestureTest : testing::Test {
  GestureTest() {
    const auto listen = [this](const char* name, const std::string& told) {
      observations.push_back(
          NSNotificationCenter::defaultCenter().addObserver(name, nullptr, [this, told](const NSNotification& got) {
            tell(told + (got.object == port.get() ? "" : got.object ? " of another" : " of none"));
          }));
    };
    listen("VortoStartInteraction", "start");
    listen("VortoEndInteraction", "end");
  }
  std::unique_ptr<VRTGesture> make() {
    return std::make_unique<VRTGesture>([this](const VRTGesture::Ending& ending) {
      const char* by[] = {"nothing", "mouse", "keys", "picker"};
      tell(std::string("settle ") + by[int(ending.by)] + (ending.release ? " released" : ""));
    });
  }
  void tell(const std::string& what) {
    log += (log.empty() ? "" : ", ") + what;
    if (onTold) onTold(what);
  }
  std::string take() { return std::exchange(log, {}); }

  std::shared_ptr<QCPort> port = std::make_shared<QCNumberPort>("number");
  std::vector<NSNotificationCenter::Observation> observations;
  std::string log;
  std::function<void(const std::string&)> onTold;
  std::unique_ptr<VRTGesture> gesture = make();
};

TEST_F(GestureTest, OpensAndEndsWithWhatOpenedIt) {
  const NSEvent up;
  EXPECT_TRUE(gesture->clearForPress());
  EXPECT_TRUE(gesture->start(By::Mouse, port));
  EXPECT_EQ(gesture->openedBy(), By::Mouse);
  EXPECT_FALSE(gesture->keysMayAct());
  gesture->loseKeys();
  gesture->release(up, nullptr);
  EXPECT_FALSE(gesture->isOpen());
  EXPECT_EQ(take(), "start, settle mouse released, end");
  gesture->release(up, port);
  EXPECT_EQ(take(), "settle nothing released, end") << "a press without a start";

  EXPECT_TRUE(gesture->hold(1, port));
  EXPECT_TRUE(gesture->hold(2, port));
  EXPECT_TRUE(gesture->keysMayAct());
  EXPECT_TRUE(gesture->letGo(1));
  EXPECT_FALSE(gesture->letGo(1));
  EXPECT_FALSE(gesture->letGo(3));
  EXPECT_EQ(take(), "start");
  EXPECT_TRUE(gesture->letGo(2));
  EXPECT_EQ(take(), "settle keys, end");

  EXPECT_TRUE(gesture->start(By::Picker, port));
  gesture->lose();
  EXPECT_EQ(take(), "start") << "a picker goes on";
  gesture->endWith([this](const VRTGesture::Ending& ending) { tell(ending.port == port ? "own" : ""); });
  gesture->end();
  EXPECT_EQ(take(), "own, end");
}

TEST_F(GestureTest, MakesUpForLostEndsOnce) {
  gesture->start(By::Mouse, port);
  gesture->lose();
  gesture->lose();
  EXPECT_EQ(take(), "start, settle mouse, end");
  gesture->release(NSEvent(), port);
  EXPECT_EQ(take(), "") << "its end has been told";
  gesture->release(NSEvent(), port);
  EXPECT_EQ(take(), "settle nothing released, end") << "but not that of another press";

  gesture->hold(1, port);
  gesture->lose();
  EXPECT_FALSE(gesture->letGo(1));
  gesture->release(NSEvent(), port);
  EXPECT_EQ(take(), "start, settle keys, end, settle nothing released, end") << "keys owe no release";

  gesture->start(By::Mouse, port);
  gesture->lose();
  EXPECT_TRUE(gesture->clearForPress());
  gesture->start(By::Mouse, port);
  take();
  gesture->release(NSEvent(), port);
  EXPECT_EQ(take(), "settle mouse released, end");

  for (const By by : {By::Mouse, By::Keys, By::Picker}) {
    gesture->start(by, port);
    take();
    EXPECT_TRUE(gesture->clearForPress());
    EXPECT_NE(take().find(", end"), std::string::npos);
    gesture->start(by, port);
    take();
    gesture = make();
    EXPECT_EQ(take(), "end");
  }
}

TEST_F(GestureTest, EndsForThePortThatItStartedWith) {
  gesture->start(By::Mouse, port);
  gesture->release(NSEvent(), std::make_shared<QCNumberPort>("other"));
  EXPECT_EQ(take(), "start, settle mouse released, end");
  gesture->start(By::Mouse, port);
  port.reset();
  gesture->release(NSEvent(), nullptr);
  EXPECT_EQ(take(), "start, settle mouse released, end");
  gesture->start(By::Mouse, std::make_shared<QCNumberPort>("dying"));
  take();
  gesture.reset();
  EXPECT_EQ(take(), "") << "nobody is left to hear of it";
}

// Whoever is told may end the gesture or destroy its view, at every step.
TEST_F(GestureTest, KnowsWhetherItSurvived) {
  for (const bool destroys : {false, true}) {
    for (const std::string when : {"start", "settle mouse released", "end"}) {
      gesture = make();
      take();
      onTold = [&](const std::string& told) {
        if (told == when) destroys ? gesture.reset() : gesture->lose();
      };
      const VRTGesture::Alive alive = gesture->alive();
      EXPECT_TRUE(alive);
      EXPECT_EQ(gesture->start(By::Mouse, port), when != "start");
      if (gesture) gesture->release(NSEvent(), port);
      EXPECT_EQ(static_cast<bool>(alive), !destroys);
      EXPECT_EQ(take(), when != "start" ? "start, settle mouse released, end"
                        : destroys      ? "start, end"
                                        : "start, settle mouse, end");
    }
  }
  onTold = nullptr;
  gesture = make();
  gesture->hold(1, port);
  onTold = [&](const std::string&) { gesture.reset(); };
  EXPECT_FALSE(gesture->clearForPress());
  EXPECT_FALSE(VRTGesture::Alive());
}

}  // namespace
