// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/Bitmaps.h"
#include "Platform/QuartzComposer/GFNodeManager.h"
#include "Platform/QuartzComposer/QCPatch.h"

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>

namespace vorto::effects {

// A patch that makes one image. All ports take part in the contract for pixels between patches: premultiplied, first
// row on top, 8-bit RGBA or ARGB, 16-bit RGBA or float RGBA.
class EffectPatch : public QCPatch {
 public:
  explicit EffectPatch(PropertyList attributes);

 protected:
  // The image, or null where there is none (an input is missing). Nothing, with the reason, when it fails; the reason
  // may be null.
  virtual std::optional<BitmapRef> render(std::string* reason) = 0;

 private:
  bool execute(double time, std::string* reason) final;
  std::shared_ptr<QCImagePort> outputImage_;
};

// The attributes of an effect of one kind that depends on its ports alone; `roles` names the ports that play the kind's
// roles.
PropertyList effectAttributes(const std::string& name, const std::string& description, const std::string& kind,
                              std::initializer_list<std::pair<const char*, const char*>> roles);

PropertyList portAttributes(const std::string& name);
PropertyList numberAttributes(const std::string& name, double minimum, double maximum, double defaultValue);
PropertyList indexAttributes(const std::string& name, int minimum, int maximum, int defaultValue);
PropertyList menuAttributes(const std::string& name, std::initializer_list<const char*> menu, int defaultValue);

// Makes an effect known by the "name" of its attributes. Patch offers static PropertyList description().
template <class Patch>
void registerEffect(GFNodeManager& manager) {
  PropertyList attributes = Patch::description();
  const std::string name = attributes.find("name")->stringValue();
  manager.registerNodeWithName(name, std::move(attributes), [] { return std::make_shared<Patch>(); });
}

}  // namespace vorto::effects
