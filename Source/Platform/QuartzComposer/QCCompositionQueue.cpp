// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCCompositionQueue.h"

#include "Platform/QuartzComposer/QCCloseNames.h"
#include "Platform/QuartzComposer/QCCompositionBuilder.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace {

std::string quoted(const std::string& text) {
  return '"' + text + '"';
}

}  // namespace

// One look at the waiting compositions: which are complete, and why others are refused.
struct QCCompositionQueue::Attempt {
  enum class Outcome { Incomplete, Added, Refused };
  struct Candidate {
    Composition composition;
    Outcome outcome = Outcome::Incomplete;
    std::string reason;
  };

  GFNodeManager& manager;
  QCNodeTable& table;
  std::vector<Candidate> candidates;

  // What becomes of one composition decides over those that name it, so look again until nothing changes.
  void run() {
    bool changed = true;
    while (changed) {
      changed = false;
      for (Candidate& candidate : candidates) {
        if (candidate.outcome == Outcome::Incomplete) {
          consider(candidate);
          changed |= candidate.outcome != Outcome::Incomplete;
        }
      }
    }
  }

  void consider(Candidate& candidate) {
    const QCComposition& composition = *candidate.composition;
    if (const QCNodeEntry* holder = table.find(composition.name)) {
      refuse(candidate, "the node " + quoted(composition.name) + " is there already" +
                            (holder->path.empty() ? "" : ", from " + holder->path));
      return;
    }
    QCNodeExtent extent{1, 1};
    for (const QCComposition::Node& node : composition.nodes) {
      const QCNodeEntry* entry = table.find(node.name);
      if (!entry && !isElsewhere(node.name)) {
        return;
      }
      const QCNodeExtent inner = entry ? entry->extent : QCNodeExtent{};
      extent.nodes += inner.nodes;
      extent.depth = std::max(extent.depth, inner.depth + 1);
    }
    if (extent.depth > QCCompositionDeepest) {
      refuse(candidate, "compositions are nested more than " + std::to_string(QCCompositionDeepest) + " deep in it");
    } else if (extent.nodes > QCCompositionMostNodesInside) {
      refuse(candidate, "it holds, with the compositions inside it, more than " +
                            std::to_string(QCCompositionMostNodesInside) + " nodes");
    } else {
      addToTable(candidate, extent);
    }
  }

  // Known to the manager, though neither in the table nor about to be: a built-in patch.
  bool isElsewhere(const std::string& name) { return !waits(name) && manager.nodeAttributesWithName(name) != nullptr; }

  bool waits(const std::string& name) const {
    return std::any_of(candidates.begin(), candidates.end(), [&](const Candidate& candidate) {
      return candidate.outcome == Outcome::Incomplete && candidate.composition->name == name;
    });
  }

  void addToTable(Candidate& candidate, QCNodeExtent extent) {
    std::string reason;
    if (!QCPatchWithComposition(*candidate.composition, manager, &reason)) {
      refuse(candidate, reason);
      return;
    }
    const Composition composition = candidate.composition;
    GFNodeManager* owner = &manager;  // owns the table, and so the factory
    const auto factory = [composition, owner]() -> std::shared_ptr<QCPatch> {
      std::string cause;
      std::shared_ptr<QCPatch> patch = QCPatchWithComposition(*composition, *owner, &cause);
      if (!patch) {
        throw std::runtime_error(cause);
      }
      return patch;
    };
    table.add({composition->name, composition->attributes, factory, composition->path, composition, extent});
    candidate.outcome = Outcome::Added;
  }

  static void refuse(Candidate& candidate, std::string reason) {
    candidate.outcome = Outcome::Refused;
    candidate.reason = std::move(reason);
  }

  // Why a composition that nothing more can be added to is incomplete: it comes round to itself, or a node is missing.
  std::string reasonOfIncomplete(const Candidate& start) {
    std::vector<const Candidate*> chain;
    const Candidate* candidate = &start;
    while (candidate && std::find(chain.begin(), chain.end(), candidate) == chain.end()) {
      chain.push_back(candidate);
      const QCComposition::Node* missing = missingNode(*candidate);
      candidate = missing ? waitingFor(*missing) : nullptr;
    }
    if (candidate == &start) {
      return cycleText(chain);
    }
    return missingText(start);
  }

  const QCComposition::Node* missingNode(const Candidate& candidate) {
    const auto& nodes = candidate.composition->nodes;
    const auto missing = std::find_if(nodes.begin(), nodes.end(), [&](const QCComposition::Node& node) {
      return !table.find(node.name) && !isElsewhere(node.name);
    });
    return missing == nodes.end() ? nullptr : &*missing;
  }

  const Candidate* waitingFor(const QCComposition::Node& node) const {
    const auto found = std::find_if(candidates.begin(), candidates.end(), [&](const Candidate& candidate) {
      return candidate.outcome == Outcome::Incomplete && candidate.composition->name == node.name;
    });
    return found == candidates.end() ? nullptr : &*found;
  }

  static std::string cycleText(const std::vector<const Candidate*>& chain) {
    std::string text = "the composition contains itself: ";
    for (const Candidate* candidate : chain) {
      text += quoted(candidate->composition->name) + " > ";
    }
    return text + quoted(chain.front()->composition->name);
  }

  std::string missingText(const Candidate& candidate) {
    const QCComposition::Node* missing = missingNode(candidate);
    if (!missing) {
      return "its nodes were not there when they were looked for";
    }
    const QCComposition::Node& node = *missing;
    const std::string text = "node " + quoted(node.identifier) + ": ";
    const auto named = std::find_if(candidates.begin(), candidates.end(),
                                    [&](const Candidate& other) { return other.composition->name == node.name; });
    if (named != candidates.end()) {
      return text + "the composition " + quoted(node.name) + " could not be loaded";
    }
    std::vector<std::string> known;
    for (std::size_t i = 0; i < table.size(); ++i) {
      known.push_back(table.at(i).name);
    }
    return text + "there is no node " + quoted(node.name) + QCCloseNamesHint(node.name, known);
  }
};

const QCComposition* QCCompositionQueue::find(std::string_view name) const {
  const auto found = std::find_if(waiting_.begin(), waiting_.end(),
                                  [&](const Composition& composition) { return composition->name == name; });
  return found == waiting_.end() ? nullptr : found->get();
}

void QCCompositionQueue::resolve(GFNodeManager& manager, QCNodeTable& table) {
  Attempt attempt{manager, table, {}};
  for (const Composition& composition : waiting_) {
    attempt.candidates.push_back({composition, {}, {}});
  }
  attempt.run();
  for (const Attempt::Candidate& candidate : attempt.candidates) {
    if (candidate.outcome == Attempt::Outcome::Added) {
      waiting_.erase(std::find(waiting_.begin(), waiting_.end(), candidate.composition));
    }
  }
}

std::vector<GFNodeManager::LoadFailure> QCCompositionQueue::resolveFinally(GFNodeManager& manager, QCNodeTable& table) {
  Attempt attempt{manager, table, {}};
  for (Composition& composition : std::exchange(waiting_, {})) {
    attempt.candidates.push_back({std::move(composition), {}, {}});
  }
  attempt.run();
  std::vector<GFNodeManager::LoadFailure> failures;
  for (const Attempt::Candidate& candidate : attempt.candidates) {
    if (candidate.outcome == Attempt::Outcome::Refused) {
      failures.push_back({candidate.composition->path, candidate.reason});
    } else if (candidate.outcome == Attempt::Outcome::Incomplete) {
      failures.push_back({candidate.composition->path, attempt.reasonOfIncomplete(candidate)});
    }
  }
  return failures;
}
