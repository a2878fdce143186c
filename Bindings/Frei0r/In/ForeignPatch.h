// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Bindings/Frei0r/In/ForeignEffect.h"
#include "Bindings/Frei0r/In/ParameterPorts.h"
#include "Bindings/Frei0r/In/RenderProcess.h"
#include "Effects/Support/Bitmaps.h"
#include "Platform/QuartzComposer/QCPatch.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vorto::frei0r {

// A plug-in as a node: where it is, what it said of itself, and the attributes of its instances.
struct ForeignNode {
  std::string plugIn;
  std::shared_ptr<const ForeignEffect> effect;
  PropertyList attributes;

  ForeignNode(const std::string& name, std::string plugInPath, ForeignEffect described);
};

// An instance. A source is a generator, which takes its size and depth from ports; a filter a filter; a mixer a blend
// mode, its first input the background, its second the foreground, its third, if there is one, a picture beside them,
// which is transparent when it is missing. The result has the size and layout of the first input; the others lie at its
// upper left corner. What the plug-in keeps from frame to frame it keeps as long as the size stays.
class ForeignPatch : public QCPatch {
 public:
  explicit ForeignPatch(std::shared_ptr<const ForeignNode> node);

 private:
  struct Target {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t formatCode = 0;
  };
  bool execute(double time, std::string* reason) override;
  // Null where there is no image (an input is missing). Nothing, with the reason, when it fails.
  std::optional<effects::BitmapRef> render(double time, std::string* reason);
  bool readInputs(std::vector<effects::BitmapRef>& inputs, std::string* reason) const;
  std::optional<Target> targetOfPorts(std::string* reason) const;
  bool setInputs(const std::vector<effects::BitmapRef>& inputs, const Target& target, const FrameSize& size,
                 std::string* reason);
  unsigned neededInputs() const;

  std::shared_ptr<const ForeignNode> node_;
  std::vector<std::shared_ptr<QCImagePort>> images_;
  std::optional<ParameterPorts> parameters_;
  std::shared_ptr<QCIndexPort> width_;
  std::shared_ptr<QCIndexPort> height_;
  std::shared_ptr<QCIndexPort> depth_;
  std::shared_ptr<QCImagePort> outputImage_;
  RenderProcess process_;
};

}  // namespace vorto::frei0r
