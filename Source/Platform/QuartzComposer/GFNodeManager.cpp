// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/GFNodeManager.h"

#include "Platform/Foundation/NSClassTable.h"
#include "Platform/Foundation/NSReason.h"
#include "Platform/QuartzComposer/QCCompositionQueue.h"
#include "Platform/QuartzComposer/QCInstance.h"
#include "Platform/QuartzComposer/QCPlugInBundle.h"
#include "Platform/QuartzComposer/QCPlugInProbe.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <map>
#include <utility>

namespace {

namespace fs = std::filesystem;

const NSClassRegistration kRegisteredManager("GFNodeManager", "NSObject",
                                             [] { return std::make_shared<GFNodeManager>(); });

using Managers = std::map<std::string, std::shared_ptr<GFNodeManager>, std::less<>>;

// Never destroyed: the nodes' factories belong to libraries that may be gone by the end of the process.
Managers& managers() {
  static auto& table = *new Managers;
  return table;
}

// The files of one extension in a folder, by name. Nothing, with the cause, when the folder cannot be read.
std::vector<std::string> filesInFolder(const std::string& folder, const std::string& extension,
                                       std::error_code& error) {
  std::vector<std::string> paths;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    const fs::path& path = entry->path();
    if (path.extension() == "." + extension && !path.filename().string().starts_with('.')) {
      paths.push_back(path.string());
    }
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

}  // namespace

struct GFNodeManager::State {
  std::string nodeNamespace;
  QCNodeTable table;
  QCCompositionQueue compositions;
  std::vector<LoadFailure> failures;
  std::vector<std::string> loading;  // what is being loaded, each inside the one before
  bool isResolving = false;

  void fail(const std::string& path, const std::string& reason) {
    QCReport(path, reason);
    failures.push_back({path, reason});
  }

  // What stands against a registration, or nothing.
  std::string objection(const std::string& name, const PropertyList& attributes,
                        const QCPatch::Factory& factory) const {
    if (name.empty()) {
      return "a node without a name";
    }
    const std::string node = "the node \"" + name + "\" ";
    if (!attributes.isDictionary()) {
      return node + "has attributes that are no dictionary";
    }
    if (!factory) {
      return node + "has no factory";
    }
    const QCNodeEntry* holder = table.find(name);
    const QCComposition* waiting = holder ? nullptr : compositions.find(name);
    if (!holder && !waiting) {
      return {};
    }
    const std::string& path = holder ? holder->path : waiting->path;
    return node + "is there already" + (path.empty() ? "" : ", from " + path);
  }

  void loadFile(GFNodeManager& manager, const std::string& path, bool isBundle) {
    std::error_code error;
    const std::string place = fs::canonical(path, error).string();
    if (error) {
      std::error_code ignored;
      fail(path, fs::is_symlink(path, ignored) ? "the link leads nowhere" : error.message());
      return;
    }
    if (std::find(loading.begin(), loading.end(), place) != loading.end()) {
      return;  // a plug-in that loads the folder that it is in
    }
    loading.push_back(place);
    std::string reason;
    const bool loaded = isBundle ? loadBundle(manager, path, &reason) : loadComposition(path, &reason);
    loading.pop_back();
    if (!loaded) {
      fail(path, reason);
    }
  }

  bool loadComposition(const std::string& path, std::string* reason) {
    QCCompositionQueue::Composition composition = QCCompositionFromFile(path, reason);
    if (!composition) {
      return false;
    }
    compositions.add(std::move(composition));
    return true;
  }

  bool loadBundle(GFNodeManager& manager, const std::string& path, std::string* reason) {
    std::error_code error;
    if (!fs::is_directory(path, error)) {
      return NSRefuse(reason, "it is not a folder");
    }
    const QCPlugInDescription* description = QCLoadPlugInBundle(path, QCSurvivesLoading, reason);
    if (!description) {
      return false;
    }
    const std::size_t mark = table.size();  // for the way back: NOLINT(clang-analyzer-deadcode.DeadStores)
    const std::string outer = std::exchange(registeringPath, path);
    try {
      description->registerNodes(manager);
      registeringPath = outer;
      return true;
    } catch (const std::exception& exception) {
      NSRefuse(reason, std::string("it threw while it registered its nodes: ") + exception.what());
    } catch (...) {
      NSRefuse(reason, "it threw while it registered its nodes");
    }
    registeringPath = outer;
    withdraw(path, mark);
    return false;
  }

