// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCCompositionBuilder.h"

#include "Platform/Foundation/NSCodingBudget.h"
#include "Platform/Foundation/NSReason.h"
#include "Platform/QuartzComposer/GFNodeManager.h"
#include "Platform/QuartzComposer/QCCompositionPatch.h"
#include "Platform/QuartzComposer/QCNodeTable.h"

#include <algorithm>
#include <exception>
#include <functional>
#include <optional>
#include <string_view>

namespace {

[[noreturn]] void refuse(std::string reason) {
  throw QCCompositionRefusal{std::move(reason)};
}

std::string keysOf(const QCPatch::Ports& ports) {
  std::string keys;
  for (const std::shared_ptr<QCPort>& port : ports) {
    keys += (keys.empty() ? "\"" : ", \"") + port->key() + '"';
  }
  return keys.empty() ? "none" : keys;
}

std::string kindOf(const QCPort& port) {
  const auto* objects = dynamic_cast<const QCObjectPort*>(&port);
  return objects ? "object " + objects->objectClass() : port.kind();
}

bool statesItsDefault(const QCPort& port) {
  const std::string_view kind = port.kind();
  return kind != "image" && kind != "object";
}

void checkMatch(const QCPort& from, const QCPort& to, const std::string& what) {
  if (!to.takesValuesOf(from)) {
    refuse(what + ": a port of kind " + kindOf(to) + " takes no values of kind " + kindOf(from));
  }
}

// What a composition is as soon as one of its nodes is, or does not say that it is not.
constexpr const char* kInheritedAttributes[] = {"dependsOnTime", "keepsState"};

// Collects what an instance consists of: the nodes, their values, the connections, the published ports. Every method
// throws a QCCompositionRefusal on what does not fit.
class Builder {
 public:
  using NodeMaker = std::function<std::shared_ptr<QCPatch>(const std::string& name)>;
  Builder(const QCComposition& composition, NodeMaker makeNode)
      : composition_(composition), makeNode_(std::move(makeNode)) {}
  QCCompositionPatch::Parts build();
  PropertyList attributes() const;  // of the composition and what its nodes bring along; after build()

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
  [[noreturn]] void refuseEnd(const QCComposition::End& end, const QCPatch::Ports& ports, const char* side) const;
  std::string labelOf(std::size_t node) const;

