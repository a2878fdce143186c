// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/PropertyList.h"

#include <cstddef>
#include <optional>
#include <set>
#include <vector>

class QCPort;

namespace host {

// What was done to the parameters of a patch, step by step. A step is all that changed between two commits; while
// interactions run (a drag, an open color picker) nothing is committed, so that they become one step. Which channel of
// levels is on view is no change.
//
// The ports must outlive it.
class UndoHistory {
 public:
  explicit UndoHistory(std::vector<QCPort*> ports);

  // Sources are ports, or whatever else people interact with. Each has one interaction at a time: an end without a
  // start does nothing, and nor does another start.
  void startInteraction(const void* source) { interacting_.insert(source); }
  void endInteraction(const void* source) { interacting_.erase(source); }
  bool isInteracting() const { return !interacting_.empty(); }

  // Those whose values are no longer as they were committed.
  std::vector<QCPort*> changedPorts() const;

  // True when something had changed and a step was made of it.
  bool commit();

  bool canUndo() const { return position_ > 0; }
  bool canRedo() const { return position_ < steps_.size(); }
  // Both commit first, and do nothing within an interaction.
  void undo();
  void redo();

  // Takes the present values for the beginning.
  void forget();

 private:
  using State = std::optional<PropertyList>;  // nothing for an empty object port
  struct Change {
    std::size_t port;
    State before;
    State after;
  };
  using Step = std::vector<Change>;

  bool prepare();
  void give(std::size_t port, const State& state);

  const std::vector<QCPort*> ports_;
  std::vector<State> committed_;
  std::vector<Step> steps_;
  std::size_t position_ = 0;  // steps before it are done, those from it on undone
  std::set<const void*> interacting_;
};

// A port's value without what only says what is on view; and back, with what is on view kept.
std::optional<PropertyList> editedState(const QCPort& port);
std::optional<PropertyList> editedState(std::optional<PropertyList> state);  // of a state that a port gave or takes
void setEditedState(QCPort& port, const std::optional<PropertyList>& state);

}  // namespace host
