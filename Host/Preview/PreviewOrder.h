// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Preview/PreviewSetup.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace host {

// What a process that renders previews is told. It does one thing after another, in the order in which it was told.

struct PreviewHello {  // first of all
  PreviewSetup setup;
  bool takesInputs = false;      // its inputs come with the orders; it opens none
  std::uint64_t inputBytes = 0;  // of decoded inputs that it keeps, beside those of the present frame
};

// The present state of a parameter.
struct ParameterState {
  std::string key;  // of the port
  Bytes state;      // a binary property list; empty where the port holds nothing
  bool operator==(const ParameterState&) const = default;
};

struct InputsOrder {
  std::uint64_t id = 0;
  std::uint64_t frame = 0;
  PictureSize size;  // that the result is to fit
};

// Inputs of another process.
struct GivenInputs {
  std::vector<BitmapRef> bitmaps;
  Depth depth = Depth::Bits8;
  PictureSize resultSize;  // to which results are scaled where they have another size
};

struct RenderOrder {
  std::uint64_t id = 0;
  std::uint64_t frame = 0;
  bool isAhead = false;                 // may be dropped
  std::optional<double> time;           // for the effect, instead of the frame's
  std::vector<ParameterState> changed;  // since the last order to this process
  std::optional<GivenInputs> given;
};

// Counts the values of what was rendered last.
struct CountOrder {
  std::uint64_t id = 0;
};

struct DropOrder {};  // of renders ahead those that have not begun

using PreviewOrder = std::variant<PreviewHello, InputsOrder, RenderOrder, CountOrder, DropOrder>;

}  // namespace host
