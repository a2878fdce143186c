// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/UndoHistory.h"

#include "Controls/VRTInteractions.h"
#include "Host/Inspect/EditRecorder.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Ports/VRTObjects.h"
#include "Ports/VRTPorts.h"
#include "Tests/Inspect/InspectFixture.h"

#include <gtest/gtest.h>

namespace {

using inspect_test::handleEvents;

class UndoHistoryTest : public testing::Test {
 protected:
  UndoHistoryTest() {
    levels->setValue(VRTHistogram::histogram());
    text->setStringValue("a");
  }
  VRTHistogram& value() { return dynamic_cast<VRTHistogram&>(*levels->rawValue()); }
  // As an editor changes the value in place.
  void setGamma(double gamma) {
    levels->willChangeValue();
    value().setGamma(gamma, 0);
    levels->didChangeValue();
  }

  QCPatch patch;
  VRTHistogramPort* const levels = patch.addInputPort<VRTHistogramPort>("levels").get();
  QCStringPort* const text = patch.addInputPort<QCStringPort>("text").get();
  host::ParameterDocument document{{levels, text}};
  host::UndoHistory& history = document.history();
};

}  // namespace

TEST_F(UndoHistoryTest, GoesBackAndForthThroughSteps) {
  history.forget();
  EXPECT_FALSE(history.commit()) << "nothing changed";
  setGamma(2);
  EXPECT_TRUE(history.commit());
  setGamma(3);
  text->setStringValue("b");
  EXPECT_TRUE(history.commit()) << "one step of both";
  const struct {
    bool back;
    double gamma;
    const char* text;
  } steps[] = {{true, 2, "a"}, {true, 1, "a"}, {true, 1, "a"}, {false, 2, "a"}, {false, 3, "b"}, {false, 3, "b"}};
  for (const auto& [back, gamma, string] : steps) {
    back ? history.undo() : history.redo();
    EXPECT_EQ(value().gammaForChannel(0), gamma);
    EXPECT_EQ(text->stringValue(), string);
    EXPECT_EQ(history.canUndo(), gamma > 1);
  }
  history.undo();
  setGamma(5);  // not committed yet: undo takes it for the last step
  history.undo();
  EXPECT_EQ(value().gammaForChannel(0), 2);
  history.redo();
  EXPECT_EQ(value().gammaForChannel(0), 5);
  EXPECT_FALSE(history.canRedo()) << "a change ends what was undone";
}

TEST_F(UndoHistoryTest, KeepsTheChannelOnViewAndGivesAnEmptyPortItsEmptinessBack) {
  history.forget();
  setGamma(2);
  value().setSelectedChannel(3);
  EXPECT_TRUE(history.commit());
  value().setSelectedChannel(4);
  EXPECT_FALSE(history.commit()) << "no change of the picture";
  history.undo();
  EXPECT_EQ(value().gammaForChannel(0), 1);
  EXPECT_EQ(value().selectedChannel(), 4);

  auto* gradient = patch.addInputPort<VRTGradientPort>("gradient").get();
  host::UndoHistory own({gradient});
  gradient->setValue(VRTGradient::gradient());
  own.undo();
  EXPECT_EQ(gradient->value(), nullptr);
  own.redo();
  EXPECT_NE(gradient->value(), nullptr);
}

TEST_F(UndoHistoryTest, OneDragIsOneStep) {
  int changes = 0;
  int interactions = 0;
  host::EditRecorder recorder(document, {.valueChanged = [&](QCPort&) { ++changes; },
                                         .interactionStarted = [&](QCPort&) { ++interactions; },
                                         .historyChanged = [] {}});
  history.forget();
  setGamma(2);  // the press already changes something, and tells of its start afterwards
  VRTPostStartInteraction(levels);
  for (int i = 0; i < 20; ++i) {
    setGamma(2 + i);
    handleEvents();
  }
  history.undo();
  EXPECT_EQ(value().gammaForChannel(0), 21) << "not in the middle of a drag";
  VRTPostEndInteraction(levels);
  handleEvents();
  setGamma(50);  // a click elsewhere, without a start
  VRTPostEndInteraction(levels);
  handleEvents();
  EXPECT_EQ(changes, 22);
  EXPECT_EQ(interactions, 1);
  history.undo();
  EXPECT_EQ(value().gammaForChannel(0), 21);
  history.undo();
  EXPECT_EQ(value().gammaForChannel(0), 1);
  EXPECT_FALSE(history.canUndo());
}
