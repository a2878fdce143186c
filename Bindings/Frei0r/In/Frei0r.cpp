// SPDX-License-Identifier: BSD-3-Clause
#include "Bindings/Frei0r/In/DescriptionCache.h"
#include "Bindings/Frei0r/In/ForeignPatch.h"
#include "Bindings/Frei0r/In/HelperProcess.h"
#include "Bindings/Frei0r/In/Search.h"
#include "Platform/Foundation/NSCacheFile.h"
#include "Platform/QuartzComposer/QCPlugIn.h"
#include "Registry/VRTNodeManager.h"

#include <dlfcn.h>

#include <algorithm>
#include <filesystem>
#include <set>

namespace vorto::frei0r {
namespace {

struct Found {
  std::string path;
  std::string state;
};

std::vector<Found> foundPlugIns() {
  std::vector<Found> found;
  for (const std::string& path : foreignPlugIns()) {
    if (std::optional<std::string> state = NSFileState(path)) found.push_back({path, std::move(*state)});
  }
  return found;
}

// Has those described that the cache does not know.
void complete(DescriptionCache& cache, const std::vector<Found>& found) {
  std::vector<const Found*> unknown;
  std::vector<std::string> paths;
  for (const Found& each : found) {
    if (cache.find(each.path, each.state)) continue;
    unknown.push_back(&each);
    paths.push_back(each.path);
  }
  if (paths.empty()) return;
  std::vector<Described> described = describePlugIns(paths);
  for (std::size_t i = 0; i < unknown.size(); ++i) {
    cache.add(unknown[i]->path, unknown[i]->state, std::move(described[i]));
  }
  cache.write();
}

// "frei0r Glow"; where another one has that name already "frei0r Glow (glow)", after the file.
std::string nodeName(const ForeignEffect& effect, const std::string& path, std::set<std::string>& taken) {
  const std::string stem = tidyLine(std::filesystem::path(path).stem().string());
  const std::string own = tidyLine(effect.name);
  std::string name = "frei0r " + (own.empty() ? stem : own);
  if (!taken.insert(name).second) {
    name += " (" + stem + ")";
    taken.insert(name);
  }
  return name;
}

// Whether our own effects are the plug-ins here, and another program their host. It waits for nobody's descriptions;
// what is known serves compositions that have such effects in them.
bool isInHostOfOurs() {
  void* const module = dlopen("vorto-frei0r.so", RTLD_LAZY | RTLD_NOLOAD);
  if (module) dlclose(module);
  return module != nullptr;
}

void registerForeignEffects(GFNodeManager& manager) {
  // Nodes of the framework's own namespace: what merely tries this bundle has no use for them.
  if (manager.nodeNamespace() != VRTNodeNamespace) return;
  const std::vector<Found> found = foundPlugIns();
  if (found.empty()) return;
  if (helperProgram().empty()) {
    manager.addLoadFailure("frei0r plug-ins", "the program vorto-frei0r-runner, which runs them, is not there");
    return;
  }
  DescriptionCache cache;
  const bool isQuick = isInHostOfOurs();
  if (!isQuick) complete(cache, found);
  std::set<std::string> taken;
  for (const Found& each : found) {
    const Report* const report = cache.find(each.path, each.state);
    if (isQuick && (!report || !report->effect)) continue;
    if (!report || !report->effect) {
      manager.addLoadFailure(each.path, report ? report->reason : "it was not described");
      continue;
    }
    const std::string name = nodeName(*report->effect, each.path, taken);
    const auto node = std::make_shared<const ForeignNode>(name, each.path, *report->effect);
    manager.registerNodeWithName(name, node->attributes, [node] { return std::make_shared<ForeignPatch>(node); });
  }
}

}  // namespace
}  // namespace vorto::frei0r

QC_PLUGIN_ENTRY(&vorto::frei0r::registerForeignEffects)
