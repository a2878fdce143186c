// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCComposition.h"

#include "Platform/Foundation/NSReason.h"
#include "Platform/QuartzComposer/QCCloseNames.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <initializer_list>
#include <map>
#include <optional>
#include <set>
#include <utility>

namespace {

namespace fs = std::filesystem;
using Type = PropertyList::Type;

[[noreturn]] void refuse(std::string reason) {
  throw QCCompositionRefusal{std::move(reason)};
}

std::string quoted(const std::string& text) {
  return '"' + text + '"';
}

// Reads one list into a description; every method throws a refusal on what it cannot take.
class Reader {
 public:
  explicit Reader(QCComposition& composition) : composition_(composition) {}

  void read(const PropertyList& list) {
    if (!list.isDictionary()) {
      refuse(std::string("a composition is a dictionary, not a value of type ") + list.typeName());
    }
    readVersion(list);
    checkKeys(list, "the composition", {"formatVersion", "attributes", "nodes", "connections", "inputs", "outputs"});
    readAttributes(list);
    readNodes(list);
    readConnections(list);
    readPublishedPorts(list, "inputs", composition_.inputs, true);
    readPublishedPorts(list, "outputs", composition_.outputs, false);
    checkKeysApart();
    checkProtocols();
    composition_.order = QCCompositionOrder(composition_);
  }

 private:
  static const PropertyList* entry(const PropertyList& list, const std::string& where, const char* key, Type type,
                                   const char* typeName) {
    const PropertyList* value = list.find(key);
    if (value && value->type() != type) {
      refuse(where + ": " + quoted(key) + " must be a value of type " + typeName + ", not " + value->typeName());
    }
    return value;
  }

  static const std::string& string(const PropertyList& list, const std::string& where, const char* key) {
    const PropertyList* value = entry(list, where, key, Type::String, "string");
    if (!value || value->stringValue().empty()) {
      refuse(where + " has no " + quoted(key));
    }
    return value->stringValue();
  }

  static void checkKeys(const PropertyList& list, const std::string& where, const std::vector<std::string>& known) {
    const PropertyList::Dictionary& entries = list.entries();
    for (std::size_t i = 0; i < entries.size(); ++i) {
      const std::string& key = entries.keyAt(i);
      if (std::find(known.begin(), known.end(), key) == known.end()) {
        refuse(where + " has an entry " + quoted(key) + " that is not known" + QCCloseNamesHint(key, known));
      }
    }
  }

  static const PropertyList::Array& items(const PropertyList& list, const char* key) {
    static const PropertyList::Array none;
    const PropertyList* value = entry(list, "the composition", key, Type::Array, "array");
    return value ? value->items() : none;
  }

  static std::string placeOf(const char* array, std::size_t index, const PropertyList& item) {
    std::string place = std::string(array) + " entry " + std::to_string(index);
    if (!item.isDictionary()) {
      refuse(place + " must be a dictionary, not a value of type " + item.typeName());
    }
    return place;
  }

  static void readVersion(const PropertyList& list) {
    const PropertyList* version = entry(list, "the composition", "formatVersion", Type::Integer, "integer");
    if (!version) {
      refuse("it has no \"formatVersion\"");
    }
    if (version->integerValue() != 1) {
      refuse("its format version is " + std::to_string(version->integerValue()) + "; only version 1 is known");
    }
  }

  void readAttributes(const PropertyList& list) {
    const PropertyList* attributes = entry(list, "the composition", "attributes", Type::Dictionary, "dictionary");
    if (!attributes) {
      return;
    }
    if (attributes->find("name")) {
      composition_.name = string(*attributes, "\"attributes\"", "name");
    }
    entry(*attributes, "\"attributes\"", "description", Type::String, "string");
    entry(*attributes, "\"attributes\"", "protocols", Type::Dictionary, "dictionary");
    for (const char* const key : {"dependsOnTime", "keepsState"}) {
      entry(*attributes, "\"attributes\"", key, Type::Boolean, "boolean");
    }
    composition_.attributes = *attributes;
  }

