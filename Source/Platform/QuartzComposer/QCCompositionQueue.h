// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/QuartzComposer/GFNodeManager.h"
#include "Platform/QuartzComposer/QCComposition.h"
#include "Platform/QuartzComposer/QCNodeTable.h"

// Inside this room only.

// The compositions that wait until all nodes that they name are there.
class QCCompositionQueue {
 public:
  using Composition = std::shared_ptr<const QCComposition>;

  void add(Composition composition) { waiting_.push_back(std::move(composition)); }
  bool empty() const { return waiting_.empty(); }
  const QCComposition* find(std::string_view name) const;  // null when none of that name waits

  // Adds to the table every composition that is complete, those that others name first. The manager supplies nodes
  // that are not in the table.
  void resolve(GFNodeManager& manager, QCNodeTable& table);
  // The same, then gives up on those that are left: none waits any more, and each has its failure.
  std::vector<GFNodeManager::LoadFailure> resolveFinally(GFNodeManager& manager, QCNodeTable& table);

 private:
  struct Attempt;
  std::vector<Composition> waiting_;
};
