// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCPort.h"

#include "Platform/Foundation/NSClassTable.h"
#include "Platform/Foundation/NSReason.h"

#include <string_view>

namespace {

const NSClassRegistration kRegisteredPort("QCPort", "NSObject", nullptr);

bool isNumeric(std::string_view kind) {
  return kind == "number" || kind == "boolean" || kind == "index";
}

}  // namespace

QCPort::QCPort(std::string key, PropertyList attributes) : key_(std::move(key)), attributes_(std::move(attributes)) {}

QCPort::~QCPort() = default;

std::string QCPort::name() const {
  const PropertyList* name = attributes_.find("name");
  return name && name->isString() ? name->stringValue() : key_;
}

bool QCPort::setValue(const NSObjectRef& value, std::string* reason) {
  const std::optional<NSObjectRef> accepted = acceptedValue(value);
  if (!accepted) {
    return NSRefuse(reason, refusalOf(value));
  }
  const NSObjectRef self = weak_from_this().lock();  // an observer may let go of the port
  willChangeValue();
  value_ = *accepted;
  didChangeValue();
  return true;
}

std::string QCPort::refusalOf(const NSObjectRef& value) const {
  const std::string port = std::string("a port of kind ") + kind();
  if (!value) {
    return port + " is never empty";
  }
  const std::string name = value->className();
  const bool isKnown = NSClassFromString(name) != nullptr;
  return port + " does not take this " + name + (isKnown ? "" : ", a class that nobody has registered");
}

void QCPort::willChangeValue() {
  willChangeValueForKey("value");
  willChangeValueForKey("__rawValue__");
}

void QCPort::didChangeValue() {
  const NSObjectRef self = weak_from_this().lock();
  didChangeValueForKey("value");
  didChangeValueForKey("__rawValue__");
}

std::optional<PropertyList> QCPort::stateValue() const {
  return NSPropertyListFromObject(value_.get());
}

bool QCPort::setStateValue(const PropertyList& state, std::string* reason) {
  const NSObjectRef value = valueFromState(state);
  return (value && setValue(value)) ||
         NSRefuse(reason, std::string("this ") + state.typeName() + " does not fit a port of kind " + kind());
}

NSObjectRef QCPort::valueFromState(const PropertyList& state) const {
  return NSObjectFromPropertyList(state);
}

void QCPort::setInitialValue(NSObjectRef fallback) {
  value_ = std::move(fallback);
  const PropertyList* initial = attributes_.find("default");
  const NSObjectRef value = initial ? valueFromState(*initial) : nullptr;
  if (!value) {
    return;
  }
  if (std::optional<NSObjectRef> accepted = acceptedValue(value)) {
    value_ = std::move(*accepted);
  }
}

bool QCPort::takesValuesOf(const QCPort& source) const {
  const std::string_view from = source.kind();
  const std::string_view to = kind();
  return from == to || (isNumeric(from) && isNumeric(to));
}

std::shared_ptr<QCPort> QCPort::portWithKey(std::string key, PropertyList attributes) const {
  if (!maker_) {
    return nullptr;
  }
  std::shared_ptr<QCPort> port = maker_(std::move(key), std::move(attributes));
  port->maker_ = maker_;  // so that an outer patch can publish it again
  return port;
}
