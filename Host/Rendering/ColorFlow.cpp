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

// What is only stated has no way to anything else.
void checkConvertible(const ColorSpace& from, const ColorSpace& to, const std::string& path) {
  if (from.kind != ColorSpace::Kind::Stated) return;
  throw Failure(ExitCode::Input, path + ": cannot convert from " + spaceText(from) + " to " + spaceText(to) +
                                     ": --input-space FILE=NAME takes it as something else, --working-space raw "
                                     "converts nothing");
}

ColorOutput outputOf(FileFormat format, Depth depth, std::optional<Channels> channels, const std::string& path) {
  std::optional<bool> isToldGray;
  if (channels) isToldGray = isGray(*channels);
  return {path, format, sampleTypeOf(storedDepth(format, depth)) == SampleType::Float, isToldGray};
}

bool contains(const std::vector<ColorSpace>& spaces, const ColorSpace& space) {
  return std::any_of(spaces.begin(), spaces.end(), [&](const ColorSpace& one) { return isSameSpace(one, space); });
}

}  // namespace

ColorFlow::Met ColorFlow::metInput(std::size_t index, const std::string& path, const PictureInfo& info) const {
  Met met{{path, {}, "", info.metadata.color, info.sample == SampleType::Float}, {}};
  if (index < wishes_.inputs.size() && wishes_.inputs[index]) {
    met.input.space = *wishes_.inputs[index];
    return met;
  }
  FileSpace found = spaceOfFile(info, !userConfiguration().empty());
  met.input.space = std::move(found.space);
  met.input.remark = std::move(found.remark);
  const bool isProfile = met.input.space.kind == ColorSpace::Kind::Profile;
  met.otherwise = isProfile ? FileSpace{assumedSpace(info.depth), ""} : spaceOfFile(info, false);
  return met;
}

void ColorFlow::begin(const std::vector<std::string>& paths, const std::vector<const PictureInfo*>& infos) {
  first_.clear();
  for (std::size_t i = 0; i < paths.size(); ++i) first_.push_back(metInput(i, paths[i], *infos[i]));
  decide();
}

void ColorFlow::meet(const std::vector<std::string>& paths, const std::vector<const PictureInfo*>& infos) {
  std::vector<ColorInput> current;
  for (std::size_t i = 0; i < paths.size(); ++i) {
    if (!infos[i]) continue;
    meetInput(i, metInput(i, paths[i], *infos[i]));
    current.push_back(inputs_[i]);
  }
  warnOfGuesswork(current);
}

void ColorFlow::meetInput(std::size_t index, Met met) {
  ColorInput& input = met.input;
  const bool isConverted = needsConversion(input.space, plan_.working);
  if (isConverted && !contains(converted_, input.space)) dropUnusable(met);
  if (!input.remark.empty()) tellOnce(input.path, input.remark);
  if (needsConversion(input.space, plan_.working) && !contains(converted_, input.space)) {
    conversionFrom(input.space, input.path);
    remark(conversionSentence(input.path, input.space, plan_.working), "colors from " + spaceText(input.space));
    converted_.push_back(input.space);
  }
  inputs_[index] = std::move(input);
}

// Against the first frame too, which decided.
void ColorFlow::warnOfGuesswork(const std::vector<ColorInput>& current) {
  if (isGuessworkTold_ || plan_.working.kind == ColorSpace::Kind::Raw) return;
  std::vector<ColorInput> all = firstInputs();
  all.insert(all.end(), current.begin(), current.end());
  if (const auto warning = guessworkWarning(all)) {
    remark(*warning, "colors by guesswork");
    isGuessworkTold_ = true;
  }
}

void ColorFlow::tellOnce(const std::string& what, const std::string& about) {
  if (told_.insert(about).second) remark(what + ": " + about, about);
}

void ColorFlow::decide() {
  plan();
  if (plan_.convertsAnything() && dropUnusable()) plan();
  for (const ColorInput& input : inputs_) {
    if (needsConversion(input.space, plan_.working)) checkConvertible(input.space, plan_.working, input.path);
  }
  isDecided_ = true;
  tell(plan_.sentences);
  if (output_) decideOutput();
}

std::vector<ColorInput> ColorFlow::firstInputs() const {
  std::vector<ColorInput> inputs;
  for (const Met& met : first_) inputs.push_back(met.input);
  return inputs;
}

void ColorFlow::plan() {
  inputs_ = firstInputs();
  const bool neededFloat = plan_.needsFloat;
  plan_ = planInputs(inputs_, wishes_.working);
  plan_.needsFloat = plan_.needsFloat || neededFloat;
  conversions_.clear();
  isGuessworkTold_ = plan_.working.kind != ColorSpace::Kind::Raw && guessworkWarning(inputs_);
  converted_.clear();
  for (std::size_t i = 0; i < inputs_.size(); ++i) {
    if (plan_.isConverted[i]) converted_.push_back(inputs_[i].space);
    told_.insert(inputs_[i].remark);
  }
}

bool ColorFlow::isAnyInputConverted() const {
  return std::any_of(inputs_.begin(), inputs_.end(),
                     [&](const ColorInput& input) { return needsConversion(input.space, plan_.working); });
}

bool ColorFlow::dropUnusable() {
  bool isAny = false;
  for (Met& met : first_) isAny = dropUnusable(met) || isAny;
  return isAny;
}