  // Takes back what a plug-in registered from a mark on; compositions that may have been built on it wait again.
  void withdraw(const std::string& path, std::size_t mark) {
    for (std::size_t i = mark; i < table.size();) {
      const QCNodeEntry& entry = table.at(i);
      if (entry.composition) {
        compositions.add(entry.composition);
        table.withdraw(i);
      } else if (entry.path == path) {
        table.withdraw(i);
      } else {
        ++i;
      }
    }
  }

  void resolve(GFNodeManager& manager) {
    if (isResolving || compositions.empty()) {
      return;
    }
    isResolving = true;
    if (loading.empty()) {
      for (const LoadFailure& failure : compositions.resolveFinally(manager, table)) {
        fail(failure.path, failure.reason);
      }
    } else {
      compositions.resolve(manager, table);
    }
    isResolving = false;
  }

  std::string registeringPath;  // the bundle whose nodes are being registered, else empty
};

GFNodeManager::GFNodeManager() : state_(std::make_unique<State>()) {}

GFNodeManager::~GFNodeManager() = default;

GFNodeInstantiating::~GFNodeInstantiating() = default;

std::shared_ptr<GFNodeManager> GFNodeManager::managerForNodeNamespace(std::string_view nodeNamespace) {
  const auto found = managers().find(nodeNamespace);
  return found == managers().end() ? nullptr : found->second;
}

bool GFNodeManager::initWithNamespace(const std::string& nodeNamespace) {
  const auto self = std::dynamic_pointer_cast<GFNodeManager>(weak_from_this().lock());
  if (!self || nodeNamespace.empty() || !state_->nodeNamespace.empty()) {
    return false;
  }
  state_->nodeNamespace = nodeNamespace;
  managers().try_emplace(nodeNamespace, self);
  return true;
}

const std::string& GFNodeManager::nodeNamespace() const {
  return state_->nodeNamespace;
}

bool GFNodeManager::registerNodeWithName(const std::string& name, PropertyList attributes, QCPatch::Factory factory) {
  const std::string objection = state_->objection(name, attributes, factory);
  if (objection.empty()) {
    return state_->table.add(
        {name, std::move(attributes), std::move(factory), state_->registeringPath, nullptr, {}, nullptr});
  }
  if (!state_->registeringPath.empty()) {
    state_->fail(state_->registeringPath, objection);
  }
  return false;
}

std::vector<std::string> GFNodeManager::nodeNames() {
  state_->resolve(*this);
  std::vector<std::string> names;
  for (std::size_t i = 0; i < state_->table.size(); ++i) {
    names.push_back(state_->table.at(i).name);
  }
  return names;
}

const PropertyList* GFNodeManager::nodeAttributesWithName(std::string_view name) {
  state_->resolve(*this);
  const QCNodeEntry* entry = state_->table.find(name);
  return entry ? &entry->attributes : nullptr;
}

std::shared_ptr<QCPatch> GFNodeManager::nodeInstanceWithName(std::string_view name) {
  state_->resolve(*this);
  const QCNodeEntry* entry = state_->table.find(name);
  return entry ? QCMakeInstance(name, entry->factory) : nullptr;
}

std::shared_ptr<const QCPatch> GFNodeManager::nodeDescriptionWithName(std::string_view name) {
  state_->resolve(*this);
  const QCNodeEntry* entry = state_->table.find(name);
  return entry && entry->shell ? entry->shell : nodeInstanceWithName(name);
}

std::string GFNodeManager::pathOfNodeWithName(std::string_view name) {
  state_->resolve(*this);
  const QCNodeEntry* entry = state_->table.find(name);
  return entry ? entry->path : std::string();
}

void GFNodeManager::loadPlugInsInFolder(const std::string& folder, const std::vector<std::string>& extensions) {
  std::error_code error;
  if (fs::status(folder, error).type() == fs::file_type::not_found) {
    return;
  }
  for (const std::string& extension : extensions) {
    const bool isBundle = extension == "plugin";
    if (!isBundle && extension != "qtz") {
      continue;
    }
    const std::vector<std::string> paths = filesInFolder(folder, extension, error);
    if (error) {
      state_->fail(folder, "the folder cannot be read: " + error.message());
      return;
    }
    for (const std::string& path : paths) {
      state_->loadFile(*this, path, isBundle);
    }
  }
}

const std::vector<GFNodeManager::LoadFailure>& GFNodeManager::loadFailures() {
  state_->resolve(*this);
  return state_->failures;
}

void GFNodeManager::addLoadFailure(const std::string& path, const std::string& reason) {
  state_->fail(path, reason);
}
