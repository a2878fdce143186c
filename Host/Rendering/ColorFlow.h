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

  bool needsFloat() const { return plan_.needsFloat; }  // light is worked with in floats

  // An input's picture in the working space, premultiplied; null where it is in that space already.
  MutableBitmapRef toWorking(std::size_t input, const FilePicture& picture, SampleType sample, const std::string& path);

  // Makes of a result in the working space what a file of the format holds, and says so in its metadata. Gray becomes
  // colors where the file has a profile for colors, unless the channels are told. Without inputs before it colors are
  // sRGB.
  void toOutput(OutputPicture& picture, FileFormat format);

  // How many pixels of all results lay outside the file's space, which has integers; says so where there are any.
  void tellOfCuts() const;

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
  std::unique_ptr<ColorConversion> outputConversion_;
  bool hasLeftProfileOut_ = false;
  std::uint64_t cut_ = 0;
};

}  // namespace host
