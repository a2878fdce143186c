// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCPort.h"

#include "Platform/Foundation/NSClassTable.h"
#include "Platform/Foundation/NSReason.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <vector>

namespace {

template <class Port>
NSClassRegistration registered(const char* name) {
  return NSClassRegistration(name, "QCPort", [] { return std::make_shared<Port>(""); });
}

const NSClassRegistration kRegistrations[] = {
    registered<QCNumberPort>("QCNumberPort"), registered<QCBooleanPort>("QCBooleanPort"),
    registered<QCIndexPort>("QCIndexPort"),   registered<QCStringPort>("QCStringPort"),
    registered<QCColorPort>("QCColorPort"),   registered<QCImagePort>("QCImagePort"),
    registered<QCObjectPort>("QCObjectPort"),
};

const NSNumber* asNumber(const NSObjectRef& value) {
  return dynamic_cast<const NSNumber*>(value.get());
}

constexpr double kLargestIndex = 4294967295.0;

}  // namespace

QCNumberPort::QCNumberPort(std::string key, PropertyList attributes) : QCPort(std::move(key), std::move(attributes)) {
  setInitialValue(NSNumber::numberWithDouble(0));
}

double QCNumberPort::doubleValue() const {
  return asNumber(value())->doubleValue();
}

void QCNumberPort::setDoubleValue(double value) {
  setValue(NSNumber::numberWithDouble(value));
}

std::optional<NSObjectRef> QCNumberPort::acceptedValue(const NSObjectRef& value) const {
  const NSNumber* number = asNumber(value);
  if (!number) {
    return std::nullopt;
  }
  return number->value().type() == PropertyList::Type::Real ? value : NSNumber::numberWithDouble(number->doubleValue());
}

QCBooleanPort::QCBooleanPort(std::string key, PropertyList attributes) : QCPort(std::move(key), std::move(attributes)) {
  setInitialValue(NSNumber::numberWithBool(false));
}

bool QCBooleanPort::booleanValue() const {
  return asNumber(value())->boolValue();
}

void QCBooleanPort::setBooleanValue(bool value) {
  setValue(NSNumber::numberWithBool(value));
}

std::optional<NSObjectRef> QCBooleanPort::acceptedValue(const NSObjectRef& value) const {
  const NSNumber* number = asNumber(value);
  if (!number) {
    return std::nullopt;
  }
  return NSNumber::numberWithBool(number->doubleValue() != 0);
}

QCIndexPort::QCIndexPort(std::string key, PropertyList attributes) : QCPort(std::move(key), std::move(attributes)) {
  setInitialValue(NSNumber::numberWithInt(0));
}

std::uint32_t QCIndexPort::indexValue() const {
  return static_cast<std::uint32_t>(asNumber(value())->value().integerValue());
}

void QCIndexPort::setIndexValue(std::uint32_t value) {
  setValue(NSNumber::numberWithInt(value));
}

std::optional<NSObjectRef> QCIndexPort::acceptedValue(const NSObjectRef& value) const {
  const NSNumber* number = asNumber(value);
  if (!number) {
    return std::nullopt;
  }
  const double index = number->doubleValue();
  if (!(index >= 0 && index <= kLargestIndex) || index != std::floor(index)) {
    return std::nullopt;
  }
  return NSNumber::numberWithInt(static_cast<std::int64_t>(index));
}

QCStringPort::QCStringPort(std::string key, PropertyList attributes) : QCPort(std::move(key), std::move(attributes)) {
  setInitialValue(NSString::stringWithUTF8String(""));
}

std::string QCStringPort::stringValue() const {
  return static_cast<const NSString&>(*value()).UTF8String();
}

void QCStringPort::setStringValue(const std::string& value) {
  setValue(NSString::stringWithUTF8String(value));
}

std::optional<NSObjectRef> QCStringPort::acceptedValue(const NSObjectRef& value) const {
  return dynamic_cast<const NSString*>(value.get()) ? std::optional(value) : std::nullopt;
}

