#pragma once

#include "Platform/QuartzComposer/QCPort.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// A node: attributes, input and output ports, and what it does with them at a time.
//
// Attributes are a dictionary: "name", "description", and "protocols", which says what kinds of effect the patch is.
class TARN_EXPORT QCPatch : public NSObject {
 public:
  using Ports = std::vector<std::shared_ptr<QCPort>>;
  using Factory = std::function<std::shared_ptr<QCPatch>()>;

  explicit QCPatch(PropertyList attributes = {});
  ~QCPatch() override;  // ports that outlive the patch answer null as their node
  std::string className() const override { return "QCPatch"; }

  const PropertyList& attributes() const { return attributes_; }
  const Ports& inputPorts() const { return inputs_; }
  const Ports& outputPorts() const { return outputs_; }
  QCPort* portForKey(std::string_view key) const;  // inputs first; null when there is none. Owned by the patch.

  // Reads the inputs, sets the outputs, at a time in seconds. False, with the cause in *reason (which may be null),
  // when it could not; nothing escapes as an exception.
  bool executeAtTime(double time, std::string* reason);

  // The patches that are built in, under names that every node manager falls back to.
  static bool registerPatch(const std::string& name, PropertyList attributes, Factory factory);
  static std::shared_ptr<QCPatch> patchWithName(std::string_view name);       // null when unknown
  static const PropertyList* patchAttributesWithName(std::string_view name);  // null when unknown

  // For subclasses and for hosts that make patches by hand. A key that is taken already is refused with null.
  template <class Port, class... Arguments>
  std::shared_ptr<Port> addInputPort(Arguments&&... arguments) {
    auto port = std::make_shared<Port>(std::forward<Arguments>(arguments)...);
    return addPort(inputs_, port) ? port : nullptr;
  }
  template <class Port, class... Arguments>
  std::shared_ptr<Port> addOutputPort(Arguments&&... arguments) {
    auto port = std::make_shared<Port>(std::forward<Arguments>(arguments)...);
    return addPort(outputs_, port) ? port : nullptr;
  }

 protected:
  virtual bool execute(double time, std::string* reason);  // the default does nothing

 private:
  bool addPort(Ports& ports, std::shared_ptr<QCPort> port);
  PropertyList attributes_;
  Ports inputs_;
  Ports outputs_;
};
