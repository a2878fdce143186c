// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Commands/InspectOptions.h"
#include "Host/Inspect/ParameterDocument.h"
#include "Host/Inspect/Timeline.h"
#include "Host/Rendering/EffectRendering.h"
#include "Host/Rendering/Inputs.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace host {

// An effect with its pictures, at one position in time, whose parameters are edited. Everything throws Failure when it
// cannot be done; the session stays usable.
class EffectSession {
 public:
  explicit EffectSession(const InspectOptions& options);

  const std::string& name() const { return rendering_.effect(); }
  std::string description() const;
  const std::string& inputNames() const { return inputNames_; }  // the files' names without folders, "a.png, b.png"
  ParameterDocument& document() { return *document_; }
  const Timeline& timeline() const { return timeline_; }
  std::uint64_t position() const { return position_; }

  // Feeds the pictures of that position into the effect; those who watch its image ports see them at once.
  void goTo(std::uint64_t position);
  // Runs the effect on them with its present parameters. The result is kept until the next.
  const BitmapRef& render();
  const BitmapRef& result() const { return result_; }
  void savePicture(const std::string& path);

 private:
  void readParameters(const InspectOptions& options);

  EffectRendering rendering_;
  Inputs inputs_;
  std::string inputNames_;
  Timeline timeline_;
  std::uint64_t position_ = 0;
  std::optional<double> fixedTime_;  // that of --time; for a transition until its slider moves
  std::unique_ptr<ParameterDocument> document_;
  BitmapRef result_;
};

}  // namespace host