  void readNodes(const PropertyList& list) {
    const PropertyList::Array& nodes = items(list, "nodes");
    if (nodes.size() > QCCompositionMostNodes) {
      refuse("it has " + std::to_string(nodes.size()) + " nodes, more than " + std::to_string(QCCompositionMostNodes));
    }
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      const std::string place = placeOf("nodes", i, nodes[i]);
      checkKeys(nodes[i], place, {"identifier", "name", "values"});
      const std::string& identifier = string(nodes[i], place, "identifier");
      if (identifier.find('.') != std::string::npos) {
        refuse(place + ": the identifier " + quoted(identifier) + " holds a full stop");
      }
      if (!nodeIndexes_.emplace(identifier, i).second) {
        refuse("two nodes have the identifier " + quoted(identifier));
      }
      const PropertyList* values = entry(nodes[i], place, "values", Type::Dictionary, "dictionary");
      composition_.nodes.push_back(
          {identifier, string(nodes[i], place, "name"), values ? values->entries() : PropertyList::Dictionary()});
    }
  }

  std::size_t nodeIndex(const std::string& identifier, const std::string& where) const {
    const auto found = nodeIndexes_.find(identifier);
    if (found != nodeIndexes_.end()) {
      return found->second;
    }
    std::vector<std::string> known;
    for (const QCComposition::Node& node : composition_.nodes) {
      known.push_back(node.identifier);
    }
    refuse(where + ": no node has the identifier " + quoted(identifier) + QCCloseNamesHint(identifier, known));
  }

  QCComposition::End endNamed(const std::string& text, const std::string& where) const {
    const std::size_t stop = text.find('.');
    if (stop == std::string::npos || stop + 1 == text.size()) {
      refuse(where + ": " + quoted(text) + " must be a node's identifier, a full stop and a port's key");
    }
    return {nodeIndex(text.substr(0, stop), where), text.substr(stop + 1)};
  }

  // Every input port has one source.
  void takeInput(const QCComposition::End& end) {
    if (!fed_.emplace(end.node, end.port).second) {
      refuse("more than one connection or published input leads to " +
             quoted(composition_.nodes[end.node].identifier + "." + end.port));
    }
  }

  void readConnections(const PropertyList& list) {
    const PropertyList::Array& connections = items(list, "connections");
    for (std::size_t i = 0; i < connections.size(); ++i) {
      const std::string place = placeOf("connections", i, connections[i]);
      checkKeys(connections[i], place, {"from", "to"});
      QCComposition::Connection connection{endNamed(string(connections[i], place, "from"), place),
                                           endNamed(string(connections[i], place, "to"), place)};
      takeInput(connection.to);
      composition_.connections.push_back(std::move(connection));
    }
  }

  void readPublishedPorts(const PropertyList& list, const char* array, std::vector<QCComposition::PublishedPort>& ports,
                          bool isInput) {
    std::map<std::string, std::size_t> indexes;
    const PropertyList::Array& entries = items(list, array);
    for (std::size_t i = 0; i < entries.size(); ++i) {
      const std::string place = placeOf(array, i, entries[i]);
      const std::string& key = string(entries[i], place, "key");
      QCComposition::End end{nodeIndex(string(entries[i], place, "node"), place), string(entries[i], place, "port")};
      if (isInput) {
        takeInput(end);
      }
      const auto [index, isNew] = indexes.emplace(key, ports.size());
      if (isNew) {
        ports.push_back({key, {std::move(end)}, overridesIn(entries[i], place)});
      } else if (isInput) {
        checkKeys(entries[i], place + ", which adds to the input " + quoted(key) + ",", {"key", "node", "port"});
        ports[index->second].ends.push_back(std::move(end));
      } else {
        refuse("two outputs have the key " + quoted(key));
      }
    }
  }

