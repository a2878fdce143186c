// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSCoder.h"

#include "Platform/Foundation/NSValues.h"

namespace {

PropertyList numberForKey(NSCoder& coder, std::string_view key) {
  const NSObjectRef object = coder.decodeObjectForKey(key);
  if (const auto* number = dynamic_cast<const NSNumber*>(object.get())) {
    return number->value();
  }
  if (object) {
    coder.fail("\"" + std::string(key) + "\" is no number");
  }
  return PropertyList::integer(0);
}

}  // namespace

NSCoder::~NSCoder() = default;

void NSCoder::fail(std::string_view reason) {
  if (error_.empty()) {
    error_ = reason.empty() ? "failed without a reason" : reason;
  }
}

void NSCoder::encodeBool(bool value, std::string_view key) {
  encodeObject(NSNumber::numberWithBool(value), key);
}

void NSCoder::encodeInt(std::int64_t value, std::string_view key) {
  encodeObject(NSNumber::numberWithInt(value), key);
}

void NSCoder::encodeDouble(double value, std::string_view key) {
  encodeObject(NSNumber::numberWithDouble(value), key);
}

bool NSCoder::decodeBoolForKey(std::string_view key) {
  return numberForKey(*this, key).boolValue();
}

std::int64_t NSCoder::decodeIntForKey(std::string_view key) {
  return numberForKey(*this, key).integerValue();
}

double NSCoder::decodeDoubleForKey(std::string_view key) {
  return numberForKey(*this, key).doubleValue();
}
