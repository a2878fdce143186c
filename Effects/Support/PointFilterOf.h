// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/FilterPatch.h"
#include "Effects/Support/PixelLayout.h"

namespace vorto::effects {

// A point filter whose Filter offers row<Layout>(in, out, count) for each layout.
template <class Filter>
class PointFilterOf : public PointFilterPatch {
 protected:
  using PointFilterPatch::PointFilterPatch;

 private:
  void filterRow(std::uint32_t formatCode, const void* in, void* out, std::size_t count) final {
    withLayout(formatCode, [&](auto layout) {
      using Layout = decltype(layout);
      using Channel = typename Layout::Channel;
      static_cast<const Filter*>(this)->template row<Layout>(static_cast<const Channel*>(in),
                                                             static_cast<Channel*>(out), count);
    });
  }
};

}  // namespace vorto::effects
