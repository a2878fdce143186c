// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/QuartzComposer/QCPatch.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The nodes of one namespace: made known by plug-ins and compositions, listed and instantiated by name.
//
// A manager enters the table of managers when it is initialised, before it loads anything, since a plug-in may look for
// it while it loads; the first manager of a namespace is the one that managerForNodeNamespace() returns.
class TARN_EXPORT GFNodeManager : public NSObject {
 public:
  // A file that was not loaded, or a part of one that was not taken, and why.
  struct LoadFailure {
    std::string path;
    std::string reason;
  };

  GFNodeManager();
  ~GFNodeManager() override;
  std::string className() const override { return "GFNodeManager"; }

  static std::shared_ptr<GFNodeManager> managerForNodeNamespace(std::string_view nodeNamespace);  // null when none
  // Call once on an object that std::make_shared made; false for an empty namespace, and the second time.
  virtual bool initWithNamespace(const std::string& nodeNamespace);
  const std::string& nodeNamespace() const;

  // False, with nothing changed, when the name is empty or taken (the first stays), the attributes are no dictionary or
  // there is no factory. The reason is kept in loadFailures() when a plug-in that is being loaded is refused a node.
  bool registerNodeWithName(const std::string& name, PropertyList attributes, QCPatch::Factory factory);

  std::vector<std::string> nodeNames();                                       // in the order of registration
  virtual const PropertyList* nodeAttributesWithName(std::string_view name);  // null when unknown
  // Null when unknown, and when the node's factory fails, which is said on standard error.
  virtual std::shared_ptr<QCPatch> nodeInstanceWithName(std::string_view name);
  // What an instance looks like, to those who only read its attributes and ports: a composition without what is inside
  // it, which takes less to make. Null where nodeInstanceWithName() returns null.
  std::shared_ptr<const QCPatch> nodeDescriptionWithName(std::string_view name);
  std::string pathOfNodeWithName(std::string_view name);  // empty unless it came from a file

  // Loads every bundle ("plugin") and composition ("qtz") of a folder, extensions in the given order, files by name;
  // hidden files and all other extensions are passed over. A missing folder is no error. What cannot be loaded is
  // printed on standard error, kept in loadFailures(), and skipped.
  //
  // A composition may name nodes that a later folder brings: it becomes a node when one of the
  // functions here first looks for nodes after loading has ended. What a plug-in calls while it is loaded sees the
  // compositions that are complete by then. A composition whose name a plug-in claims after it keeps the name.
  void loadPlugInsInFolder(const std::string& folder, const std::vector<std::string>& extensions);
  // In the order in which they were found out. Resolves what still waits for nodes first.
  const std::vector<LoadFailure>& loadFailures();
  // For plug-ins that make nodes of files of another kind: one that they could not take becomes a failure like the
  // manager's own, also printed.
  void addLoadFailure(const std::string& path, const std::string& reason);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

// A manager that makes its instances another way implements this; VRTNodeManager tries it first.
class TARN_EXPORT GFNodeInstantiating {
 public:
  virtual ~GFNodeInstantiating();
  // A new node of that name; null for names that it does not make.
  virtual std::shared_ptr<QCPatch> instantiateNodeWithName(std::string_view name) = 0;
};
