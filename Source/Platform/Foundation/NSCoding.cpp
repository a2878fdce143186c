// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSCoding.h"

#include <bit>
#include <exception>

namespace coding {
namespace {

constexpr int maximumCoders = 16;  // each holds a copy of what lies within the one before

thread_local int levels = 0;
thread_local int coders = 0;

template <typename Step>
bool withoutThrowing(NSCoder& coder, const std::string& className, Step step) {
  try {
    return step();
  } catch (const std::exception& error) {
    coder.fail("class \"" + className + "\": " + error.what());
  } catch (...) {
    coder.fail("class \"" + className + "\" raised an exception");
  }
  return false;
}

// Type and value; empty for what is not looked up by value.
std::string identityOf(const PropertyList& value) {
  switch (value.type()) {
    case PropertyList::Type::Boolean:
      return value.boolValue() ? "b1" : "b0";
    case PropertyList::Type::Integer:
      return (value.integerValue() < 0 ? "i-" : "i") + std::to_string(value.unsignedValue());
    case PropertyList::Type::Real:
      return "r" + std::to_string(std::bit_cast<std::uint64_t>(value.doubleValue()));
    case PropertyList::Type::String:
      return "s" + value.stringValue();
    default:
      return {};
  }
}

}  // namespace

Level::Level(bool first) : first_(first) {
  ++levels;
  coders += first_ ? 1 : 0;
}

Level::~Level() {
  --levels;
  coders -= first_ ? 1 : 0;
}

bool Level::isTooDeep() const {
  return levels > PropertyListMaximumDepth || coders > maximumCoders;
}

std::optional<PropertyList> plainValue(const NSObject& object) {
  if (const auto* number = dynamic_cast<const NSNumber*>(&object)) {
    return number->value();
  }
  if (const auto* string = dynamic_cast<const NSString*>(&object)) {
    return PropertyList::string(string->UTF8String());
  }
  const auto* data = dynamic_cast<const NSData*>(&object);
  if (data != nullptr && dynamic_cast<const NSMutableData*>(&object) == nullptr) {
    return PropertyList::data(data->bytes());
  }
  return std::nullopt;
}

NSObjectRef objectOfPlainValue(const PropertyList& value) {
  return value.isArray() || value.isDictionary() ? nullptr : NSObjectFromPropertyList(value);
}

void encode(const NSObject& object, NSCoder& coder) {
  withoutThrowing(coder, object.className(), [&] {
    object.encodeWithCoder(coder);
    return true;
  });
}

bool init(NSObject& object, NSCoder& coder, const std::string& className) {
  const bool accepted = withoutThrowing(coder, className, [&] { return object.initWithCoder(coder); });
  if (!accepted) {
    coder.fail("class \"" + className + "\" does not accept what was archived for it");
  }
  return accepted && coder.error().empty();
}

std::optional<std::size_t> PlainValues::find(const PropertyList& value) const {
  const auto found = places_.find(identityOf(value));
  return found == places_.end() ? std::nullopt : std::optional(found->second);
}

void PlainValues::add(const PropertyList& value, std::size_t place) {
  std::string identity = identityOf(value);
  if (!identity.empty()) {
    places_.emplace(std::move(identity), place);
  }
}

}  // namespace coding
