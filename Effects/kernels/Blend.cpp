// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Blend.h"

#include "Effects/kernels/BlendVectors.h"
#include "Effects/kernels/RowOfLayout.h"
#include "TarnCore/TCKernelTarget.h"

namespace vorto::effects {

template <class List, class Layout>
void BlendKernels<List, Layout>::row(std::size_t mode, const Channel* background, const Channel* foreground,
                                     Channel* out, std::size_t count) {
  std::size_t done = 0;
  if (!TCUsesScalarKernels()) {
    const BlendVectors of = blendVectors(List(), mode);
    const auto loop = rowOfLayout<Layout>(of.rgba8, of.argb8, of.rgba16, of.rgbaFloat);
    done = loop(background, foreground, out, count);
  }
  if (done == count) return;
  BlendDefinitions<List, Layout>::row(mode, background + 4 * done, foreground + 4 * done, out + 4 * done, count - done);
}

template struct BlendKernels<PlainModes, RGBA8>;
template struct BlendKernels<PlainModes, ARGB8>;
template struct BlendKernels<PlainModes, RGBA16>;
template struct BlendKernels<PlainModes, RGBAFloat>;
template struct BlendKernels<PolynomialModes, RGBA8>;
template struct BlendKernels<PolynomialModes, ARGB8>;
template struct BlendKernels<PolynomialModes, RGBA16>;
template struct BlendKernels<PolynomialModes, RGBAFloat>;
template struct BlendKernels<QuotientModes, RGBA8>;
template struct BlendKernels<QuotientModes, ARGB8>;
template struct BlendKernels<QuotientModes, RGBA16>;
template struct BlendKernels<QuotientModes, RGBAFloat>;
template struct BlendKernels<NonSeparableModes, RGBA8>;
template struct BlendKernels<NonSeparableModes, ARGB8>;
template struct BlendKernels<NonSeparableModes, RGBA16>;
template struct BlendKernels<NonSeparableModes, RGBAFloat>;

}  // namespace vorto::effects
