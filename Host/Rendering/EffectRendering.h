// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Rendering/Effects.h"
#include "Host/Rendering/Framing.h"
#include "Host/Rendering/Inputs.h"

#include <memory>
#include <optional>
#include <string>

namespace host {

class InputWatch;

// Throws Failure when none of an effect's kinds takes that many pictures, saying how many they take.
void checkInputCount(const QCPatch& patch, const std::string& effect, std::size_t inputCount);

// One effect that renders pictures, frame after frame.
//
// A size scales what a filter gives, and what blend modes and transitions are given; pictures of different sizes meet
// on one canvas (onOneCanvas()). Generators are told it through their ports "inputWidth", "inputHeight", and for the
// depth through "inputDepth" (0: 8 bits, 1: 16 bits, 2: float), where they have them.
class EffectRendering {
 public:
  // Throws Failure for an unknown effect, or when none of its kinds takes that many pictures.
  EffectRendering(const std::string& effect, std::size_t inputCount, const Framing& framing,
                  std::optional<Depth> depth);
  ~EffectRendering();

  const std::string& effect() const { return effect_; }
  EffectKind kind() const { return kind_; }
  const EffectRoles& roles() const { return roles_; }
  QCPatch& patch() { return *patch_; }
  const QCPatch& patch() const { return *patch_; }

  void connect(const InputPictures& pictures);
  // Runs the effect: what it gave, in the size that was wanted. Where it cannot give anything else than the last time,
  // by what it declares (Registry/VRTExecutionTraits.h), it is not run again. Throws Failure when the effect cannot
  // render, or gives something else than effects exchange.
  BitmapRef result(double time);
  // The same for somebody who goes on with it alone: nothing of it is kept here, and nothing of what was connected.
  MutableBitmapRef takenResult(double time);
  Depth depthOf(const VortoBitmap& result) const;  // to write it in

 private:
  void chooseKind(std::size_t inputCount);
  void checkRoles() const;
  void askGenerator();
  void setTime(double time);
  bool isLastResultGood(double time) const;
  std::string described() const;

  const std::string effect_;
  const Framing framing_;
  const std::optional<Depth> depth_;
  std::shared_ptr<QCPatch> patch_;
  EffectKind kind_ = EffectKind::Filter;
  EffectRoles roles_;
  std::optional<Depth> inputDepth_;    // of the pictures that are connected; none for generators
  std::unique_ptr<InputWatch> watch_;  // of the patch's ports
  BitmapRef lastResult_;               // null where it must not be used again
  double lastTime_ = 0;
};

}  // namespace host
