// SPDX-License-Identifier: BSD-3-Clause
// Good and broken plug-ins: this file makes the one whose name (TEST_PLUGIN_Good, ...) is defined.
#include "Platform/QuartzComposer/QCPlugIn.h"
#include "Registry/VRTNodeManager.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace {

[[maybe_unused]] void registerNode(GFNodeManager& manager, const std::string& name, PropertyList attributes = {}) {
  attributes.set("description", PropertyList::string("from the good plug-in"));
  manager.registerNodeWithName(name, attributes, [attributes] { return std::make_shared<QCPatch>(attributes); });
}

}  // namespace

#if defined(TEST_PLUGIN_Good)
QC_PLUGIN_ENTRY([](GFNodeManager& manager) {
  registerNode(manager, "Good A");
  registerNode(manager, "Good B");
})
#elif defined(TEST_PLUGIN_Unmade)
QC_PLUGIN_ENTRY([](GFNodeManager& manager) {
  PropertyList protocols;
  protocols.set("generator", PropertyList());
  PropertyList attributes;
  attributes.set("protocols", protocols);
  manager.registerNodeWithName("Throws", attributes,
                               []() -> std::shared_ptr<QCPatch> { throw std::runtime_error("no patch today"); });
  manager.registerNodeWithName("Gives None", attributes, [] { return nullptr; });
})
#elif defined(TEST_PLUGIN_ThrowingConstructor)
QC_PLUGIN_ENTRY([](GFNodeManager&) {})
const int constructed = [] {
  throw std::runtime_error("before anybody can catch");
  return 0;
}();
#elif defined(TEST_PLUGIN_Hanging)
QC_PLUGIN_ENTRY([](GFNodeManager&) {
  for (volatile bool forever = true; forever;) {
  }
})
#elif defined(TEST_PLUGIN_Duplicate)
QC_PLUGIN_ENTRY([](GFNodeManager& manager) {
  manager.registerNodeWithName("Good A", {}, [] { return std::make_shared<QCPatch>(); });
  registerNode(manager, "Duplicate B");
})
#elif defined(TEST_PLUGIN_Throwing)
// Looks at the nodes in between, so that a composition which needs the node is complete before the node is taken back.
QC_PLUGIN_ENTRY([](GFNodeManager& manager) {
  registerNode(manager, "Taken Back");
  manager.nodeNames();
  throw std::runtime_error("no licence");
})
#elif defined(TEST_PLUGIN_ThrowingDescription)
const QCPlugInDescription* QCPlugInDescribe() {
  throw std::runtime_error("no words");
}
#elif defined(TEST_PLUGIN_WrongVersion)
const QCPlugInDescription* QCPlugInDescribe() {
  static const QCPlugInDescription description{QCPlugInInterfaceVersion + 1, [](GFNodeManager&) { std::abort(); }};
  return &description;
}
#elif defined(TEST_PLUGIN_NoDescription)
const QCPlugInDescription* QCPlugInDescribe() {
  return nullptr;
}
#elif defined(TEST_PLUGIN_NoFunction)
QC_PLUGIN_ENTRY(nullptr)
#elif defined(TEST_PLUGIN_NoEntry)
extern "C" __attribute__((visibility("default"))) int QCPlugInSomethingElse() {
  return 0;
}
#elif defined(TEST_PLUGIN_Unresolved)
void definedNowhere(GFNodeManager& manager);
QC_PLUGIN_ENTRY(definedNowhere)
#elif defined(TEST_PLUGIN_Searching)
// Looks for its manager and for nodes while it is loaded, and loads the folder that it is in.
QC_PLUGIN_ENTRY([](GFNodeManager& manager) {
  const bool isFound = GFNodeManager::managerForNodeNamespace(manager.nodeNamespace()).get() == &manager;
  const std::string folder = std::filesystem::path(manager.pathOfNodeWithName("Good A")).parent_path().string();
  if (!folder.empty()) manager.loadPlugInsInFolder(folder, {"plugin"});
  PropertyList attributes;
  PropertyList seen = PropertyList::array();
  for (const std::string& name : manager.nodeNames()) seen.append(PropertyList::string(name));
  attributes.set("managerIsFound", PropertyList::boolean(isFound));
  attributes.set("seen", std::move(seen));
  registerNode(manager, "Searching", attributes);
})
#elif defined(TEST_PLUGIN_SearchingShared)
// Looks for the framework's own manager while that one is being made.
QC_PLUGIN_ENTRY([](GFNodeManager& manager) {
  PropertyList attributes;
  attributes.set("managerIsShared", PropertyList::boolean(VRTNodeManager::manager().get() == &manager));
  registerNode(manager, "Searching Shared", attributes);
})
#else
#error "no plug-in is named"
#endif
