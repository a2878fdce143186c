// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/QuartzComposer/QCPatch.h"

#include <cstddef>
#include <functional>
#include <map>

// Inside this room only.

struct QCComposition;

// How much an instance of a node holds: itself and all that it is composed of.
struct QCNodeExtent {
  std::size_t nodes = 1;
  std::size_t depth = 0;  // 0: not a composition
};

// What a manager knows of one node.
struct QCNodeEntry {
  std::string name;
  PropertyList attributes;
  QCPatch::Factory factory;
  std::string path;                                  // empty unless it came from a file
  std::shared_ptr<const QCComposition> composition;  // null unless it is one
  QCNodeExtent extent;
  std::shared_ptr<QCPatch> shell;  // of a composition: its ports without its nodes (QCCompositionBuilder.h)
};

// Nodes in the order of registration, found by name. Entries keep their address for the life of the table.
class QCNodeTable {
 public:
  bool add(QCNodeEntry entry);  // false when the name is taken
  const QCNodeEntry* find(std::string_view name) const;
  std::size_t size() const { return entries_.size(); }
  const QCNodeEntry& at(std::size_t index) const { return *entries_[index]; }
  void withdraw(std::size_t index);

 private:
  using Entries = std::vector<std::unique_ptr<QCNodeEntry>>;
  Entries entries_;
  Entries withdrawn_;                                                   // somebody may still hold their attributes
  std::map<std::string_view, const QCNodeEntry*, std::less<>> byName_;  // of the entries
};
