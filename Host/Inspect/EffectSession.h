// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Commands/InspectOptions.h"
#include "Host/Inspect/ParameterDocument.h"
#include "Host/Inspect/PreviewEngine.h"
#include "Host/Rendering/EffectRendering.h"

#include <memory>
#include <string>
#include <vector>

namespace host {

// What the inspector's command line says of an effect and its pictures. Throws Failure for texts that do not fit.
PreviewSetup previewSetupOf(const InspectOptions& options);

// An effect whose parameters are edited, and the engine that renders it meanwhile. The effect's patch here is there for
// its ports and their editors: it is never executed, and its image ports hold nothing.
class EffectSession {
 public:
  // Begins to open the inputs, which goes on without anybody waiting. Throws Failure for what the command line cannot
  // mean; the engine is told later what files cannot be.
  explicit EffectSession(const InspectOptions& options);

  const std::string& name() const { return rendering_.effect(); }
  std::string description() const;
  const std::string& inputNames() const { return inputNames_; }  // the files' names without folders, "a.png, b.png"
  ParameterDocument& document() { return *document_; }
  PreviewEngine& engine() { return engine_; }

  // Tells the engine the present values of the parameters.
  void sendParameters() { engine_.setParameters(document_->parameters()); }

  // For tests, screenshots and figures: handles events until the engine is opened or refuses to be; until it has
  // rendered, counted or failed all that is wanted. False when that takes longer.
  bool waitUntilOpened(int milliseconds);
  bool waitForPicture(int milliseconds);
  // Throws what there is instead of a picture, as `vorto render` would.
  void checkPicture() const;

 private:
  void readParameters(const InspectOptions& options);

  EffectRendering rendering_;
  std::string inputNames_;
  std::unique_ptr<ParameterDocument> document_;
  PreviewEngine engine_;
};

}  // namespace host