  const QCComposition& composition_;
  NodeMaker makeNode_;
  std::vector<std::shared_ptr<QCPatch>> nodes_;  // in the composition's order
  QCCompositionPatch::Parts parts_;
};

QCCompositionPatch::Parts Builder::build() {
  makeNodes();
  for (std::size_t node = 0; node < nodes_.size(); ++node) {
    setValues(node);
  }
  connect();
  for (const QCComposition::PublishedPort& published : composition_.inputs) {
    publishInput(published);
  }
  for (const QCComposition::PublishedPort& published : composition_.outputs) {
    publishOutput(published);
  }
  return std::move(parts_);
}

PropertyList Builder::attributes() const {
  PropertyList attributes = composition_.attributes;
  for (const char* const key : kInheritedAttributes) {
    const PropertyList* own = attributes.find(key);
    const bool isAny = (own && own->boolValue()) || std::any_of(nodes_.begin(), nodes_.end(), [&](const auto& node) {
                         return !node->declaresFalse(key);
                       });
    attributes.set(key, PropertyList::boolean(isAny));
  }
  return attributes;
}

void Builder::makeNodes() {
  for (std::size_t node = 0; node < composition_.nodes.size(); ++node) {
    nodes_.push_back(makeNode_(composition_.nodes[node].name));
    if (!nodes_.back()) {
      refuse(labelOf(node) + " cannot be made");
    }
  }
}

void Builder::setValues(std::size_t node) {
  const PropertyList::Dictionary& values = composition_.nodes[node].values;
  for (std::size_t i = 0; i < values.size(); ++i) {
    std::string cause;
    if (!inputAt({node, values.keyAt(i)}).setStateValue(values.valueAt(i), &cause)) {
      refuse(labelOf(node) + ": the value of \"" + values.keyAt(i) + "\" is refused: " + cause);
    }
  }
}

void Builder::connect() {
  std::vector<std::vector<QCCompositionPatch::Link>> incoming(nodes_.size());
  for (const QCComposition::Connection& connection : composition_.connections) {
    QCPort& from = outputAt(connection.from);
    QCPort& to = inputAt(connection.to);
    checkMatch(from, to,
               "the connection from \"" + composition_.nodes[connection.from.node].identifier + "." +
                   connection.from.port + "\" to \"" + composition_.nodes[connection.to.node].identifier + "." +
                   connection.to.port + '"');
    incoming[connection.to.node].push_back({&from, &to});
  }
  for (const std::size_t node : composition_.order) {
    parts_.steps.push_back({labelOf(node), nodes_[node], std::move(incoming[node])});
  }
}

void Builder::publishInput(const QCComposition::PublishedPort& published) {
  const QCPort& inner = inputAt(published.ends.front());
  PropertyList attributes = inner.attributes();
  if (std::optional<PropertyList> initial = statesItsDefault(inner) ? inner.stateValue() : std::nullopt) {
    attributes.set("default", std::move(*initial));  // the value that the composition gives, not the node by itself
  }
  const std::shared_ptr<QCPort> port = publishedPort(published, inner, std::move(attributes));
  std::string cause;
  if (!QCCompositionPatch::carry({{&inner, port.get()}}, &cause)) {
    refuse("the input \"" + published.key + "\" cannot be published: " + cause);
  }
  parts_.inputs.push_back(port);
  if (const PropertyList* initial = published.overrides.find("default")) {
    if (!port->setStateValue(*initial, &cause)) {
      refuse("the default of the input \"" + published.key + "\" is refused: " + cause);
    }
  }
  for (const QCComposition::End& end : published.ends) {
    QCPort& target = inputAt(end);
    checkMatch(
        *port, target,
        "the input \"" + published.key + "\" to \"" + composition_.nodes[end.node].identifier + "." + end.port + '"');
    parts_.inputLinks.push_back({port.get(), &target});
  }
}

void Builder::publishOutput(const QCComposition::PublishedPort& published) {
  const QCPort& inner = outputAt(published.ends.front());
  const std::shared_ptr<QCPort> port = publishedPort(published, inner, inner.attributes());
  parts_.outputs.push_back(port);
  parts_.outputLinks.push_back({&inner, port.get()});
}

std::shared_ptr<QCPort> Builder::publishedPort(const QCComposition::PublishedPort& published, const QCPort& inner,
                                               PropertyList attributes) const {
  for (std::size_t i = 0; i < published.overrides.size(); ++i) {
    attributes.set(published.overrides.keyAt(i), published.overrides.valueAt(i));
  }
  std::shared_ptr<QCPort> port = inner.portWithKey(published.key, std::move(attributes));
  if (!port) {
    refuse("the port \"" + published.key + "\" cannot be published: a " + inner.className() +
           " cannot be made by the key");
  }
  return port;
}

QCPort& Builder::inputAt(const QCComposition::End& end) const {
  const QCPatch& node = *nodes_[end.node];
  QCPort* port = node.inputPortForKey(end.port);
  if (!port) {
    refuseEnd(end, node.inputPorts(), "input");
  }
  return *port;
}

QCPort& Builder::outputAt(const QCComposition::End& end) const {
  const QCPatch& node = *nodes_[end.node];
  QCPort* port = node.outputPortForKey(end.port);
  if (!port) {
    refuseEnd(end, node.outputPorts(), "output");
  }
  return *port;
}

void Builder::refuseEnd(const QCComposition::End& end, const QCPatch::Ports& ports, const char* side) const {
  refuse(labelOf(end.node) + " has no " + side + " \"" + end.port + "\"; its " + side + "s: " + keysOf(ports));
}

std::string Builder::labelOf(std::size_t node) const {
  const QCComposition::Node& described = composition_.nodes[node];
  return "node \"" + described.identifier + "\" (" + described.name + ")";
}

// Ports like those of a shell, with their values.
QCPatch::Ports portsLike(const QCPatch::Ports& ports) {
  QCPatch::Ports made;
  for (const std::shared_ptr<QCPort>& each : ports) {
    made.push_back(each->portWithKey(each->key(), each->attributes()));
    std::string cause;
    if (!QCCompositionPatch::carry({{each.get(), made.back().get()}}, &cause)) {
      refuse(std::move(cause));
    }
  }
  return made;
}

std::shared_ptr<QCPatch> shellLike(const QCPatch& shell) {
  QCCompositionPatch::Parts parts;
  parts.inputs = portsLike(shell.inputPorts());
  parts.outputs = portsLike(shell.outputPorts());
  return std::make_shared<QCCompositionPatch>(shell.attributes(), std::move(parts));
}

// What `make` builds. All that goes wrong becomes the reason.
template <typename Make>
std::shared_ptr<QCPatch> built(std::string* reason, Make make) {
  const NSCodingBudget budget;  // of all states in the composition together
  try {
    return make();
  } catch (const QCCompositionRefusal& refusal) {
    NSRefuse(reason, refusal.reason);
  } catch (const std::exception& error) {  // of the nodes' own code
    NSRefuse(reason, error.what());
  } catch (...) {
    NSRefuse(reason, "a node failed without a reason");
  }
  return nullptr;
}

}  // namespace

std::shared_ptr<QCPatch> QCPatchWithComposition(const QCComposition& composition, GFNodeManager& manager,
                                                std::string* reason) {
  return built(reason, [&] {
    Builder builder(composition, [&](const std::string& name) { return manager.nodeInstanceWithName(name); });
    QCCompositionPatch::Parts parts = builder.build();
    return std::make_shared<QCCompositionPatch>(builder.attributes(), std::move(parts));
  });
}

std::shared_ptr<QCPatch> QCShellOfComposition(const QCComposition& composition, GFNodeManager& manager,
                                              const QCNodeTable& table, std::string* reason) {
  return built(reason, [&] {
    Builder builder(composition, [&](const std::string& name) {
      const QCNodeEntry* entry = table.find(name);
      return entry && entry->shell ? shellLike(*entry->shell) : manager.nodeInstanceWithName(name);
    });
    QCCompositionPatch::Parts parts = builder.build();
    parts.inputLinks.clear();
    parts.outputLinks.clear();
    parts.steps.clear();
    return std::make_shared<QCCompositionPatch>(builder.attributes(), std::move(parts));
  });
}
