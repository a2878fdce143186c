// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/PropertyList.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

// Inside this room only.

// What a composition file describes, checked as far as that is possible without knowing the nodes that it names.
// Docs/compositions.md describes the format.
struct QCComposition {
  struct Node {
    std::string identifier;
    std::string name;
    PropertyList::Dictionary values;  // states by the key of an input port
  };
  struct End {
    std::size_t node;  // index in nodes
    std::string port;
  };
  struct Connection {
    End from;
    End to;
  };
  struct PublishedPort {
    std::string key;
    std::vector<End> ends;               // one or more for an input, one for an output
    PropertyList::Dictionary overrides;  // attributes that take the place of the inner port's
  };

  std::string path;  // empty unless it came from a file
  std::string name;
  PropertyList attributes;
  std::vector<Node> nodes;
  std::vector<Connection> connections;  // at most one into any port, and no cycle
  std::vector<PublishedPort> inputs;
  std::vector<PublishedPort> outputs;
  std::vector<std::size_t> order;  // of execution: every node after those that feed it
};

inline constexpr std::size_t QCCompositionLargestFile = 16 << 20;
inline constexpr std::size_t QCCompositionMostNodes = 1024;        // in one file
inline constexpr std::size_t QCCompositionMostNodesInside = 4096;  // with those of inner compositions
inline constexpr std::size_t QCCompositionDeepest = 16;            // compositions inside one another

// Why a composition is refused; thrown and caught inside this room.
struct QCCompositionRefusal {
  std::string reason;
};

// Null, with the cause, when the file or the list is no composition. The name is that of the attributes, or the file's.
std::shared_ptr<const QCComposition> QCCompositionFromFile(const std::string& path, std::string* reason);
std::shared_ptr<const QCComposition> QCCompositionFromPropertyList(const PropertyList& list, const std::string& path,
                                                                   std::string* reason);

// Orders the nodes; throws a refusal that names the nodes of a cycle.
std::vector<std::size_t> QCCompositionOrder(const QCComposition& composition);
