// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Commands/OptionValues.h"

#include "Host/Color/SpaceNames.h"
#include "Host/Files/FileFormat.h"
#include "Host/Messages/Failure.h"
#include "Host/Rendering/FrameTimes.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace host {
namespace {

std::optional<PictureSize> parsedSize(const std::string& text) {
  if (text.empty()) return std::nullopt;
  unsigned width = 0;
  unsigned height = 0;
  int used = 0;
  const bool digitsOnly = text.find_first_not_of("0123456789x") == std::string::npos && text.size() <= 21;
  if (!digitsOnly || std::sscanf(text.c_str(), "%9ux%9u%n", &width, &height, &used) != 2 ||
      static_cast<std::size_t>(used) != text.size() || width == 0 || height == 0) {
    throw Failure(ExitCode::Usage, "--size " + text + ": give a width and a height in pixels, as in 1920x1080");
  }
  return PictureSize{width, height};
}

// The value of an option that takes one of some names.
template <class Value>
Value named(const char* option, const std::string& text, std::optional<Value> value, const char* names) {
  if (value) return *value;
  throw Failure(ExitCode::Usage, std::string(option) + " " + text + ": give " + names);
}

// One for a file goes before one for all, whichever is told first.
void applyInputSpaces(const std::vector<std::string>& texts, const std::vector<std::string>& inputs,
                      std::vector<std::optional<ColorSpace>>& spaces) {
  std::vector<bool> isNamed(inputs.size(), false);
  for (const std::string& text : texts) {
    const std::size_t equals = text.rfind('=');
    const bool isForAll = equals == std::string::npos;
    const std::string file = isForAll ? "" : text.substr(0, equals);
    const ColorSpace space = spaceOfOption("--input-space", isForAll ? text : text.substr(equals + 1));
    if (!isForAll && std::find(inputs.begin(), inputs.end(), file) == inputs.end()) {
      throw Failure(ExitCode::Usage, "--input-space " + text + ": no --input is " + file);
    }
    for (std::size_t i = 0; i < inputs.size(); ++i) {
      if (isForAll ? isNamed[i] : inputs[i] != file) continue;
      spaces[i] = space;
      isNamed[i] = !isForAll;
    }
  }
}

}  // namespace

Framing parsedFraming(const FramingOptions& options) {
  Framing framing;
  framing.size = parsedSize(options.size);
  if (!options.filter.empty()) {
    framing.scaling.filter =
        named("--filter", options.filter, scalingFilterNamed(options.filter), "nearest, box, linear, cubic or lanczos");
  }
  if (!options.fit.empty()) {
    framing.scaling.fit = named("--fit", options.fit, scalingFitNamed(options.fit), "stretch, fit or fill");
  }
  if (!options.place.empty()) {
    framing.place = named("--place", options.place, placeNamed(options.place),
                          "center, top-left, top, top-right, left, right, bottom-left, bottom, bottom-right, X,Y in "
                          "pixels, fit, fill or stretch");
  }
  return framing;
}

WriteSettings parsedSettings(const EncodingOptions& options) {
  WriteSettings settings;
  settings.quality = options.quality;
  const std::size_t colon = options.compression.find(':');
  settings.compression = options.compression.substr(0, colon);
  if (colon == std::string::npos) return settings;
  const std::string level = options.compression.substr(colon + 1);
  const auto result = std::from_chars(level.data(), level.data() + level.size(), settings.level);
  const bool isNumber = !level.empty() && result.ec == std::errc() && result.ptr == level.data() + level.size();
  if (!isNumber || settings.level < 0 || settings.level > 100 || settings.compression.empty()) {
    throw Failure(ExitCode::Usage,
                  "--compression " + options.compression + ": give a method, and its level after a colon, as in zip:4");
  }
  return settings;
}

std::optional<Depth> parsedDepth(const std::string& text) {
  if (text.empty()) return std::nullopt;
  const auto depth = depthNamed(text);
  if (!depth) throw Failure(ExitCode::Usage, "--depth " + text + ": give 8, 16, half or float");
  return depth;
}

OutputAlpha parsedOutputAlpha(const std::string& text) {
  if (text.empty() || text == "keep") return OutputAlpha::Keep;
  if (text == "opaque") return OutputAlpha::Opaque;
  if (text == "gray") return OutputAlpha::Gray;
  throw Failure(ExitCode::Usage, "--alpha " + text + ": give keep, opaque or gray");
}

ColorWishes parsedColors(const ColorOptions& options, const std::vector<std::string>& inputs) {
  ColorWishes wishes;
  wishes.inputs.resize(inputs.size());
  if (!options.working.empty()) wishes.working = spaceOfOption("--working-space", options.working);
  if (!options.output.empty()) wishes.output = spaceOfOption("--output-space", options.output);
  if (wishes.working && wishes.working->kind == ColorSpace::Kind::Raw && wishes.output) {
    throw Failure(ExitCode::Usage, "--working-space raw converts nothing: leave --output-space out");
  }
  applyInputSpaces(options.inputs, inputs, wishes.inputs);
  const bool isFirstRaw = !inputs.empty() && wishes.inputs[0] && wishes.inputs[0]->kind == ColorSpace::Kind::Raw;
  if (isFirstRaw && !wishes.working && wishes.output) {
    throw Failure(ExitCode::Usage,
                  "--input-space raw: what is no colors is not converted: leave --output-space out, or "
                  "give a --working-space");
  }
  return wishes;
}

void checkTime(std::optional<double> time) {
  if (time && !std::isfinite(*time)) throw Failure(ExitCode::Usage, "--time: give a finite number");
}

void checkRate(double rate) {
  if (std::isfinite(rate) && rate > 0) return;
  throw Failure(ExitCode::Usage, "--rate: give a number of frames per second above 0");
}

double timeOfFrame(EffectKind kind, const FrameRange& frames, std::uint64_t frame, double rate) {
  const std::uint64_t index = frame - frames.first;
  return timeForEffect(kind, index, frames.count(), static_cast<double>(index) / rate);
}

}  // namespace host
