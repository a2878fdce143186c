// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/QuartzComposer/TestPatches.h"

namespace {

using P = PropertyList;

double numberAt(const QCPatch& patch, const char* key) {
  return dynamic_cast<QCNumberPort&>(*patch.portForKey(key)).doubleValue();
}

std::shared_ptr<QCPatch> instanceOf(const char* name) {
  const auto manager = managerWithTestPatches();
  loadFile(*manager, name);
  return manager->nodeInstanceWithName(name);
}

}  // namespace

TEST(Composition, CarriesEveryValueAlongItsConnection) {
  const auto manager = managerWithTestPatches();
  loadFile(*manager, "Diamond");
  const auto patch = manager->nodeInstanceWithName("Diamond");
  const auto image = std::make_shared<TestImage>();
  ASSERT_TRUE(patch && patch->portForKey("image")->setValue(image));
  dynamic_cast<QCNumberPort&>(*patch->portForKey("x")).setDoubleValue(3);
  executedLabels.clear();
  std::string reason;
  ASSERT_TRUE(patch->executeAtTime(0, &reason)) << reason;

  EXPECT_EQ(executedLabels, (Names{"first", "second", "last"}));
  EXPECT_EQ(numberAt(*patch, "sum"), (3 + 10) + (3 + 0)) << "one input feeds two nodes";
  EXPECT_EQ(patch->portForKey("outputImage")->value(), image) << "images are shared";
  const auto object = std::dynamic_pointer_cast<TestObject>(patch->portForKey("outputObject")->value());
  ASSERT_TRUE(object && object->number() == 6);
  ASSERT_TRUE(patch->executeAtTime(1, nullptr));
  EXPECT_NE(patch->portForKey("outputObject")->value(), object) << "objects are copied";

  EXPECT_EQ(numberAt(*manager->nodeInstanceWithName("Diamond"), "x"), 1) << "instances share nothing";
}

TEST(Composition, PublishesPortsInTheirClassWithTheirValueAndAttributes) {
  const auto patch = instanceOf("Published");
  ASSERT_TRUE(patch);
  EXPECT_EQ(numberAt(*patch, "a"), 0.5);
  EXPECT_EQ(numberAt(*patch, "b"), 5);
  EXPECT_EQ(patch->portForKey("a")->attributes(),
            dict({{"default", P::real(0.5)}, {"name", text("First")}, {"minimum", P::real(-2)}}));
  EXPECT_EQ(patch->portForKey("b")->name(), "Second");
  EXPECT_EQ(patch->portForKey("o")->className(), "TestObjectPort");
  EXPECT_EQ(patch->portForKey("o")->stateValue(), P::integer(4));
  ASSERT_TRUE(patch->executeAtTime(0, nullptr));
  EXPECT_EQ(numberAt(*patch, "s"), 5.5);
}

TEST(Composition, NestsAndPublishesAgain) {
  const auto manager = managerWithTestPatches();
  for (const char* name : {"Outer", "Diamond"}) loadFile(*manager, name);  // named before it was there
  EXPECT_EQ(manager->nodeNames(), (Names{"Sum", "Throw", "Diamond", "Outer"}));
  const auto patch = manager->nodeInstanceWithName("Outer");
  ASSERT_TRUE(patch && patch->executeAtTime(0, nullptr));
  EXPECT_EQ(numberAt(*patch, "total"), 1 + 12);
  EXPECT_TRUE(manager->loadFailures().empty());
}

