// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCComposition.h"

#include <algorithm>

namespace {

using Indexes = std::vector<std::size_t>;

// Walks against the connections from a node that no order reaches until a node comes round again.
std::string cycleThrough(const QCComposition& composition, const std::vector<Indexes>& feeders,
                         const std::vector<bool>& ordered, std::size_t start) {
  Indexes path;
  std::size_t node = start;
  while (std::find(path.begin(), path.end(), node) == path.end()) {
    path.push_back(node);
    node = *std::find_if(feeders[node].begin(), feeders[node].end(), [&](std::size_t f) { return !ordered[f]; });
  }
  std::string text = '"' + composition.nodes[node].identifier + '"';
  for (auto step = path.rbegin(); *step != node; ++step) {
    text += " > \"" + composition.nodes[*step].identifier + '"';
  }
  return text + " > \"" + composition.nodes[node].identifier + '"';
}

}  // namespace

std::vector<std::size_t> QCCompositionOrder(const QCComposition& composition) {
  const std::size_t count = composition.nodes.size();
  std::vector<Indexes> feeders(count);
  std::vector<Indexes> fed(count);
  Indexes missing(count, 0);
  for (const QCComposition::Connection& connection : composition.connections) {
    feeders[connection.to.node].push_back(connection.from.node);
    fed[connection.from.node].push_back(connection.to.node);
    ++missing[connection.to.node];
  }
  Indexes order;
  for (std::size_t node = 0; node < count; ++node) {
    if (missing[node] == 0) {
      order.push_back(node);
    }
  }
  std::vector<bool> ordered(count, false);
  for (std::size_t next = 0; next < order.size(); ++next) {
    ordered[order[next]] = true;
    for (const std::size_t node : fed[order[next]]) {
      if (--missing[node] == 0) {
        order.push_back(node);
      }
    }
  }
  const auto left = std::find(ordered.begin(), ordered.end(), false);
  if (left != ordered.end()) {
    const auto start = static_cast<std::size_t>(left - ordered.begin());
    throw QCCompositionRefusal{"its connections run in a circle: " +
                               cycleThrough(composition, feeders, ordered, start)};
  }
  return order;
}
