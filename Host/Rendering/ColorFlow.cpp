// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Rendering/ColorFlow.h"

#include "Host/Color/BitmapColors.h"
#include "Host/Color/ColorModuleLoader.h"
#include "Host/Color/FileSpace.h"
#include "Host/Color/FormerSpace.h"
#include "Host/Color/OutputTag.h"
#include "Host/Files/FileFormat.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Remark.h"
#include "TarnCore/TCBitmap.h"

#include <algorithm>

namespace host {
namespace {

void tell(const std::vector<std::string>& sentences) {
  for (const std::string& sentence : sentences) remark(sentence);
}

}  // namespace

ColorInput ColorFlow::inputOf(std::size_t index, const std::string& path, const PictureInfo& info) const {
  ColorInput input{path, {}, "", info.metadata.color, info.sample == SampleType::Float};
  if (index < wishes_.inputs.size() && wishes_.inputs[index]) {
    input.space = *wishes_.inputs[index];
    return input;
  }
  FileSpace found = spaceOfFile(info, !userConfiguration().empty());
  input.space = std::move(found.space);
  input.remark = std::move(found.remark);
  return input;
}

void ColorFlow::meet(const std::vector<std::string>& paths, const std::vector<const PictureInfo*>& infos) {
  if (!isDecided_) {
    for (std::size_t i = 0; i < paths.size(); ++i) {
      inputs_.push_back(inputOf(i, paths[i], *infos[i]));
      depths_.push_back(infos[i]->depth);
    }
    decide();
    return;
  }
  for (std::size_t i = 0; i < paths.size(); ++i) {
    if (!infos[i]) continue;
    ColorInput input = inputOf(i, paths[i], *infos[i]);
    if (isSameSpace(input.space, inputs_[i].space)) continue;
    if (needsConversion(input.space, plan_.working)) {
      remark(conversionSentence(paths[i], input.space, plan_.working));
      plan_.needsFloat = true;
    }
    inputs_[i].space = std::move(input.space);
    conversions_[i].reset();
  }
}

void ColorFlow::decide() {
  plan_ = planInputs(inputs_, wishes_.working);
  if (plan_.convertsAnything() && dropBrokenProfiles()) plan_ = planInputs(inputs_, wishes_.working);
  conversions_.resize(inputs_.size());
  isDecided_ = true;
  tell(plan_.sentences);
}

// Whether there were any. Their pictures count as untagged.
bool ColorFlow::dropBrokenProfiles() {
  bool isAny = false;
  for (std::size_t i = 0; i < inputs_.size(); ++i) {
    ColorInput& input = inputs_[i];
    std::string reason;
    if (input.space.kind != ColorSpace::Kind::Profile || colorModule().checkProfile(input.space, &reason)) continue;
    input.space = assumedSpace(depths_[i]);
    input.remark = "its ICC profile is not used: " + reason + "; it counts as untagged";
    isAny = true;
  }
  return isAny;
}

MutableBitmapRef ColorFlow::toWorking(std::size_t input, const FilePicture& picture, const std::string& path) {
  const ColorSpace& from = inputs_[input].space;
  if (!needsConversion(from, plan_.working)) return nullptr;
  if (!conversions_[input]) conversions_[input] = std::make_unique<ColorConversion>(from, plan_.working);
  isAnyInputConverted_ = true;
  return convertedBitmap(*conversions_[input], *picture.bitmap, picture.info->alpha, path);
}

void ColorFlow::decideOutput() {
  const auto& wanted = wishes_.output;
  outputPlan_ = planOutput(plan_, inputs_, wanted, *output_);
  // Inputs that were not converted all have the broken profile that is found only now.
  const bool wasUsed = plan_.convertsAnything() || plan_.working.kind != ColorSpace::Kind::Profile;
  if (outputPlan_.isConverted && !wasUsed && dropBrokenProfiles()) {
    plan_ = planInputs(inputs_, wishes_.working);
    tell(plan_.sentences);
    outputPlan_ = planOutput(plan_, inputs_, wanted, *output_);
  }
  tell(outputPlan_.sentences);
  const ColorSpace& space = outputPlan_.space;
  outputConversion_.reset();
  if (outputPlan_.isConverted) outputConversion_ = std::make_shared<ColorConversion>(plan_.working, space);
  std::string reason;
  if (outputPlan_.needsProfile && !colorModule().makeProfile(space, &outputPlan_.tag.iccProfile, &reason)) {
    throw Failure(ExitCode::Output, "cannot make a profile of " + spaceText(space) + ": " + reason);
  }
}

void ColorFlow::toOutput(OutputPicture& picture, FileFormat format) {
  if (!isDecided_) decide();
  const SampleType sample = sampleTypeOf(storedDepth(format, picture.depth));
  std::optional<bool> isToldGray;
  if (picture.areChannelsTold) isToldGray = isGray(picture.channels);
  const ColorOutput output{"the file", format, sample == SampleType::Float, isToldGray};
  if (output_ != output) {
    output_ = output;
    decideOutput();
  }
  picture.metadata.color = outputPlan_.tag;
  fitProfile(picture);
  if (isSpaceOfFirst(outputPlan_.space, plan_.working, inputs_)) {
    // Other spaces that a file does not state are those that its readers take for granted, or a sentence says it.
    picture.losesColorTag = plan_.working.kind == ColorSpace::Kind::Raw && inputs_[0].tag != ColorTag() &&
                            picture.metadata.color == ColorTag();
  } else {
    forgetFormerSpace(&picture.metadata, outputPlan_.space);
  }
  picture.colors = outputConversion_;
  picture.isConverted = outputConversion_ || isAnyInputConverted_;
}

void ColorFlow::fitProfile(OutputPicture& picture) {
  ColorTag fitting = picture.metadata.color;
  if (!dropForeignProfile(&fitting, isGray(picture.channels))) return;
  if (isGray(picture.channels)) {
    picture.channels = hasAlpha(picture.channels) ? Channels::RGBA : Channels::RGB;
    return;
  }
  // A gray profile that stays where there was a conversion is that of sRGB.
  const ColorSpace& space = outputPlan_.space;
  const bool isRaw = space.kind == ColorSpace::Kind::Raw;
  picture.metadata.color = isRaw ? fitting : tagOfSpace(space, output_->format, false).tag;
  if (isRaw && !hasLeftProfileOut_) remark(foreignProfileSentence(inputs_[0]));
  hasLeftProfileOut_ = true;
}

void ColorFlow::tellOfClipping(std::uint64_t pixels) const {
  if (pixels == 0) return;
  const bool isRange = outputPlan_.space.kind == ColorSpace::Kind::Raw;
  remark(std::to_string(pixels) + (pixels == 1 ? " pixel" : " pixels") + " of the result " +
         (pixels == 1 ? "lies" : "lie") + " outside " + (isRange ? "0 to 1" : spaceText(outputPlan_.space)) + " and " +
         (pixels == 1 ? "was" : "were") + " clipped");
}

}  // namespace host
