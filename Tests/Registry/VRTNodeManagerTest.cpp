// SPDX-License-Identifier: BSD-3-Clause
#include "Registry/VRTNodeManager.h"

#include "Registry/BrivoCompatability.h"
#include "Tests/QuartzComposer/TestFolder.h"
#include "Tests/Support/Lists.h"

namespace {

using Names = std::vector<std::string>;

const char* const compositionText =
    "<plist version=\"1.0\"><dict><key>formatVersion</key><integer>1</integer><key>attributes</key><dict>"
    "<key>protocols</key><dict><key>generator</key><dict/><key>filter</key><dict/></dict></dict></dict></plist>";

// A home folder with one composition that is both a generator and a filter, and one plug-in that looks for the manager.
// Each test runs in a process of its own, so that the shared manager is made after this.
class NodeManagerInHome : public testing::Test {
 protected:
  NodeManagerInHome() {
    home_.write("Library/Plug-Ins/Vorto/Both.qtz", compositionText);
    home_.writeBundle("Library/Plug-Ins/Vorto/Searching.plugin", "SearchingShared");
    setenv("HOME", home_.path().c_str(), 1);
  }
  static bool has(const Names& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
  }
  TestFolder home_;
};

std::shared_ptr<QCPatch> plainPatch() {
  return std::make_shared<QCPatch>();
}

class Instantiating : public VRTNodeManager, public GFNodeInstantiating {
 public:
  std::shared_ptr<QCPatch> instantiateNodeWithName(std::string_view name) override {
    wanted = name;
    return name == "Own" ? plainPatch() : nullptr;
  }
  std::string wanted;
};

}  // namespace

TEST_F(NodeManagerInHome, LoadsTheHomeFolderOnFirstUseAndListsByKind) {
  const auto manager = VRTNodeManager::manager();
  ASSERT_TRUE(manager);
  EXPECT_EQ(manager, VRTNodeManager::manager());
  EXPECT_EQ(manager->nodeNamespace(), VRTNodeNamespace);
  EXPECT_TRUE(has(manager->filterNames(), "Both"));
  EXPECT_TRUE(has(manager->generatorNames(), "Both"));
  EXPECT_FALSE(has(manager->transitionNames(), "Both"));
  EXPECT_FALSE(has(manager->blendModeNames(), "Both"));
  Names names{"kept"};
  manager->addEffectsWithProtocol("filter", names);
  EXPECT_EQ(names.front(), "kept");
  EXPECT_EQ(Names(names.begin() + 1, names.end()), manager->filterNames());
  const PropertyList* attributes = manager->nodeAttributesWithName("Searching Shared");
  ASSERT_NE(attributes, nullptr);
  EXPECT_TRUE(attributes->find("managerIsShared")->boolValue()) << "a plug-in finds the manager that is being made";
}

TEST_F(NodeManagerInHome, CompatibilityClassMakesNoSecondManager) {
  TarnEffectManager::initialize();
  EXPECT_EQ(GFNodeManager::managerForNodeNamespace(VRTNodeNamespace), nullptr);
  const auto tarn = std::make_shared<TarnEffectManager>();
  const auto shared = TarnEffectManager::manager();
  ASSERT_TRUE(shared);
  EXPECT_NE(std::dynamic_pointer_cast<VRTNodeManager>(tarn), shared);
  EXPECT_EQ(shared->className(), "VRTNodeManager");
  TarnEffectManager::initialize();
  EXPECT_EQ(VRTNodeManager::manager(), shared);
  EXPECT_TRUE(tarn->init());
  EXPECT_EQ(VRTNodeManager::manager(), shared) << "the first stays registered";
}

TEST_F(NodeManagerInHome, FallsBackToBuiltInPatches) {
  const auto manager = VRTNodeManager::manager();
  QCPatch::registerPatch("Built In", attributesOfKind("filter"), plainPatch);
  EXPECT_EQ(manager->nodeAttributesWithName("Built In"), QCPatch::patchAttributesWithName("Built In"));
  EXPECT_NE(manager->nodeInstanceWithName("Built In"), nullptr);
  EXPECT_FALSE(has(manager->filterNames(), "Built In")) << "only nodes of the manager are listed";
  EXPECT_EQ(manager->nodeAttributesWithName("unknown"), nullptr);
  EXPECT_EQ(manager->nodeInstanceWithName("unknown"), nullptr);
}

TEST_F(NodeManagerInHome, TakesKindsFromTheSharedManagerAndNamesFromItself) {
  const auto shared = VRTNodeManager::manager();
  const auto other = std::make_shared<VRTNodeManager>();
  ASSERT_TRUE(other->initWithNamespace("org.vorto.test.other"));
  other->registerNodeWithName("Only Here", attributesOfKind("filter"), plainPatch);
  other->registerNodeWithName("Filter There", {}, plainPatch);
  shared->registerNodeWithName("Filter There", attributesOfKind("filter"), plainPatch);
  EXPECT_FALSE(has(other->filterNames(), "Only Here"));
  EXPECT_TRUE(has(other->filterNames(), "Filter There"));
}

TEST_F(NodeManagerInHome, ASubclassMayMakeTheInstancesAndSamplerSlotsKeepNothingAlive) {
  const auto manager = std::make_shared<Instantiating>();
  ASSERT_TRUE(manager->initWithNamespace("org.vorto.test.instantiating"));
  EXPECT_NE(manager->nodeInstanceWithName("Own"), nullptr);
  manager->registerNodeWithName("Registered", {}, plainPatch);
  EXPECT_EQ(manager->nodeInstanceWithName("Registered"), nullptr) << "used instead of the table";
  EXPECT_EQ(manager->wanted, "Registered");

  const auto image = std::make_shared<QCColor>(), input = std::make_shared<QCColor>();
  manager->setImageSampler(image.get());
  manager->setInputSampler(input.get());
  EXPECT_TRUE(manager->imageSampler() == image.get() && manager->inputSampler() == input.get());
  EXPECT_EQ(image.use_count() + input.use_count(), 2);
}

TEST(NodeManagerWithoutHome, IsStillMade) {
  setenv("HOME", "relative", 1);
  const auto manager = VRTNodeManager::manager();
  ASSERT_TRUE(manager);
  Names names = manager->filterNames();
  for (const Names& more : {manager->generatorNames(), manager->transitionNames(), manager->blendModeNames()}) {
    names.insert(names.end(), more.begin(), more.end());
  }
  for (const std::string& name : names) {
    EXPECT_NE(manager->nodeInstanceWithName(name), nullptr) << name;
  }
}
