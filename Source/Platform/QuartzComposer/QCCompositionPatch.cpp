// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCCompositionPatch.h"

#include "Platform/QuartzComposer/QCCompositionBuilder.h"

#include <exception>

std::shared_ptr<QCCompositionPatch> QCCompositionPatch::patchWithComposition(const QCComposition& composition,
                                                                             GFNodeManager& manager,
                                                                             std::string* reason) {
  auto patch = std::make_shared<QCCompositionPatch>(composition);
  try {
    QCCompositionBuilder(composition, manager, *patch).build();
  } catch (const QCCompositionRefusal& refusal) {
    *reason = refusal.reason;
    return nullptr;
  } catch (const std::exception& error) {  // of the nodes' own code
    *reason = error.what();
    return nullptr;
  } catch (...) {
    *reason = "a node failed without a reason";
    return nullptr;
  }
  return patch;
}

QCCompositionPatch::QCCompositionPatch(const QCComposition& composition) : QCPatch(composition.attributes) {}

bool QCCompositionPatch::execute(double time, std::string* reason) {
  if (!carry(inputLinks_, reason)) {
    return false;
  }
  for (const Step& step : steps_) {
    std::string cause;
    if (!carry(step.incoming, &cause) || !step.patch->executeAtTime(time, &cause)) {
      *reason = step.label + ": " + cause;
      return false;
    }
  }
  return carry(outputLinks_, reason);
}

bool QCCompositionPatch::carry(const std::vector<Link>& links, std::string* reason) {
  for (const Link& link : links) {
    const NSObjectRef value = link.from->value();
    const NSObjectRef copy = value ? value->copyWithZone() : nullptr;
    if (value && !copy) {
      *reason =
          "the value of the port \"" + link.from->key() + "\" is a " + value->className() + ", which cannot be copied";
      return false;
    }
    if (!link.to->setValue(copy)) {
      *reason = "the port \"" + link.to->key() + "\" does not take the value of \"" + link.from->key() + '"';
      return false;
    }
  }
  return true;
}
