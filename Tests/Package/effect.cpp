// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCPlugIn.h"

// The smallest plug-in that somebody outside could write.
namespace {

PropertyList attributes() {
  PropertyList generator;
  generator.set("outputImagePort", PropertyList::string("outputImage"));
  PropertyList protocols;
  protocols.set("generator", generator);
  PropertyList result;
  result.set("protocols", protocols);
  return result;
}

class Nothing : public QCPatch {
 public:
  Nothing() : QCPatch(::attributes()) { addOutputPort<QCImagePort>("outputImage"); }
};

// A generator by its registration, while its instances do not say what they are.
class Silent : public QCPatch {
 public:
  Silent() { addOutputPort<QCImagePort>("outputImage"); }
};

void registerNodes(GFNodeManager& manager) {
  manager.registerNodeWithName("Nothing", attributes(), [] { return std::make_shared<Nothing>(); });
  manager.registerNodeWithName("Silent", attributes(), [] { return std::make_shared<Silent>(); });
}

}  // namespace

QC_PLUGIN_ENTRY(registerNodes)
