// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCCompositionBuilder.h"

#include "Platform/QuartzComposer/GFNodeManager.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace {

[[noreturn]] void refuse(std::string reason) {
  throw QCCompositionRefusal{std::move(reason)};
}

QCPort* portIn(const QCPatch::Ports& ports, const std::string& key) {
  const auto found = std::find_if(ports.begin(), ports.end(), [&](const auto& port) { return port->key() == key; });
  return found == ports.end() ? nullptr : found->get();
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

}  // namespace

QCCompositionBuilder::QCCompositionBuilder(const QCComposition& composition, GFNodeManager& manager,
                                           QCCompositionPatch& patch)
    : composition_(composition), manager_(manager), patch_(patch) {}

void QCCompositionBuilder::build() {
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
}

void QCCompositionBuilder::makeNodes() {
  for (std::size_t node = 0; node < composition_.nodes.size(); ++node) {
    nodes_.push_back(manager_.nodeInstanceWithName(composition_.nodes[node].name));
    if (!nodes_.back()) {
      refuse(labelOf(node) + " cannot be made");
    }
  }
}

void QCCompositionBuilder::setValues(std::size_t node) {
  const PropertyList::Dictionary& values = composition_.nodes[node].values;
  for (std::size_t i = 0; i < values.size(); ++i) {
    std::string cause;
    if (!inputAt({node, values.keyAt(i)}).setStateValue(values.valueAt(i), &cause)) {
      refuse(labelOf(node) + ": the value of \"" + values.keyAt(i) + "\" is refused: " + cause);
    }
  }
}

void QCCompositionBuilder::connect() {
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
    patch_.steps_.push_back({labelOf(node), nodes_[node], std::move(incoming[node])});
  }
}

void QCCompositionBuilder::publishInput(const QCComposition::PublishedPort& published) {
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
  patch_.addInputPort(port);
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
    patch_.inputLinks_.push_back({port.get(), &target});
  }
}

void QCCompositionBuilder::publishOutput(const QCComposition::PublishedPort& published) {
  const QCPort& inner = outputAt(published.ends.front());
  const std::shared_ptr<QCPort> port = publishedPort(published, inner, inner.attributes());
  patch_.addOutputPort(port);
  patch_.outputLinks_.push_back({&inner, port.get()});
}

std::shared_ptr<QCPort> QCCompositionBuilder::publishedPort(const QCComposition::PublishedPort& published,
                                                            const QCPort& inner, PropertyList attributes) const {
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

QCPort& QCCompositionBuilder::inputAt(const QCComposition::End& end) const {
  return portAt(end, nodes_[end.node]->inputPorts(), "input");
}

QCPort& QCCompositionBuilder::outputAt(const QCComposition::End& end) const {
  return portAt(end, nodes_[end.node]->outputPorts(), "output");
}

QCPort& QCCompositionBuilder::portAt(const QCComposition::End& end, const QCPatch::Ports& ports,
                                     const char* side) const {
  QCPort* port = portIn(ports, end.port);
  if (!port) {
    refuse(labelOf(end.node) + " has no " + side + " \"" + end.port + "\"; its " + side + "s: " + keysOf(ports));
  }
  return *port;
}

std::string QCCompositionBuilder::labelOf(std::size_t node) const {
  const QCComposition::Node& described = composition_.nodes[node];
  return "node \"" + described.identifier + "\" (" + described.name + ")";
}
