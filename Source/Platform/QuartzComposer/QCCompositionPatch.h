// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/QuartzComposer/QCComposition.h"
#include "Platform/QuartzComposer/QCPatch.h"

// Inside this room only.

class GFNodeManager;

// An instance of a composition: owns a patch for each node, executes them in order, and carries values along the
// connections before each. Objects are copied on their way, images shared.
class QCCompositionPatch : public QCPatch {
 public:
  // Makes the nodes through the manager. Null, with the cause, when a node cannot be made or lacks a port that the
  // composition names, values do not fit, or ports that are connected do not match.
  static std::shared_ptr<QCCompositionPatch> patchWithComposition(const QCComposition& composition,
                                                                  GFNodeManager& manager, std::string* reason);
  explicit QCCompositionPatch(const QCComposition& composition);
  std::string className() const override { return "QCCompositionPatch"; }

 protected:
  bool execute(double time, std::string* reason) override;

 private:
  friend class QCCompositionBuilder;
  struct Link {
    const QCPort* from;
    QCPort* to;
  };
  struct Step {
    std::string label;  // for messages: identifier and name
    std::shared_ptr<QCPatch> patch;
    std::vector<Link> incoming;
  };
  static bool carry(const std::vector<Link>& links, std::string* reason);

  std::vector<Step> steps_;  // in the order of execution
  std::vector<Link> inputLinks_;
  std::vector<Link> outputLinks_;
};