// Whether colors cannot be converted from what the file says: it counts as if it did not say so.
bool ColorFlow::dropUnusable(Met& met) {
  ColorInput& input = met.input;
  const bool isProfile = input.space.kind == ColorSpace::Kind::Profile;
  const bool isName = input.space.kind == ColorSpace::Kind::Named && input.space.origin == ColorSpace::Origin::Tagged;
  if (!isProfile && !isName) return false;
  std::string reason;
  if (!contains(unusable_, input.space)) {
    ColorSpace ignored;
    const bool isUsable = isProfile ? colorModule().checkProfile(input.space, &reason)
                                    : colorModule().findSpace(input.space.name, &ignored, &reason);
    if (isUsable) return false;
    unusable_.push_back(input.space);
    input.remark =
        isProfile ? "its ICC profile is not used: " + reason + "; it counts as untagged" : met.otherwise.remark;
  }
  input.space = met.otherwise.space;
  return true;
}

MutableBitmapRef ColorFlow::toWorking(std::size_t input, const FilePicture& picture, const std::string& path) {
  const ColorSpace& from = inputs_[input].space;
  if (!needsConversion(from, plan_.working)) return nullptr;
  return convertedBitmap(conversionFrom(from, path), *picture.bitmap, picture.info->alpha, path);
}

// Frames may have a space each; the oldest goes.
ColorConversion& ColorFlow::conversionFrom(const ColorSpace& space, const std::string& path) {
  checkConvertible(space, plan_.working, path);
  constexpr std::size_t most = 8;
  const auto isOf = [&](const auto& made) { return isSameSpace(made.first, space); };
  auto found = std::find_if(conversions_.begin(), conversions_.end(), isOf);
  if (found == conversions_.end()) {
    auto made = std::make_unique<ColorConversion>(space, plan_.working);
    if (conversions_.size() == most) conversions_.erase(conversions_.begin());
    found = conversions_.insert(conversions_.end(), {space, std::move(made)});
  }
  return *found->second;
}

void ColorFlow::decideOutput() {
  const auto& wanted = wishes_.output;
  outputPlan_ = planOutput(plan_, firstInputs(), wanted, *output_);
  // Inputs that were not converted all have the space that is found to be of no use only now.
  const bool wasUsed = plan_.convertsAnything();
  if (outputPlan_.isConverted && !wasUsed && dropUnusable()) {
    plan();
    tell(plan_.sentences);
    outputPlan_ = planOutput(plan_, firstInputs(), wanted, *output_);
  }
  if (outputPlan_.isConverted && !inputs_.empty()) checkConvertible(plan_.working, outputPlan_.space, inputs_[0].path);
  if (const auto light = lightOfConfiguration()) outputPlan_ = planOutput(plan_, firstInputs(), light, *output_);
  tell(outputPlan_.sentences);
  const ColorSpace& space = outputPlan_.space;
  outputConversion_.reset();
  if (outputPlan_.isConverted) outputConversion_ = std::make_shared<ColorConversion>(plan_.working, space);
  std::string reason;
  if (outputPlan_.needsProfile && !colorModule().makeProfile(space, &outputPlan_.tag.iccProfile, &reason)) {
    throw Failure(ExitCode::Output, "cannot make a profile of " + spaceText(space) + ": " + reason);
  }
}

// What files of floats hold where nobody says it and the user's configuration has no linear Rec.709.
std::optional<ColorSpace> ColorFlow::lightOfConfiguration() const {
  if (wishes_.output || !outputPlan_.isConverted || !output_->isFloat || userConfiguration().empty()) {
    return std::nullopt;
  }
  ColorModule& module = colorModule();
  ColorSpace light;
  if (module.makeTransform(plan_.working, outputPlan_.space, nullptr) ||
      !module.findSpace("scene_linear", &light, nullptr) || !module.makeTransform(plan_.working, light, nullptr)) {
    return std::nullopt;
  }
  light.origin = ColorSpace::Origin::Assumed;
  remark("the configuration of $OCIO has no " + spaceText(outputPlan_.space) + ": its scene_linear is taken instead");
  return light;
}

void ColorFlow::expectOutput(FileFormat format, Depth depth, std::optional<Channels> channels,
                             const std::string& path) {
  if (isDecided_) {
    if (!first_.empty()) setOutput(outputOf(format, depth, channels, path));
  } else {
    output_ = outputOf(format, depth, channels, path);
  }
}

void ColorFlow::setOutput(const ColorOutput& output) {
  if (output_ == output) return;
  output_ = output;
  decideOutput();
}

void ColorFlow::toOutput(OutputPicture& picture, FileFormat format, const std::string& path) {
  if (!isDecided_) decide();
  setOutput(
      outputOf(format, picture.depth, picture.areChannelsTold ? std::optional(picture.channels) : std::nullopt, path));
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
  picture.isConverted = outputConversion_ || isAnyInputConverted();
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

std::string ColorFlow::clippedSpace() const {
  return outputPlan_.space.kind == ColorSpace::Kind::Raw ? "" : spaceText(outputPlan_.space);
}

void tellOfClipping(std::uint64_t pixels, const std::string& space) {
  if (pixels == 0 || space.empty()) return;
  remark(std::to_string(pixels) +
         (pixels == 1 ? " pixel of the result lies outside " : " pixels of the result lie outside ") + space + " and " +
         (pixels == 1 ? "was" : "were") + " clipped");
}

}  // namespace host
