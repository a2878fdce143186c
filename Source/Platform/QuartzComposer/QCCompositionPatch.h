// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/QuartzComposer/QCPatch.h"

// Inside this room only.

// An instance of a composition: owns a patch for each node, executes them in order, and carries values along the
// connections before each. Objects are copied on their way, images shared.
class QCCompositionPatch : public QCPatch {
 public:
  struct Link {
    const QCPort* from;
    QCPort* to;
  };
  struct Step {
    std::string label;  // for messages: identifier and name
    std::shared_ptr<QCPatch> patch;
    std::vector<Link> incoming;
  };
  // What an instance consists of. Links lead between the ports of the steps' patches and the published ports.
  struct Parts {
    std::vector<Step> steps;  // in the order of execution
    Ports inputs;             // published, under keys of their own
    Ports outputs;
    std::vector<Link> inputLinks;
    std::vector<Link> outputLinks;
  };

  QCCompositionPatch(PropertyList attributes, Parts parts);
  std::string className() const override { return "QCCompositionPatch"; }

  // False, with the cause, at the first value that cannot be copied or is not taken.
  static bool carry(const std::vector<Link>& links, std::string* reason);

 protected:
  bool execute(double time, std::string* reason) override;

 private:
  Parts parts_;
};
