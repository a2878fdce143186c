#pragma once

#include "Effects/Support/GradientTable.h"

#include <cstddef>

namespace vorto::effects {

// `count` pixels of a gradient, premultiplied, at the positions start, start + step, ...; positions outside 0 to 1 take
// the ends. Integer depths take the nearest of the table's gradientSteps entries, floats interpolate between two.
template <class Layout>
void gradientRampRow(double start, double step, typename Layout::Channel* out, std::size_t count,
                     const GradientEntry<typename Layout::Channel>* table);

}  // namespace vorto::effects
