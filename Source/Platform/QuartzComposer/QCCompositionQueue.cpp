// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCCompositionQueue.h"

#include "Platform/QuartzComposer/QCCloseNames.h"
#include "Platform/QuartzComposer/QCCompositionBuilder.h"

#include <algorithm>
#include <map>
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
    // Of one that nothing more can be added to: the node that is missing, and who was to bring it.
    const QCComposition::Node* missing = nullptr;
    Candidate* waitsFor = nullptr;
    bool isInCircle = false;
    int visit = 0;
  };
  // The candidates of one name; those before `next` are decided.
  struct Namesakes {
    std::vector<Candidate*> all;
    std::size_t next = 0;
  };

  Attempt(GFNodeManager& itsManager, QCNodeTable& itsTable, const std::vector<Composition>& waiting)
      : manager(itsManager), table(itsTable) {
    candidates.reserve(waiting.size());
    for (const Composition& composition : waiting) {
      Candidate& candidate = candidates.emplace_back();
      candidate.composition = composition;
      byName[composition->name].all.push_back(&candidate);
    }
  }

  GFNodeManager& manager;
  QCNodeTable& table;
  std::vector<Candidate> candidates;
  std::map<std::string_view, Namesakes> byName;

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
  bool isElsewhere(const std::string& name) {
    return !waitingNamed(name) && manager.nodeAttributesWithName(name) != nullptr;
  }

  Candidate* waitingNamed(const std::string& name) {
    const auto found = byName.find(name);
    if (found == byName.end()) {
      return nullptr;
    }
    Namesakes& namesakes = found->second;
    while (namesakes.next < namesakes.all.size() && namesakes.all[namesakes.next]->outcome != Outcome::Incomplete) {
      ++namesakes.next;
    }
    return namesakes.next < namesakes.all.size() ? namesakes.all[namesakes.next] : nullptr;
  }

  void addToTable(Candidate& candidate, QCNodeExtent extent) {
    std::string reason;
    std::shared_ptr<QCPatch> shell = QCShellOfComposition(*candidate.composition, manager, table, &reason);
    if (!shell) {
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
    table.add(
        {composition->name, shell->attributes(), factory, composition->path, composition, extent, std::move(shell)});
    candidate.outcome = Outcome::Added;
  }

  static void refuse(Candidate& candidate, std::string reason) {
    candidate.outcome = Outcome::Refused;
    candidate.reason = std::move(reason);
  }

  // Finds out why the compositions that nothing more can be added to are incomplete: they come round to themselves, or
  // a node is missing.
  void explain() {
    for (Candidate& candidate : candidates) {
      if (candidate.outcome == Outcome::Incomplete) {
        candidate.missing = missingNode(candidate);
        candidate.waitsFor = candidate.missing ? waitingNamed(candidate.missing->name) : nullptr;
      }
    }
    findCircles();
    for (std::size_t i = 0; i < table.size(); ++i) {
      known.push_back(table.at(i).name);
    }
    for (Candidate& candidate : candidates) {
      if (candidate.outcome == Outcome::Incomplete) {
        candidate.reason = candidate.isInCircle ? circleText(candidate) : missingText(candidate);
      }
    }
  }

  // Each waits for one other at most: a way that comes back to where it passed in the same visit has run into a circle.
  void findCircles() {
    int visit = 0;
    for (Candidate& start : candidates) {
      ++visit;
      Candidate* candidate = &start;
      while (candidate && candidate->visit == 0) {
        candidate->visit = visit;
        candidate = candidate->waitsFor;
      }
      if (candidate && candidate->visit == visit) {
        for (; !candidate->isInCircle; candidate = candidate->waitsFor) {
          candidate->isInCircle = true;
        }
      }
    }
  }

  const QCComposition::Node* missingNode(const Candidate& candidate) {
    const auto& nodes = candidate.composition->nodes;
    const auto missing = std::find_if(nodes.begin(), nodes.end(), [&](const QCComposition::Node& node) {
      return !table.find(node.name) && !isElsewhere(node.name);
    });
    return missing == nodes.end() ? nullptr : &*missing;
  }

  static std::string circleText(const Candidate& start) {
    constexpr std::size_t most = 16;
    std::string text = "the composition contains itself: ";
    std::size_t count = 0;
    for (const Candidate* candidate = &start; count == 0 || candidate != &start; candidate = candidate->waitsFor) {
      if (++count > most) {
        text += "... > ";
        break;
      }
      text += quoted(candidate->composition->name) + " > ";
    }
    return text + quoted(start.composition->name);
  }

  std::string missingText(const Candidate& candidate) const {
    if (!candidate.missing) {
      return "its nodes were not there when they were looked for";
    }
    const QCComposition::Node& node = *candidate.missing;
    const std::string text = "node " + quoted(node.identifier) + ": ";
    if (byName.contains(node.name)) {
      return text + "the composition " + quoted(node.name) + " could not be loaded";
    }
    return text + "there is no node " + quoted(node.name) + QCCloseNamesHint(node.name, known);
  }

  std::vector<std::string> known;  // what the table holds
};

const QCComposition* QCCompositionQueue::find(std::string_view name) const {
  const auto found = std::find_if(waiting_.begin(), waiting_.end(),
                                  [&](const Composition& composition) { return composition->name == name; });
  return found == waiting_.end() ? nullptr : found->get();
}

void QCCompositionQueue::resolve(GFNodeManager& manager, QCNodeTable& table) {
  Attempt attempt(manager, table, waiting_);
  attempt.run();
  std::size_t place = 0;
  std::erase_if(waiting_, [&](const Composition&) {  // those that came meanwhile stand behind
    const std::size_t at = place++;
    return at < attempt.candidates.size() && attempt.candidates[at].outcome == Attempt::Outcome::Added;
  });
}

std::vector<GFNodeManager::LoadFailure> QCCompositionQueue::resolveFinally(GFNodeManager& manager, QCNodeTable& table) {
  Attempt attempt(manager, table, std::exchange(waiting_, {}));
  attempt.run();
  attempt.explain();
  std::vector<GFNodeManager::LoadFailure> failures;
  for (const Attempt::Candidate& candidate : attempt.candidates) {
    if (candidate.outcome != Attempt::Outcome::Added) {
      failures.push_back({candidate.composition->path, candidate.reason});
    }
  }
  return failures;
}
