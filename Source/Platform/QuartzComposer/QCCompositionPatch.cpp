// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCCompositionPatch.h"

#include "Platform/Foundation/NSReason.h"

QCCompositionPatch::QCCompositionPatch(PropertyList attributes, Parts parts)
    : QCPatch(std::move(attributes)), parts_(std::move(parts)) {
  for (const std::shared_ptr<QCPort>& port : parts_.inputs) {
    addInputPort(port);
  }
  for (const std::shared_ptr<QCPort>& port : parts_.outputs) {
    addOutputPort(port);
  }
}

bool QCCompositionPatch::execute(double time, std::string* reason) {
  if (!carry(parts_.inputLinks, reason)) {
    return false;
  }
  for (const Step& step : parts_.steps) {
    std::string cause;
    if (!carry(step.incoming, &cause) || !step.patch->executeAtTime(time, &cause)) {
      return NSRefuse(reason, step.label + ": " + cause);
    }
  }
  return carry(parts_.outputLinks, reason);
}

bool QCCompositionPatch::carry(const std::vector<Link>& links, std::string* reason) {
  for (const Link& link : links) {
    const NSObjectRef value = link.from->value();
    const NSObjectRef copy = value ? value->copyWithZone() : nullptr;
    if (value && !copy) {
      return NSRefuse(reason, "the value of the port \"" + link.from->key() + "\" is a " + value->className() +
                                  ", which cannot be copied");
    }
    if (std::string cause; !link.to->setValue(copy, &cause)) {
      return NSRefuse(reason, "the port \"" + link.to->key() + "\" does not take the value of \"" + link.from->key() +
                                  "\": " + cause);
    }
  }
  return true;
}
