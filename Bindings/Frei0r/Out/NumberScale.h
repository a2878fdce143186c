// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Rendering/PortKinds.h"

#include <string>

namespace frei0r {

// How the shares of 0 to 1, which frei0r's numbers are, stand for the values of a port:
//   of a range of two ends       min + share (max - min)
//   of a range of one end        min + s, or max - s, with s = share / (1 - share)
//   without a range              s of the upper half, and its mirror image in the lower: 0.5 is 0, 0.75 is 1, 0.25 is
//   -1
// Values are rounded to twelve digits of the range, so that 0.35 of 100 is 35; without ends they stay within a billion.
class NumberScale {
 public:
  explicit NumberScale(const host::PortRange& range) : range_(range) {}
  double value(double share) const;  // of a share that is limited to 0 to 1
  double share(double value) const;
  std::string explanation() const;  // "0 to 1 stand for -4 to 4"

 private:
  host::PortRange range_;
};

}  // namespace frei0r
