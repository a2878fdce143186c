// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/QuartzComposer/QCPort.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

// A node: attributes, input and output ports, and what it does with them at a time.
//
// Attributes are a dictionary: "name", "description", "protocols", which says what kinds of effect the patch is, and
// the booleans "dependsOnTime" and "keepsState", which a composition takes over from its nodes. A node that was
// registered with attributes makes its instances with the same ones.
class TARN_EXPORT QCPatch : public NSObject {
 public:
  using Ports = std::vector<std::shared_ptr<QCPort>>;
  using Factory = std::function<std::shared_ptr<QCPatch>()>;

  explicit QCPatch(PropertyList attributes = {});
  ~QCPatch() override;  // ports that outlive the patch have null as their node
  std::string className() const override { return "QCPatch"; }

  // What the patch was made with.
  const PropertyList& attributes() const { return attributes_; }
  bool declaresFalse(std::string_view attribute) const;  // that it is there, a boolean, and false
  // In the order in which they were added.
  const Ports& inputPorts() const { return inputs_; }
  const Ports& outputPorts() const { return outputs_; }
  // Null when there is none. Owned by the patch.
  QCPort* portForKey(std::string_view key) const { return placeOf(key).port; }
  QCPort* inputPortForKey(std::string_view key) const;
  QCPort* outputPortForKey(std::string_view key) const;

  // Reads the inputs, sets the outputs, at a time in seconds. False, with the cause in *reason (which may be null),
  // when it could not; nothing escapes as an exception.
  bool executeAtTime(double time, std::string* reason);

  // The patches that are built in, under names that a node manager may fall back to. False, with nothing changed, when
  // the name is empty or taken, the attributes are no dictionary or there is no factory.
  static bool registerPatch(const std::string& name, PropertyList attributes, Factory factory);
  static std::shared_ptr<QCPatch> patchWithName(std::string_view name);       // null when unknown or its factory fails
  static const PropertyList* patchAttributesWithName(std::string_view name);  // null when unknown

  // For subclasses and for hosts that make patches by hand. Arguments are those of the port's constructor: key,
  // attributes. An empty key, and one that an input or output has already, is refused with null.
  template <class Port, class... Arguments>
  std::shared_ptr<Port> addInputPort(Arguments&&... arguments) {
    auto port = std::make_shared<Port>(std::forward<Arguments>(arguments)...);
    return addPort(inputs_, port, makerOf<Port>()) ? port : nullptr;
  }
  template <class Port, class... Arguments>
  std::shared_ptr<Port> addOutputPort(Arguments&&... arguments) {
    auto port = std::make_shared<Port>(std::forward<Arguments>(arguments)...);
    return addPort(outputs_, port, makerOf<Port>()) ? port : nullptr;
  }

 protected:
  // False, with the cause in *reason, which is never null here. May throw. The default does nothing and succeeds.
  virtual bool execute(double time, std::string* reason);
  // Takes a port that is made already, under the same rule for keys.
  bool addInputPort(const std::shared_ptr<QCPort>& port) { return addPort(inputs_, port, nullptr); }
  bool addOutputPort(const std::shared_ptr<QCPort>& port) { return addPort(outputs_, port, nullptr); }

 private:
  template <class Port>
  static constexpr QCPort::Maker makerOf() {
    if constexpr (std::is_constructible_v<Port, std::string, PropertyList>) {
      return [](std::string key, PropertyList attributes) -> std::shared_ptr<QCPort> {
        return std::make_shared<Port>(std::move(key), std::move(attributes));
      };
    } else {
      return nullptr;
    }
  }
  struct Place {
    QCPort* port = nullptr;
    bool isInput = false;
  };
  Place placeOf(std::string_view key) const;
  bool addPort(Ports& ports, const std::shared_ptr<QCPort>& port, QCPort::Maker maker);
  PropertyList attributes_;
  Ports inputs_;
  Ports outputs_;
  std::map<std::string_view, Place> byKey_;  // empty while there are few ports
};