  static PropertyList::Dictionary overridesIn(const PropertyList& list, const std::string& place) {
    entry(list, place, "name", Type::String, "string");
    entry(list, place, "menu", Type::Array, "array");
    for (const char* key : {"minimum", "maximum"}) {
      const PropertyList* limit = list.find(key);
      if (limit && !limit->isNumber()) {
        refuse(place + ": " + quoted(key) + " must be a number, not a value of type " + limit->typeName());
      }
      if (limit && std::isnan(limit->doubleValue())) {
        refuse(place + ": " + quoted(key) + " must be a number, which nan is not");
      }
    }
    PropertyList::Dictionary overrides;
    const PropertyList::Dictionary& entries = list.entries();
    for (std::size_t i = 0; i < entries.size(); ++i) {
      const std::string& key = entries.keyAt(i);
      if (key != "key" && key != "node" && key != "port") {
        overrides.set(key, entries.valueAt(i));
      }
    }
    return overrides;
  }

  void checkKeysApart() {
    for (const auto* ports : {&composition_.inputs, &composition_.outputs}) {
      for (const QCComposition::PublishedPort& port : *ports) {
        if (!isInput_.emplace(port.key, ports == &composition_.inputs).second) {
          refuse("an input and an output have the key " + quoted(port.key));
        }
      }
    }
  }

  // Every role of every protocol names a published port, on the side that the role's own name tells.
  void checkProtocols() const {
    const PropertyList* protocols = composition_.attributes.find("protocols");
    const PropertyList::Dictionary kinds = protocols ? protocols->entries() : PropertyList::Dictionary();
    for (std::size_t i = 0; i < kinds.size(); ++i) {
      const std::string place = "protocol " + quoted(kinds.keyAt(i));
      if (!kinds.valueAt(i).isDictionary()) {
        refuse(place + " must be a dictionary of roles");
      }
      const PropertyList::Dictionary& roles = kinds.valueAt(i).entries();
      for (std::size_t j = 0; j < roles.size(); ++j) {
        checkRole(place + ": the role " + quoted(roles.keyAt(j)), roles.keyAt(j), roles.valueAt(j));
      }
    }
  }

  void checkRole(const std::string& place, const std::string& role, const PropertyList& key) const {
    if (!key.isString()) {
      refuse(place + " must be the key of a port");
    }
    const auto port = isInput_.find(key.stringValue());
    const bool mayBeInput = !role.starts_with("output");
    const bool mayBeOutput = !role.starts_with("input");
    if (port == isInput_.end() || !(port->second ? mayBeInput : mayBeOutput)) {
      refuse(place + " names " + quoted(key.stringValue()) + ", which is no published " +
             (!mayBeOutput  ? "input"
              : !mayBeInput ? "output"
                            : "port"));
    }
  }

  QCComposition& composition_;
  std::map<std::string, std::size_t> nodeIndexes_;
  std::set<std::pair<std::size_t, std::string>> fed_;
  std::map<std::string_view, bool> isInput_;  // the published ports by their keys
};

}  // namespace

std::shared_ptr<const QCComposition> QCCompositionFromFile(const std::string& path, std::string* reason) {
  std::error_code error;
  if (!fs::is_regular_file(path, error)) {
    NSRefuse(reason, "it is not a file");
    return nullptr;
  }
  const std::uintmax_t size = fs::file_size(path, error);
  if (error || size > QCCompositionLargestFile) {
    NSRefuse(reason, error ? error.message() : "it is larger than a composition can be");
    return nullptr;
  }
  const std::optional<PropertyList> list = PropertyListFromFile(path, reason);
  return list ? QCCompositionFromPropertyList(*list, path, reason) : nullptr;
}

std::shared_ptr<const QCComposition> QCCompositionFromPropertyList(const PropertyList& list, const std::string& path,
                                                                   std::string* reason) {
  auto composition = std::make_shared<QCComposition>();
  composition->path = path;
  composition->name = fs::path(path).stem().string();
  try {
    Reader(*composition).read(list);
  } catch (const QCCompositionRefusal& refusal) {
    NSRefuse(reason, refusal.reason);
    return nullptr;
  }
  composition->attributes.set("name", PropertyList::string(composition->name));
  return composition;
}
