// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Files/FrameFiles.h"
#include "Host/ImageFiles/ImageFileModule.h"
#include "Host/Rendering/ColorFlow.h"
#include "Host/Rendering/EffectRendering.h"
#include "Host/Rendering/Framing.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

// How sizes are brought together, as the command line says it.
struct FramingOptions {
  std::string size;    // "WxH"
  std::string filter;  // "nearest", "box", "linear", "cubic", "lanczos"; lanczos when empty
  std::string fit;     // "stretch", "fit", "fill"; stretch when empty
  std::string place;   // "center", "top-left", ..., "X,Y", "fit", ...
};

// How files are written.
struct EncodingOptions {
  std::string format;       // an extension; that of the output's name when empty
  std::string compression;  // "METHOD" or "METHOD:LEVEL"
  int quality = -1;         // 1 to 100
};

// Color spaces, as the command line names them; empty where it does not.
struct ColorOptions {
  std::string working;
  std::string output;
  std::vector<std::string> inputs;  // "NAME" for all, or "FILE=NAME" for an input
};

// The values of options that several commands have. An empty text gives nothing; they throw Failure for what does not
// fit.
Framing parsedFraming(const FramingOptions& options);
std::optional<Depth> parsedDepth(const std::string& text);  // "8", "16", "half", "float"
OutputAlpha parsedOutputAlpha(const std::string& text);     // "keep", "opaque", "gray"; keep when empty
WriteSettings parsedSettings(const EncodingOptions& options);
ColorWishes parsedColors(const ColorOptions& options, const std::vector<std::string>& inputs);
void checkTime(std::optional<double> time);  // finite
void checkRate(double rate);                 // finite, above 0

// When a frame of a sequence is rendered: transitions run from 0 at the first frame to 1 at the last, other effects in
// seconds from the first frame on.
double timeOfFrame(EffectKind kind, const FrameRange& frames, std::uint64_t frame, double rate);

}  // namespace host
