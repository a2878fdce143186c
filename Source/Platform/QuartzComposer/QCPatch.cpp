// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCPatch.h"

#include "Platform/Foundation/NSClassTable.h"
#include "Platform/Foundation/NSReason.h"
#include "Platform/QuartzComposer/QCInstance.h"

#include <exception>

namespace {

const NSClassRegistration kRegisteredPatch("QCPatch", "NSObject", [] { return std::make_shared<QCPatch>(); });

constexpr std::size_t kPortsWithoutIndex = 32;  // looking through so few costs less

struct BuiltInPatch {
  PropertyList attributes;
  QCPatch::Factory factory;
};

using BuiltInPatches = std::map<std::string, BuiltInPatch, std::less<>>;

// Never destroyed: factories may belong to libraries that are gone by the end of the process.
BuiltInPatches& builtInPatches() {
  static auto& patches = *new BuiltInPatches;
  return patches;
}

const BuiltInPatch* builtInPatch(std::string_view name) {
  const auto found = builtInPatches().find(name);
  return found == builtInPatches().end() ? nullptr : &found->second;
}

}  // namespace

QCPatch::QCPatch(PropertyList attributes) : attributes_(std::move(attributes)) {}

QCPatch::~QCPatch() {
  for (Ports* ports : {&inputs_, &outputs_}) {
    for (const std::shared_ptr<QCPort>& port : *ports) {
      port->node_ = nullptr;
    }
  }
}

bool QCPatch::declaresFalse(std::string_view attribute) const {
  const PropertyList* value = attributes_.find(attribute);
  return value && value->type() == PropertyList::Type::Boolean && !value->boolValue();
}

QCPatch::Place QCPatch::placeOf(std::string_view key) const {
  if (!byKey_.empty()) {
    const auto found = byKey_.find(key);
    return found == byKey_.end() ? Place{} : found->second;
  }
  for (const Ports* ports : {&inputs_, &outputs_}) {
    for (const std::shared_ptr<QCPort>& port : *ports) {
      if (port->key() == key) {
        return {port.get(), ports == &inputs_};
      }
    }
  }
  return {};
}

QCPort* QCPatch::inputPortForKey(std::string_view key) const {
  const Place place = placeOf(key);
  return place.isInput ? place.port : nullptr;
}

QCPort* QCPatch::outputPortForKey(std::string_view key) const {
  const Place place = placeOf(key);
  return place.isInput ? nullptr : place.port;
}

bool QCPatch::executeAtTime(double time, std::string* reason) {
  std::string cause;
  try {
    if (execute(time, &cause)) {
      return true;
    }
  } catch (const std::exception& error) {
    cause = error.what();
  } catch (...) {
    cause.clear();
  }
  return NSRefuse(reason, cause.empty() ? "the patch failed without a reason" : std::move(cause));
}

bool QCPatch::execute(double, std::string*) {
  return true;
}

bool QCPatch::addPort(Ports& ports, const std::shared_ptr<QCPort>& port, QCPort::Maker maker) {
  if (!port || port->node_ || port->key().empty() || portForKey(port->key())) {
    return false;
  }
  port->node_ = this;
  if (maker) {
    port->maker_ = maker;
  }
  ports.push_back(port);
  if (!byKey_.empty()) {
    byKey_.emplace(port->key(), Place{port.get(), &ports == &inputs_});
  } else if (inputs_.size() + outputs_.size() > kPortsWithoutIndex) {
    for (const Ports* side : {&inputs_, &outputs_}) {
      for (const std::shared_ptr<QCPort>& each : *side) {
        byKey_.emplace(each->key(), Place{each.get(), side == &inputs_});
      }
    }
  }
  return true;
}

bool QCPatch::registerPatch(const std::string& name, PropertyList attributes, Factory factory) {
  if (name.empty() || !attributes.isDictionary() || !factory) {
    return false;
  }
  return builtInPatches().try_emplace(name, BuiltInPatch{std::move(attributes), std::move(factory)}).second;
}

std::shared_ptr<QCPatch> QCPatch::patchWithName(std::string_view name) {
  const BuiltInPatch* patch = builtInPatch(name);
  return patch ? QCMakeInstance(name, patch->factory) : nullptr;
}

const PropertyList* QCPatch::patchAttributesWithName(std::string_view name) {
  const BuiltInPatch* patch = builtInPatch(name);
  return patch ? &patch->attributes : nullptr;
}
