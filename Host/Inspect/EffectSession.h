// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Commands/InspectOptions.h"
#include "Host/Inspect/ParameterDocument.h"
#include "Host/Inspect/PreviewEngine.h"
#include "Host/Rendering/EffectRendering.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace host {

// What the inspector's command line says of an effect and its pictures. Throws Failure for texts that do not fit.
PreviewSetup previewSetupOf(const InspectOptions& options);

// An effect whose parameters are edited, and the engine that renders it meanwhile. The effect's patch here is there for
// its ports and their editors: it is never executed, and its image ports hold nothing.
class EffectSession {
 public:
  // Of an effect of several kinds the one that fits the inputs that there are. Where these are all that it takes it
  // begins to open them, which goes on without anybody waiting. Throws Failure for what the command line cannot mean;
  // the engine is told later what files cannot be.
  explicit EffectSession(const InspectOptions& options);

  const std::string& name() const { return rendering_.effect(); }
  std::string description() const;
  const std::string& inputNames() const { return inputNames_; }  // the files' names without folders, "a.png, b.png"
  ParameterDocument& document() { return *document_; }
  QCPatch& patch() { return rendering_.patch(); }
  EffectKind kind() const { return rendering_.kind(); }
  PreviewEngine& engine() { return engine_; }
  const PreviewEngine& engine() const { return engine_; }

  // Whether inputs were opened: otherwise the engine has nothing to do.
  bool isOpen() const { return isOpen_; }
  // Begins with other inputs, as many as the effect takes; the rest stays. Throws Failure as the constructor does.
  void openInputs(const InspectOptions& options);

  // Tells the engine the present values of the parameters.
  void sendParameters() { engine_.setParameters(document_->parameters()); }

  // What the parameters are now, by the keys of their ports; and those of another effect, as far as there are ports of
  // the same key and kind.
  struct KeptState {
    std::string kind;
    std::optional<PropertyList> state;
  };
  using KeptStates = std::map<std::string, KeptState>;
  KeptStates parameterStates() const;
  void setParameterStates(const KeptStates& states);

  // For tests, screenshots and figures: handles events until the engine is opened or refuses to be; until it has
  // rendered, counted or failed all that is wanted. False when that takes longer.
  bool waitUntilOpened(int milliseconds);
  bool waitForPicture(int milliseconds);
  // Throws what there is instead of a picture, as `vorto render` would.
  void checkPicture() const;

 private:
  void openEngine(const InspectOptions& options);
  void readParameters(const InspectOptions& options);

  EffectRendering rendering_;
  std::vector<std::string> pictures_;  // "port=FILE"
  bool isOpen_ = false;
  std::string inputNames_;
  std::unique_ptr<ParameterDocument> document_;
  PreviewEngine engine_;
};

}  // namespace host
