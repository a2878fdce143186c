// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCPatch.h"

#include "Platform/Foundation/NSKeyedArchiver.h"
#include "Platform/Foundation/NSKeyedUnarchiver.h"
#include "Platform/QuartzComposer/QCCloseNames.h"
#include "Tests/QuartzComposer/TestPatches.h"

TEST(Patch, FindsPortsByKeyAndRefusesAKeyTwice) {
  auto patch = std::make_unique<QCPatch>();
  const auto input = patch->addInputPort<QCNumberPort>("x");
  ASSERT_TRUE(input);
  EXPECT_EQ(patch->addOutputPort<QCNumberPort>("x"), nullptr);
  EXPECT_EQ(patch->addInputPort<QCNumberPort>(""), nullptr);
  EXPECT_EQ(patch->portForKey("x"), input.get());
  EXPECT_EQ(patch->portForKey("y"), nullptr);
  EXPECT_EQ(input->node(), patch.get());
  patch.reset();
  EXPECT_EQ(input->node(), nullptr);
}

TEST(Patch, TurnsWhateverItsCodeDoesIntoAReason) {
  struct Failing : QCPatch {
    bool execute(double time, std::string* reason) override {
      if (time == 0) throw 5;
      *reason = time == 1 ? "one" : "";
      return time == 3;
    }
  } patch;
  std::string reason;
  EXPECT_TRUE(!patch.executeAtTime(0, &reason) && !reason.empty());
  EXPECT_TRUE(!patch.executeAtTime(1, &reason) && reason == "one") << reason;
  EXPECT_TRUE(!patch.executeAtTime(2, nullptr) && patch.executeAtTime(3, &reason));
}

TEST(Patch, BuiltInPatchesAreFoundByName) {
  const QCPatch::Factory factory = [] { return std::make_shared<QCPatch>(); };
  const QCPatch::Factory throwing = []() -> std::shared_ptr<QCPatch> { throw std::logic_error("no"); };
  EXPECT_EQ(QCPatch::patchWithName("Built In"), nullptr);
  EXPECT_EQ(QCPatch::patchAttributesWithName("Built In"), nullptr);
  EXPECT_FALSE(QCPatch::registerPatch("", {}, factory));
  EXPECT_FALSE(QCPatch::registerPatch("Built In", {}, nullptr));
  EXPECT_TRUE(QCPatch::registerPatch("Built In", dict({{"name", text("b")}}), factory));
  EXPECT_FALSE(QCPatch::registerPatch("Built In", {}, factory));
  EXPECT_NE(QCPatch::patchWithName("Built In"), nullptr);
  EXPECT_EQ(QCPatch::patchAttributesWithName("Built In")->find("name")->stringValue(), "b");
  EXPECT_TRUE(QCPatch::registerPatch("Throwing", {}, throwing));
  EXPECT_EQ(QCPatch::patchWithName("Throwing"), nullptr);
}

TEST(Color, TravelsThroughCoders) {
  const auto color = std::make_shared<QCColor>(0.25, -1, 1e300, -0.0);
  const auto archive = NSKeyedArchiver::archivedData(color, PropertyListFormat::Binary, nullptr);
  ASSERT_TRUE(archive);
  const auto restored = NSKeyedUnarchiver::unarchiveObject(*archive, nullptr);
  EXPECT_TRUE(restored && restored->isEqual(*color));
  EXPECT_TRUE(color->copyWithZone()->isEqual(*color));
  EXPECT_FALSE(color->isEqual(QCColor()));
}

TEST(CloseNames, AreNearestFirstAndFewAndNearEnough) {
  const std::vector<std::string> known{"Gradient Ramp", "Gradient Map", "Levels", "Over", "Oven", "Omen", "Ever"};
  EXPECT_EQ(QCCloseNames("gradient map", known), (Names{"Gradient Map", "Gradient Ramp"}));
  EXPECT_EQ(QCCloseNames("Levls", known), Names{"Levels"});
  EXPECT_EQ(QCCloseNames("Over", known), (Names{"Over", "Oven", "Ever"})) << "three at most";
  for (const char* far : {"Checkerboard", ""}) EXPECT_EQ(QCCloseNames(far, known), Names{});
  EXPECT_EQ(QCCloseNamesHint("Levls", known), "; did you mean \"Levels\"?");
  EXPECT_EQ(QCCloseNames("abcdefghi", {"bcdefghia", "fghiabcde", "xabcdefghiyz", "abcdefghiwxyz", "defghi"}),
            (Names{"bcdefghia", "xabcdefghiyz", "defghi"}));
  Names many(1500, std::string(256, 'a'));
  many[0] = many[1499] = std::string(255, 'a');
  EXPECT_EQ(QCCloseNames(std::string(256, 'a'), many)[0].size(), 256u);
  many.insert(many.begin() + 1, 1498, std::string(200, 'b'));
  EXPECT_EQ(QCCloseNames(many[0], many), Names{many[0]}) << "the others come too late";
}