TEST(Composition, DependsOnWhatAnyOfItsNodesDependsOn) {
  const auto traits = [](bool time, bool state) {
    return dict({{"dependsOnTime", P::boolean(time)}, {"keepsState", P::boolean(state)}});
  };
  const auto manager = newManager();
  const std::pair<const char*, P> nodes[] = {{"Plain", traits(false, false)},
                                             {"Timed", traits(true, false)},
                                             {"Stateful", traits(false, true)},
                                             {"Older", {}}};
  for (const auto& [name, attributes] : nodes) {
    manager->registerNodeWithName(name, attributes, [list = attributes] { return std::make_shared<QCPatch>(list); });
  }
  struct Case {
    const char* name;
    Names nodes;
    P own, expected;
  };
  const Case cases[] = {
      {"plain", {"Plain", "Plain"}, {}, traits(false, false)},
      {"timed", {"Plain", "Timed"}, {}, traits(true, false)},
      {"of older nodes", {"Plain", "Older"}, {}, traits(true, true)},
      {"lowered", {"Stateful", "Plain"}, traits(false, false), traits(false, true)},
      {"raised", {"Plain"}, traits(true, false), traits(true, false)},
      {"nested", {"plain", "raised", "lowered"}, {}, traits(true, true)},
  };
  for (const Case& each : cases) {
    P file = composition(each.name, each.nodes), attributes = each.own;
    attributes.set("name", text(each.name));
    file.set("attributes", attributes);
    load(*manager, file, std::string(each.name) + ".qtz");
  }
  for (const Case& each : cases) {
    SCOPED_TRACE(each.name);
    const auto made = manager->nodeInstanceWithName(each.name);
    const P* listed = manager->nodeAttributesWithName(each.name);
    ASSERT_TRUE(made && listed);
    for (const char* const key : {"dependsOnTime", "keepsState"}) {
      EXPECT_EQ(*made->attributes().find(key), *each.expected.find(key)) << key;
      EXPECT_EQ(*listed->find(key), *each.expected.find(key)) << key;
      EXPECT_EQ(made->declaresFalse(key), !each.expected.find(key)->boolValue()) << key;
    }
  }
}

TEST(Composition, NamesTheNodeThatFailedAndItselfAfterItsFile) {
  std::string reason;
  EXPECT_FALSE(instanceOf("Throws")->executeAtTime(0, &reason));
  EXPECT_EQ(reason, "node \"t\" (Throw): thrown on purpose");
  const auto manager = newManager();
  load(*manager, dict({{"formatVersion", P::integer(1)}}), "By File.qtz");
  EXPECT_EQ(manager->nodeNames(), Names{"By File"});
  EXPECT_EQ(manager->nodeAttributesWithName("By File")->find("name")->stringValue(), "By File");
}

TEST(Composition, WaitsForItsNodesUntilLoadingHasEnded) {
  const TestFolder folder;
  folder.writeBundle("A.plugin", "Good");
  folder.writeBundle("B.plugin", "Searching");
  const auto manager = newManager();
  load(*manager, composition("Ready", {"Good A"}), "Ready.qtz");
  load(*manager, composition("Waiting", {"Later"}), "Waiting.qtz");
  Capture errors(STDERR_FILENO);
  manager->loadPlugInsInFolder(folder.path(), {"plugin"});
  EXPECT_EQ(errors.text().find("qtz"), std::string::npos) << "what looks while loading reports no composition";
  const QCPatch::Factory factory = [] { return std::make_shared<QCPatch>(); };
  EXPECT_TRUE(manager->registerNodeWithName("Later", {}, factory));
  EXPECT_FALSE(manager->registerNodeWithName("Waiting", {}, factory));
  Names names = manager->nodeNames();
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (Names{"Good A", "Good B", "Later", "Ready", "Searching", "Waiting"}));
  EXPECT_NE(manager->nodeInstanceWithName("Waiting"), nullptr);
}

TEST(Composition, DoesNotOutliveANodeThatWasTakenBack) {
  const TestFolder folder;
  folder.writeBundle("A.plugin", "Throwing");
  const auto manager = newManager();
  load(*manager, composition("Built On It", {"Taken Back"}));
  manager->loadPlugInsInFolder(folder.path(), {"plugin"});
  EXPECT_EQ(manager->nodeNames(), Names{});
  ASSERT_EQ(manager->loadFailures().size(), 2u);
  EXPECT_EQ(manager->loadFailures()[1].reason, "node \"n0\": there is no node \"Taken Back\"");
}