QCColorPort::QCColorPort(std::string key, PropertyList attributes) : QCPort(std::move(key), std::move(attributes)) {
  setInitialValue(std::make_shared<QCColor>());
}

std::shared_ptr<QCColor> QCColorPort::colorValue() const {
  return std::static_pointer_cast<QCColor>(value());
}

std::optional<PropertyList> QCColorPort::stateValue() const {
  const std::shared_ptr<QCColor> color = colorValue();
  return PropertyList::array({PropertyList::real(color->red), PropertyList::real(color->green),
                              PropertyList::real(color->blue), PropertyList::real(color->alpha)});
}

NSObjectRef QCColorPort::valueFromState(const PropertyList& state) const {
  const PropertyList::Array& items = state.items();
  if (items.size() != 4 || !std::all_of(items.begin(), items.end(), [](const auto& item) { return item.isNumber(); })) {
    return nullptr;
  }
  return std::make_shared<QCColor>(items[0].doubleValue(), items[1].doubleValue(), items[2].doubleValue(),
                                   items[3].doubleValue());
}

std::optional<NSObjectRef> QCColorPort::acceptedValue(const NSObjectRef& value) const {
  return dynamic_cast<const QCColor*>(value.get()) ? std::optional(value) : std::nullopt;
}

std::shared_ptr<QCImage> QCImagePort::imageValue() const {
  return std::static_pointer_cast<QCImage>(value());
}

std::optional<PropertyList> QCImagePort::stateValue() const {
  return std::nullopt;
}

bool QCImagePort::setStateValue(const PropertyList&, std::string* reason) {
  return NSRefuse(reason, "an image is not stored as a state");
}

std::optional<NSObjectRef> QCImagePort::acceptedValue(const NSObjectRef& value) const {
  return !value || dynamic_cast<const QCImage*>(value.get()) ? std::optional(value) : std::nullopt;
}

std::string QCObjectPort::objectClass() const {
  return "QCObject";
}

std::optional<PropertyList> QCObjectPort::stateValue() const {
  const auto* object = static_cast<const QCObject*>(value().get());
  return object ? object->stateValue() : std::nullopt;
}

bool QCObjectPort::setStateValue(const PropertyList& state, std::string* reason) {
  const std::string name = objectClass();
  const NSClass* entry = NSClassFromString(name);
  const NSObjectRef object = entry && entry->factory ? entry->factory() : nullptr;
  auto* restored = dynamic_cast<QCObject*>(object.get());
  if (!restored) {
    return NSRefuse(reason, "no objects of class " + name + " can be made");
  }
  try {
    std::string cause;
    if (!restored->initWithStateValue(state, &cause)) {
      return NSRefuse(reason, std::string("this ") + state.typeName() + " is no state of a " + name +
                                  (cause.empty() ? "" : ": " + cause));
    }
  } catch (const std::exception& error) {
    return NSRefuse(reason, "this state does not fit a " + name + ": " + error.what());
  }
  return setValue(object, reason);
}

bool QCObjectPort::takesValuesOf(const QCPort& source) const {
  const auto* objects = dynamic_cast<const QCObjectPort*>(&source);
  if (!objects) {
    return false;
  }
  const std::string wanted = objectClass();
  if (wanted == "QCObject") {
    return true;
  }
  const std::vector<std::string> hierarchy = NSClassHierarchy(objects->objectClass());
  return std::find(hierarchy.begin(), hierarchy.end(), wanted) != hierarchy.end();
}

std::optional<NSObjectRef> QCObjectPort::acceptedValue(const NSObjectRef& value) const {
  if (!value) {
    return value;
  }
  const std::string wanted = objectClass();
  const bool fits =
      dynamic_cast<const QCObject*>(value.get()) && (wanted == "QCObject" || value->isKindOfClass(wanted));
  return fits ? std::optional(value) : std::nullopt;
}
