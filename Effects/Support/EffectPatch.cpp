// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/EffectPatch.h"

#include "Ports/VRTImage.h"

#include <new>

namespace vorto::effects {

EffectPatch::EffectPatch(PropertyList attributes) : QCPatch(std::move(attributes)) {
  outputImage_ = addOutputPort<QCImagePort>("outputImage", portAttributes("Image"));
}

bool EffectPatch::execute(double, std::string* reason) {
  VRTImage::setBitmapOfPort(*outputImage_, nullptr);  // a failure must not leave the last frame's image behind
  std::optional<BitmapRef> image;
  try {
    image = render(reason);
  } catch (const std::bad_alloc&) {
    if (reason) *reason = "no memory to work in";
  }
  if (!image) return false;
  if (*image) VRTImage::setBitmapOfPort(*outputImage_, std::move(*image));
  return true;
}

PropertyList effectAttributes(const std::string& name, const std::string& description, const std::string& kind,
                              std::initializer_list<std::pair<const char*, const char*>> roles) {
  PropertyList roleKeys;
  for (const auto& [role, key] : roles) roleKeys.set(role, PropertyList::string(key));
  PropertyList protocols;
  protocols.set(kind, std::move(roleKeys));
  PropertyList attributes;
  attributes.set("name", PropertyList::string(name));
  attributes.set("description", PropertyList::string(description));
  attributes.set("protocols", std::move(protocols));
  attributes.set("dependsOnTime", PropertyList::boolean(false));
  attributes.set("keepsState", PropertyList::boolean(false));
  return attributes;
}

PropertyList portAttributes(const std::string& name) {
  PropertyList attributes;
  attributes.set("name", PropertyList::string(name));
  return attributes;
}

PropertyList numberAttributes(const std::string& name, double minimum, double maximum, double defaultValue) {
  PropertyList attributes = portAttributes(name);
  attributes.set("minimum", PropertyList::real(minimum));
  attributes.set("maximum", PropertyList::real(maximum));
  attributes.set("default", PropertyList::real(defaultValue));
  return attributes;
}

PropertyList indexAttributes(const std::string& name, int minimum, int maximum, int defaultValue) {
  PropertyList attributes = portAttributes(name);
  attributes.set("minimum", PropertyList::integer(minimum));
  attributes.set("maximum", PropertyList::integer(maximum));
  attributes.set("default", PropertyList::integer(defaultValue));
  return attributes;
}

PropertyList menuAttributes(const std::string& name, std::initializer_list<const char*> menu, int defaultValue) {
  PropertyList attributes = indexAttributes(name, 0, static_cast<int>(menu.size()) - 1, defaultValue);
  PropertyList items = PropertyList::array();
  for (const char* item : menu) items.append(PropertyList::string(item));
  attributes.set("menu", std::move(items));
  return attributes;
}

}  // namespace vorto::effects
