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

// An effect whose parameters are edited. Its patch is there for its ports and their editors, and is never executed:
// processes beside this one render (PreviewEngine), and are given the parameters as states.
class EffectSession {
 public:
  // Of an effect of several kinds the one that fits the inputs that there are. Throws Failure for an effect that is not
  // there, and for parameters that do not fit it.
  explicit EffectSession(const InspectOptions& options);

  const std::string& name() const { return rendering_.effect(); }
  std::string description() const;
  QCPatch& patch() { return rendering_.patch(); }
  EffectKind kind() const { return rendering_.kind(); }
  ParameterDocument& document() { return *document_; }

  // Begins with the inputs of the options, as many as the effect takes, and the present parameters. The one before
  // ends.
  PreviewEngine& openEngine(const InspectOptions& options, PreviewEngine::Told told);
  void closeEngine() { engine_.reset(); }

  // What the parameters are now, by the keys of their ports; and those of another effect, as far as there are ports of
  // the same key and kind.
  struct KeptState {
    std::string portClass;
    std::optional<PropertyList> state;
  };
  using KeptStates = std::map<std::string, KeptState>;
  KeptStates parameterStates() const;
  void setParameterStates(const KeptStates& states);

 private:
  EffectRendering rendering_;
  std::vector<std::string> pictures_;  // "port=FILE"
  std::unique_ptr<ParameterDocument> document_;
  std::unique_ptr<PreviewEngine> engine_;
};

}  // namespace host
