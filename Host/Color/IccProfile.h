// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace host {

// What can be told of an ICC profile at a glance, without evaluating it.
struct IccSummary {
  bool isGray = false;
  bool isSRgb = false;      // matrix and curves are those of sRGB: 5e-4 in the matrix, 5e-5 in the light of the curves
  std::string description;  // as it stands there, which may be anything
};

// Nothing, with the reason, for bytes that are no profile, and for profiles of anything but RGB and gray pictures.
std::optional<IccSummary> readIccProfile(std::span<const std::uint8_t> profile, std::string* reason);

}  // namespace host
