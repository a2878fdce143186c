// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCObject.h"

#include "Platform/Foundation/NSClassTable.h"
#include "Platform/Foundation/NSCoder.h"
#include "Platform/Foundation/NSValues.h"

#include <array>

namespace {

const NSClassRegistration kRegisteredObject("QCObject", "NSObject", [] { return std::make_shared<QCObject>(); });
const NSClassRegistration kRegisteredImage("QCImage", "NSObject", nullptr);
const NSClassRegistration kRegisteredColor("QCColor", "NSObject", [] { return std::make_shared<QCColor>(); });

struct Component {
  const char* key;
  double QCColor::*field;
};

constexpr std::array<Component, 4> kComponents{
    {{"red", &QCColor::red}, {"green", &QCColor::green}, {"blue", &QCColor::blue}, {"alpha", &QCColor::alpha}}};

}  // namespace

std::optional<PropertyList> QCObject::stateValue() const {
  return std::nullopt;
}

bool QCObject::initWithStateValue(const PropertyList&, std::string*) {
  return false;
}

// The object was made shared, so that casting the constness of the reference away hands out nothing that others lack.
NSObjectRef QCImage::copyWithZone() const {
  return std::const_pointer_cast<NSObject>(shared_from_this());
}

QCColor::QCColor(double redValue, double greenValue, double blueValue, double alphaValue)
    : red(redValue), green(greenValue), blue(blueValue), alpha(alphaValue) {}

NSObjectRef QCColor::copyWithZone() const {
  return std::make_shared<QCColor>(red, green, blue, alpha);
}

bool QCColor::isEqual(const NSObject& other) const {
  const auto* color = dynamic_cast<const QCColor*>(&other);
  return color && red == color->red && green == color->green && blue == color->blue && alpha == color->alpha;
}

void QCColor::encodeWithCoder(NSCoder& coder) const {
  for (const Component& component : kComponents) {
    const NSObjectRef number = NSNumber::numberWithDouble(this->*component.field);
    if (coder.allowsKeyedCoding()) {
      coder.encodeObject(number, component.key);
    } else {
      coder.encodeObject(number);
    }
  }
}

bool QCColor::initWithCoder(NSCoder& coder) {
  for (const Component& component : kComponents) {
    const NSObjectRef object =
        coder.allowsKeyedCoding() ? coder.decodeObjectForKey(component.key) : coder.decodeObject();
    const auto* number = dynamic_cast<const NSNumber*>(object.get());
    if (!number) {
      return false;
    }
    this->*component.field = number->doubleValue();
  }
  return true;
}
