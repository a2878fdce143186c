// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/QuartzComposer/TestPatches.h"

TEST(NodeManager, TheFirstOfANamespaceIsTheOneThatIsFound) {
  const std::string space = "org.vorto.test.first";
  EXPECT_EQ(GFNodeManager::managerForNodeNamespace(space), nullptr);
  const auto first = std::make_shared<GFNodeManager>();
  EXPECT_FALSE(first->initWithNamespace(""));
  EXPECT_TRUE(first->initWithNamespace(space));
  EXPECT_FALSE(first->initWithNamespace("org.vorto.test.again"));
  EXPECT_TRUE(std::make_shared<GFNodeManager>()->initWithNamespace(space));
  EXPECT_EQ(GFNodeManager::managerForNodeNamespace(space), first);
  GFNodeManager onTheStack;
  EXPECT_FALSE(onTheStack.initWithNamespace("org.vorto.test.stack")) << "the table could not keep it";
}

TEST(NodeManager, RegistersWholeNodesOnly) {
  const auto manager = newManager();
  const QCPatch::Factory factory = [] { return std::make_shared<QCPatch>(); };
  EXPECT_FALSE(manager->registerNodeWithName("", {}, factory));
  EXPECT_FALSE(manager->registerNodeWithName("N", PropertyList::array(), factory));
  EXPECT_FALSE(manager->registerNodeWithName("N", {}, nullptr));
  EXPECT_TRUE(manager->registerNodeWithName("N", {}, factory));
  EXPECT_FALSE(manager->registerNodeWithName("N", {}, factory));
  EXPECT_TRUE(
      manager->registerNodeWithName("A", {}, []() -> std::shared_ptr<QCPatch> { throw std::logic_error("no"); }));
  EXPECT_EQ(manager->nodeNames(), (Names{"N", "A"}));
  EXPECT_EQ(manager->nodeInstanceWithName("A"), nullptr);
  EXPECT_EQ(manager->nodeInstanceWithName("unknown"), nullptr);
  EXPECT_EQ(manager->nodeAttributesWithName("unknown"), nullptr);
  EXPECT_EQ(manager->pathOfNodeWithName("N"), "");
  EXPECT_TRUE(manager->loadFailures().empty()) << "the caller was told";
}
