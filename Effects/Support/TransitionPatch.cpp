// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/TransitionPatch.h"

namespace vorto::effects {

PropertyList TransitionPatch::describe(const std::string& name, const std::string& description) {
  PropertyList attributes = effectAttributes(name, description, "transition",
                                             {{"inputImageAPort", "inputImageA"},
                                              {"inputImageBPort", "inputImageB"},
                                              {"inputTimePort", "inputTime"},
                                              {"outputImagePort", "outputImage"}});
  attributes.set("dependsOnTime", PropertyList::boolean(true));
  return attributes;
}

TransitionPatch::TransitionPatch(PropertyList attributes) : EffectPatch(std::move(attributes)) {
  imageA_ = addInputPort<QCImagePort>("inputImageA", portAttributes("From"));
  imageB_ = addInputPort<QCImagePort>("inputImageB", portAttributes("To"));
  time_ = addInputPort<QCNumberPort>("inputTime", numberAttributes("Time", 0, 1, 0));
}

bool TransitionPatch::prepare(std::string*) {
  return true;
}

std::optional<BitmapRef> TransitionPatch::render(std::string* reason) {
  BitmapRef a, b;
  if (!inputPair(*imageA_, *imageB_, a, b, reason) || !prepare(reason)) return std::nullopt;
  if (!a || !b) return nullptr;
  const double time = time_->doubleValue();
  if (!(time > 0)) return a;
  b = fittedBitmap(b, a->width, a->height, reason);
  if (!b) return std::nullopt;
  if (time >= 1) return b;
  auto out = makeBitmap(a->width, a->height, a->formatCode, reason);
  if (!out) return std::nullopt;
  if (out->width != 0 && out->height != 0) mix(*a, *b, time, *out);
  return out;
}

}  // namespace vorto::effects
