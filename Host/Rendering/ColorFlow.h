// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Color/ColorConversion.h"
#include "Host/Color/ColorPlan.h"
#include "Host/Files/PictureReading.h"
#include "Host/Files/PictureWriting.h"
#include "Host/Pixels/Bitmaps.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace host {

// What the user says of color; nothing where nothing is said.
struct ColorWishes {
  std::optional<ColorSpace> working;
  std::optional<ColorSpace> output;
  std::vector<std::optional<ColorSpace>> inputs;  // by their order; may be shorter than they are many
};

// The colors of a run: from the inputs' spaces to the working one, and from there to the file's. The first pictures
// decide. What is converted is said on standard error, once.
class ColorFlow {
 public:
  explicit ColorFlow(ColorWishes wishes) : wishes_(std::move(wishes)) {}

  // The inputs of a frame, before anything else of it. `infos` has null for a still that was there before. Throws
  // Failure when something cannot be converted.
  void meet(const std::vector<std::string>& paths, const std::vector<const PictureInfo*>& infos);

  bool needsFloat() const { return plan_.needsFloat; }  // whatever the depth

  // An input's picture in the working space: RGBAFloat, premultiplied; null where it is in that space already.
  MutableBitmapRef toWorking(std::size_t input, const FilePicture& picture, const std::string& path);

  // Says of a result in the working space what becomes of its colors in a file of the format, and what its metadata
  // state then. Gray becomes colors where the file has a profile for colors, unless the channels are told. Without
  // inputs before it colors are sRGB.
  void toOutput(OutputPicture& picture, FileFormat format);

  // That pixels of the results lay outside what the file's integers can hold, where there are any.
  void tellOfClipping(std::uint64_t pixels) const;

 private:
  void decide();
  void decideOutput();
  bool dropBrokenProfiles();
  void fitProfile(OutputPicture& picture);
  ColorInput inputOf(std::size_t index, const std::string& path, const PictureInfo& info) const;

  const ColorWishes wishes_;
  bool isDecided_ = false;
  std::vector<ColorInput> inputs_;
  std::vector<Depth> depths_;
  InputPlan plan_;
  std::vector<std::unique_ptr<ColorConversion>> conversions_;  // by input; null until needed
  std::optional<ColorOutput> output_;                          // what the plan is for
  OutputPlan outputPlan_;
  std::shared_ptr<ColorConversion> outputConversion_;
  bool isAnyInputConverted_ = false;  // of those so far
  bool hasLeftProfileOut_ = false;
};

}  // namespace host
