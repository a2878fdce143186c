// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"
#include "Host/Rendering/Effects.h"
#include "Host/Rendering/Inputs.h"

#include <memory>
#include <optional>
#include <string>

namespace host {

struct PictureSize {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
};

// A rendered picture: premultiplied, and the depth that it is to be written in.
struct Picture {
  ImagePixels pixels;
  Depth depth = Depth::Bits8;
};

// One effect that renders pictures, frame after frame.
//
// A size scales by nearest neighbour: what a filter gives, what blend modes and transitions are given (so that two
// pictures of different size can meet). Generators are told it through their ports "inputWidth", "inputHeight",
// and for the depth through "inputDepth" (0: 8 bits, 1: 16 bits, 2: float), where they have them.
class EffectRendering {
 public:
  // Throws Failure for an unknown effect, or when none of its kinds takes that many pictures.
  EffectRendering(const std::string& effect, std::size_t inputCount, std::optional<PictureSize> size,
                  std::optional<Depth> depth);

  const std::string& effect() const { return effect_; }
  EffectKind kind() const { return kind_; }
  const EffectRoles& roles() const { return roles_; }
  QCPatch& patch() { return *patch_; }

  // Throws Failure when the pictures do not fit each other or the effect cannot render them.
  Picture render(const InputPictures& pictures, double time);

  // The same in steps, for hosts that render the same pictures again with other parameters.
  void connect(const InputPictures& pictures);
  BitmapRef result(double time);                       // runs the effect; what it gave, in the size that was wanted
  Picture pictureOf(const VortoBitmap& result) const;  // in the depth to write it in

 private:
  void chooseKind(std::size_t inputCount);
  void checkRoles() const;
  void askGenerator();
  void setTime(double time);
  std::string described() const;

  const std::string effect_;
  const std::optional<PictureSize> size_;
  const std::optional<Depth> depth_;
  std::shared_ptr<QCPatch> patch_;
  EffectKind kind_ = EffectKind::Filter;
  EffectRoles roles_;
  std::optional<Depth> inputDepth_;  // of the pictures that are connected; none for generators
};

}  // namespace host
