// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/QuartzComposer/QCCompositionPatch.h"

// Inside this room only.

// Fills an instance of a composition: the nodes, their values, the connections, the published ports.
class QCCompositionBuilder {
 public:
  QCCompositionBuilder(const QCComposition& composition, GFNodeManager& manager, QCCompositionPatch& patch);
  void build();  // throws a QCCompositionRefusal

 private:
  void makeNodes();
  void setValues(std::size_t node);
  void connect();
  void publishInput(const QCComposition::PublishedPort& published);
  void publishOutput(const QCComposition::PublishedPort& published);
  // A port of the inner one's class, the attributes overridden by those that the composition states.
  std::shared_ptr<QCPort> publishedPort(const QCComposition::PublishedPort& published, const QCPort& inner,
                                        PropertyList attributes) const;
  QCPort& inputAt(const QCComposition::End& end) const;
  QCPort& outputAt(const QCComposition::End& end) const;
  QCPort& portAt(const QCComposition::End& end, const QCPatch::Ports& ports, const char* side) const;
  std::string labelOf(std::size_t node) const;

  const QCComposition& composition_;
  GFNodeManager& manager_;
  QCCompositionPatch& patch_;
  std::vector<std::shared_ptr<QCPatch>> nodes_;  // in the composition's order
};
