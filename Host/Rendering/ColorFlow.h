// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Color/ColorConversion.h"
#include "Host/Color/ColorPlan.h"
#include "Host/Color/FileSpace.h"
#include "Host/Files/PictureReading.h"
#include "Host/Files/PictureWriting.h"
#include "Host/Pixels/Bitmaps.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace host {

// What the user says of color; nothing where nothing is said.
struct ColorWishes {
  std::optional<ColorSpace> working;
  std::optional<ColorSpace> output;
  std::vector<std::optional<ColorSpace>> inputs;  // by their order; may be shorter than they are many
};

// Says how many pixels of the results lay outside of a clippedSpace(); nothing where there are none.
void tellOfClipping(std::uint64_t pixels, const std::string& space);

// The colors of a run: from the inputs' spaces to the working one, and from there to the file's. What the files of the
// first frame say decides for all; what becomes of another frame follows from that and from its own files, whatever
// frames were between. What is converted is said on standard error, once.
class ColorFlow {
 public:
  explicit ColorFlow(ColorWishes wishes) : wishes_(std::move(wishes)) {}

  // Decides by the files of the first frame: once, before anything else. Throws Failure when something cannot be
  // converted, as the next two do.
  void begin(const std::vector<std::string>& paths, const std::vector<const PictureInfo*>& infos);
  bool hasBegun() const { return isDecided_; }

  // What is written of all frames, said before the first is looked at: otherwise the first result decides it, and with
  // it may find that the profile of the inputs is of no use, when pictures have been taken with it. `depth` is that of
  // the results; `channels`, where told, those of the file. Without inputs there is nothing to decide before.
  void expectOutput(FileFormat format, Depth depth, std::optional<Channels> channels, const std::string& path);

  // The inputs of a frame, before anything else of it. `infos` has null for a still that was there before. Of each
  // frame only what is new is said.
  void meet(const std::vector<std::string>& paths, const std::vector<const PictureInfo*>& infos);

  const ColorSpace& workingSpace() const { return plan_.working; }               // once begun
  bool alwaysNeedsFloat() const { return plan_.needsFloat; }                     // whatever the depth
  bool needsFloat() const { return plan_.needsFloat || isAnyInputConverted(); }  // in the current frame

  // An input's picture in the working space: RGBAFloat, premultiplied; null where it is in that space already.
  MutableBitmapRef toWorking(std::size_t input, const FilePicture& picture, const std::string& path);

  // Says of a result in the working space what becomes of its colors in a file of the format, and what its metadata
  // state then. Gray becomes colors where the file has a profile for colors, unless the channels are told. Without
  // inputs before it colors are sRGB.
  void toOutput(OutputPicture& picture, FileFormat format, const std::string& path);

  // What pixels lie outside of that the file's integers cannot hold: the space's name, empty where they are no colors.
  std::string clippedSpace() const;

  // Of what is written, once that is decided; nothing before.
  std::optional<ColorSpace> outputSpace() const { return output_ ? std::optional(outputPlan_.space) : std::nullopt; }

 private:
  // An input, and what it counts as where its space is found to be of no use.
  struct Met {
    ColorInput input;
    FileSpace otherwise;
  };

  void decide();
  void plan();
  bool isAnyInputConverted() const;
  std::vector<ColorInput> firstInputs() const;
  ColorConversion& conversionFrom(const ColorSpace& space, const std::string& path);
  void setOutput(const ColorOutput& output);
  void decideOutput();
  std::optional<ColorSpace> lightOfConfiguration() const;
  bool dropUnusable();
  bool dropUnusable(Met& met);
  Met metInput(std::size_t index, const std::string& path, const PictureInfo& info) const;
  void meetInput(std::size_t index, Met met);
  void warnOfGuesswork(const std::vector<ColorInput>& current);
  void tellOnce(const std::string& what, const std::string& about);
  void fitProfile(OutputPicture& picture);

  const ColorWishes wishes_;
  bool isDecided_ = false;
  std::vector<Met> first_;          // by input: what decided
  std::vector<ColorInput> inputs_;  // by input: of the current frame
  InputPlan plan_;
  std::vector<ColorSpace> converted_;  // from these, which is said
  std::vector<ColorSpace> unusable_;
  std::set<std::string> told_;  // remarks of files' tags
  bool isGuessworkTold_ = false;
  std::vector<std::pair<ColorSpace, std::unique_ptr<ColorConversion>>> conversions_;  // to the working space
  std::optional<ColorOutput> output_;                                                 // what the plan is for
  OutputPlan outputPlan_;
  std::shared_ptr<ColorConversion> outputConversion_;
  bool hasLeftProfileOut_ = false;
};

}  // namespace host
