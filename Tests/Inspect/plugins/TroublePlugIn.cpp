// SPDX-License-Identifier: BSD-3-Clause
// A filter that gives its image, and does what "trouble" says: "die"; "hang", whatever signal comes; "slow", which
// takes 30 ms; "fail"; "exit", which ends the process as if all were well.
#include "Platform/QuartzComposer/GFNodeManager.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

#include <unistd.h>

#include <csignal>
#include <memory>
#include <string>

namespace {

PropertyList declaredAttributes() {
  PropertyList roles;
  roles.set("inputImagePort", PropertyList::string("inputImage"));
  roles.set("outputImagePort", PropertyList::string("outputImage"));
  PropertyList protocols;
  protocols.set("filter", std::move(roles));
  PropertyList result;
  result.set("protocols", std::move(protocols));
  result.set("keepsState", PropertyList::boolean(false));
  return result;
}

class TroublePatch : public QCPatch {
 public:
  TroublePatch() : QCPatch(declaredAttributes()) {}

 private:
  bool execute(double, std::string* reason) override {
    const std::string trouble = trouble_->stringValue();
    if (trouble == "die") {
      std::signal(SIGSEGV, SIG_DFL);
      std::raise(SIGSEGV);
    }
    if (trouble == "exit") ::_exit(0);
    if (trouble == "hang") {
      sigset_t all;
      ::sigfillset(&all);
      ::sigprocmask(SIG_SETMASK, &all, nullptr);
      for (;;) ::pause();
    }
    if (trouble == "slow") ::usleep(30000);
    if (trouble == "fail") *reason = "it was told to";
    return trouble != "fail" && output_->setValue(image_->value());
  }
  std::shared_ptr<QCImagePort> image_ = addInputPort<QCImagePort>("inputImage");
  std::shared_ptr<QCStringPort> trouble_ = addInputPort<QCStringPort>("inputTrouble");
  std::shared_ptr<QCNumberPort> amount_ = addInputPort<QCNumberPort>("inputAmount");
  std::shared_ptr<QCImagePort> output_ = addOutputPort<QCImagePort>("outputImage");
};

}  // namespace

QC_PLUGIN_ENTRY([](GFNodeManager& manager) {
  manager.registerNodeWithName("Trouble", declaredAttributes(), [] { return std::make_shared<TroublePatch>(); });
})
