// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Color/ColorPlan.h"

#include "Host/Color/KnownSpaces.h"
#include "Host/Color/OutputTag.h"

#include <algorithm>
#include <utility>

namespace host {
namespace {

using Kind = ColorSpace::Kind;
using Origin = ColorSpace::Origin;

ColorSpace workingSpace(const std::vector<ColorInput>& inputs, const std::optional<ColorSpace>& wanted) {
  ColorSpace working = knownSpace(KnownSpace::SRgb, Origin::Assumed);
  if (wanted) {
    working = *wanted;
  } else if (!inputs.empty() && !inputs[0].space.isGray) {
    working = inputs[0].space;
  }
  return working;
}

// Something is to be converted that may not be what it is taken for.
bool isGuesswork(const std::vector<ColorInput>& inputs) {
  bool differ = false;
  bool isAssumed = false;
  for (const ColorInput& input : inputs) {
    differ = differ || needsConversion(input.space, inputs[0].space);
    isAssumed = isAssumed || input.space.origin == Origin::Assumed;
  }
  return differ && isAssumed;
}

bool isTakenForGranted(const ColorSpace& space, bool isFloat) {
  return space.kind == Kind::Known && space.known == (isFloat ? KnownSpace::LinearRec709 : KnownSpace::SRgb);
}

// The tag of the first input where it is true of the result as well.
std::optional<ColorTag> inheritedTag(const ColorSpace& space, const ColorSpace& working,
                                     const std::vector<ColorInput>& inputs, const ColorOutput& output) {
  if (inputs.empty()) return std::nullopt;
  const ColorInput& first = inputs[0];
  // Players know code points that are not known here.
  const bool isForeignToUs = output.format == FileFormat::Clip && first.tag.codePoints;
  const bool isTagged = working.kind == Kind::Raw || first.space.origin == Origin::Tagged ||
                        (isForeignToUs && first.space.origin == Origin::Assumed);
  return isTagged && isSpaceOfFirst(space, working, inputs)
             ? keptTag(first.tag, first.space, output.format, output.isGray)
             : std::nullopt;
}

// What a file of the kind holds by default, as its readers take it. Few formats can state other spaces than the usual
// ones, and gray files fewer. Spaces of the user's configuration are nobody else's, and stay.
ColorSpace defaultOutput(const ColorSpace& working, const std::vector<ColorInput>& inputs, const ColorOutput& output) {
  const ColorSpace usual = knownSpace(output.isFloat ? KnownSpace::LinearRec709 : KnownSpace::SRgb, Origin::Assumed);
  const bool isChosen = output.isFloat ? working.isLinear : working.isDisplay && working.origin != Origin::Assumed;
  if (!isChosen || isSameSpace(working, usual)) return isChosen ? working : usual;
  const bool isStated = working.kind == Kind::Named || inheritedTag(working, working, inputs, output) ||
                        tagOfSpace(working, output.format, output.isGray).isComplete;
  return isStated ? working : usual;
}

// In a file of values that nobody converted.
void tellOfForeignProfile(OutputPlan& plan, const ColorSpace& working, const std::vector<ColorInput>& inputs,
                          const ColorOutput& output) {
  if (working.kind != Kind::Raw || !isSpaceOfFirst(plan.space, working, inputs)) return;
  const auto kept = keptTag(inputs[0].tag, working, output.format, std::nullopt);
  const bool isLeftOut = kept && !kept->iccProfile.empty() && plan.tag.iccProfile.empty();
  if (isLeftOut) plan.sentences.push_back(foreignProfileSentence(inputs[0]));
}

void addTag(OutputPlan& plan, const InputPlan& inputPlan, const std::vector<ColorInput>& inputs,
            const ColorOutput& output) {
  if (auto kept = inheritedTag(plan.space, inputPlan.working, inputs, output)) {
    plan.tag = std::move(*kept);
    return;
  }
  const bool isAllAsItWas = !plan.isConverted && !inputPlan.convertsAnything();
  const bool isPlain = isTakenForGranted(plan.space, output.isFloat);
  if (isPlain && plan.space.origin == Origin::Assumed && (isAllAsItWas || output.isFloat)) return;
  OutputTag made = tagOfSpace(plan.space, output.format, output.isGray);
  plan.tag = std::move(made.tag);
  plan.needsProfile = made.needsProfile;
  if (!made.isComplete && !isPlain) {
    plan.sentences.push_back(output.path + " holds " + spaceText(plan.space) + ", and its format cannot say so");
  }
}

}  // namespace

bool InputPlan::convertsAnything() const {
  return std::find(isConverted.begin(), isConverted.end(), true) != isConverted.end();
}

bool needsConversion(const ColorSpace& from, const ColorSpace& to) {
  return from.kind != Kind::Raw && to.kind != Kind::Raw && !isSameSpace(from, to);
}

std::string conversionSentence(const std::string& what, const ColorSpace& from, const ColorSpace& to) {
  return what + " is converted from " + spaceText(from) + (from.origin == Origin::Assumed ? " (assumed)" : "") +
         " to " + spaceText(to);
}

bool isSpaceOfFirst(const ColorSpace& space, const ColorSpace& working, const std::vector<ColorInput>& inputs) {
  if (inputs.empty()) return false;
  const ColorSpace& first = inputs[0].space;
  if (working.kind == Kind::Raw) return first.kind != Kind::Raw || first.origin != Origin::Told;
  return first.origin != Origin::Told && isSameSpace(first, space);
}

std::optional<std::string> guessworkWarning(const std::vector<ColorInput>& inputs) {
  if (!isGuesswork(inputs)) return std::nullopt;
  std::string text = "warning: the inputs are in different color spaces, and not all say in which: ";
  bool isFirst = true;
  for (const ColorInput& input : inputs) {
    if (input.space.origin != Origin::Assumed) continue;
    text += (isFirst ? "" : ", ") + input.path + " is taken as " + spaceText(input.space);
    isFirst = false;
  }
  return text + "; --input-space FILE=NAME says otherwise";
}

std::string foreignProfileSentence(const ColorInput& input) {
  return "the ICC profile of " + input.path + " is left out: it is not for pictures like the result";
}

InputPlan planInputs(const std::vector<ColorInput>& inputs, const std::optional<ColorSpace>& wanted) {
  InputPlan plan;
  plan.working = workingSpace(inputs, wanted);
  for (const ColorInput& input : inputs) {
    if (!input.remark.empty()) plan.sentences.push_back(input.path + ": " + input.remark);
  }
  const auto warning = guessworkWarning(inputs);
  if (warning && plan.working.kind != Kind::Raw) plan.sentences.push_back(*warning);
  for (const ColorInput& input : inputs) {
    const bool isConverted = needsConversion(input.space, plan.working);
    plan.isConverted.push_back(isConverted);
    plan.needsFloat = plan.needsFloat || isConverted || (plan.working.isLinear && input.isFloat);
    if (!isConverted) continue;
    plan.sentences.push_back(conversionSentence(input.path, input.space, plan.working));
  }
  return plan;
}

OutputPlan planOutput(const InputPlan& inputPlan, const std::vector<ColorInput>& inputs,
                      const std::optional<ColorSpace>& wanted, const ColorOutput& output) {
  const ColorSpace& working = inputPlan.working;
  OutputPlan plan;
  plan.space = working.kind == Kind::Raw ? working : wanted.value_or(defaultOutput(working, inputs, output));
  if (working.kind == Kind::Raw && wanted && wanted->kind != Kind::Raw) {
    plan.sentences.push_back("the result is not converted to " + spaceText(*wanted) + ": the first input is no colors");
  }
  plan.isConverted = needsConversion(working, plan.space);
  if (plan.isConverted) {
    ColorSpace from = working;
    from.origin = Origin::Told;  // what it is was said where it came in
    if (inputs.empty() || !inputPlan.convertsAnything()) from.origin = working.origin;
    plan.sentences.push_back(conversionSentence("the result", from, plan.space));
  }
  addTag(plan, inputPlan, inputs, output);
  tellOfForeignProfile(plan, working, inputs, output);
  return plan;
}

}  // namespace host
