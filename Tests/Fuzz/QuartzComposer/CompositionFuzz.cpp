// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSClassTable.h"
#include "Platform/QuartzComposer/GFNodeManager.h"
#include "Platform/QuartzComposer/QCComposition.h"
#include "Platform/QuartzComposer/QCCompositionBuilder.h"
#include "Tests/Fuzz/Support/Check.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <string>
#include <utility>

namespace {

// A parameter that takes any state.
class Setting : public QCObject {
 public:
  std::string className() const override { return "Setting"; }
  std::optional<PropertyList> stateValue() const override { return state_; }
  bool initWithStateValue(const PropertyList& state, std::string*) override {
    state_ = state;
    return true;
  }
  NSObjectRef copyWithZone() const override {
    auto copy = std::make_shared<Setting>();
    copy->state_ = state_;
    return copy;
  }

 private:
  PropertyList state_;
};

const NSClassRegistration settingClass("Setting", "QCObject", [] { return std::make_shared<Setting>(); });

class SettingPort : public QCObjectPort {
 public:
  using QCObjectPort::QCObjectPort;
  std::string className() const override { return "SettingPort"; }
  std::string objectClass() const override { return "Setting"; }
};

// An effect as the compositions that ship use them: an image through, with a setting.
std::shared_ptr<QCPatch> effect(const char* settingKey) {
  auto patch = std::make_shared<QCPatch>();
  patch->addInputPort<QCImagePort>("inputImage", PropertyList());
  patch->addInputPort<SettingPort>(settingKey, PropertyList());
  patch->addOutputPort<QCImagePort>("outputImage", PropertyList());
  return patch;
}

// Ports of every kind. Fails at a number that is no number, as patches may.
class Sum : public QCPatch {
 public:
  Sum() {
    number_ = addInputPort<QCNumberPort>("a", PropertyList());
    addInputPort<QCNumberPort>("b", PropertyList());
    addInputPort<QCBooleanPort>("flag", PropertyList());
    addInputPort<QCIndexPort>("index", PropertyList());
    addInputPort<QCStringPort>("label", PropertyList());
    addInputPort<QCColorPort>("color", PropertyList());
    addInputPort<QCImagePort>("image", PropertyList());
    addInputPort<SettingPort>("object", PropertyList());
    sum_ = addOutputPort<QCNumberPort>("sum", PropertyList());
    addOutputPort<QCIndexPort>("count", PropertyList());
    addOutputPort<QCStringPort>("text", PropertyList());
    addOutputPort<QCImagePort>("outputImage", PropertyList());
    addOutputPort<SettingPort>("outputObject", PropertyList())->setValue(std::make_shared<Setting>());
  }

 private:
  bool execute(double time, std::string* reason) override {
    if (std::isnan(number_->doubleValue())) {
      *reason = "no number";
      return false;
    }
    return sum_->setValue(NSNumber::numberWithDouble(number_->doubleValue() + time));
  }
  std::shared_ptr<QCNumberPort> number_;
  std::shared_ptr<QCNumberPort> sum_;
};

GFNodeManager& manager() {
  static const std::shared_ptr<GFNodeManager> nodes = [] {
    auto made = std::make_shared<GFNodeManager>();
    made->initWithNamespace("fuzz");
    made->registerNodeWithName("Levels", PropertyList(), [] { return effect("inputLevels"); });
    made->registerNodeWithName("Gradient Map", PropertyList(), [] { return effect("inputGradient"); });
    made->registerNodeWithName("Sum", PropertyList(), [] { return std::make_shared<Sum>(); });
    return made;
  }();
  return *nodes;
}

void checkDescription(const QCComposition& composition) {
  check(composition.attributes.isDictionary(), "attributes are a dictionary");
  const std::set<std::size_t> order(composition.order.begin(), composition.order.end());
  check(order.size() == composition.nodes.size() && composition.order.size() == order.size(), "every node has a turn");
  const auto turn = [&](std::size_t node) {
    return std::find(composition.order.begin(), composition.order.end(), node) - composition.order.begin();
  };
  std::set<std::pair<std::size_t, std::string>> fed;
  for (const QCComposition::Connection& connection : composition.connections) {
    check(turn(connection.from.node) < turn(connection.to.node), "a node comes after those that feed it");
    check(fed.insert({connection.to.node, connection.to.port}).second, "an input has one source");
  }
}

void checkInstance(const QCComposition& composition, QCPatch& patch) {
  check(patch.attributes() == composition.attributes, "an instance has the composition's attributes");
  check(patch.inputPorts().size() == composition.inputs.size(), "every input is published");
  check(patch.outputPorts().size() == composition.outputs.size(), "every output is published");
  for (const QCPatch::Ports* ports : {&patch.inputPorts(), &patch.outputPorts()}) {
    for (const auto& port : *ports) check(patch.portForKey(port->key()) == port.get(), "keys are unique");
  }
  for (const double time : {0.0, 0.5}) {
    std::string reason;
    check(patch.executeAtTime(time, &reason) || !reason.empty(), "a failure has a reason");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  std::string reason;
  const auto list = PropertyListFromBytes({bytes, size}, &reason);
  if (!list) return 0;
  const auto composition = QCCompositionFromPropertyList(*list, "/folder/Fuzz.qtz", &reason);
  if (!composition) {
    check(!reason.empty(), "a refused description has a reason");
    return 0;
  }
  checkDescription(*composition);
  const std::shared_ptr<QCPatch> patch = QCPatchWithComposition(*composition, manager(), &reason);
  check(patch || !reason.empty(), "a refused instance has a reason");
  if (patch) checkInstance(*composition, *patch);
  return 0;
}
