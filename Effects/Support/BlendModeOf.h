// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/BlendModePatch.h"
#include "Effects/Support/PixelLayout.h"
#include "Effects/kernels/Blend.h"

namespace vorto::effects {

// The patch of a mode of Blend.h.
template <class Mode>
class BlendModeOf final : public BlendModePatch {
 public:
  using BlendModePatch::BlendModePatch;

 private:
  void blendRow(std::uint32_t formatCode, const void* background, const void* foreground, void* out,
                std::size_t count) override {
    withLayout(formatCode, [&](auto layout) {
      using Channel = typename decltype(layout)::Channel;
      effects::blendRow<Mode, decltype(layout)>(static_cast<const Channel*>(background),
                                                static_cast<const Channel*>(foreground), static_cast<Channel*>(out),
                                                count);
    });
  }
};

// Makes the mode known as an effect of this name.
template <class Mode>
void registerBlendMode(GFNodeManager& manager, const std::string& name, const std::string& description) {
  const PropertyList attributes = BlendModePatch::describe(name, description);
  manager.registerNodeWithName(name, attributes,
                               [attributes] { return std::make_shared<BlendModeOf<Mode>>(attributes); });
}

}  // namespace vorto::effects
