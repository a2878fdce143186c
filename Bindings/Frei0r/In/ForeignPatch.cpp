// SPDX-License-Identifier: BSD-3-Clause
#include "Bindings/Frei0r/In/ForeignPatch.h"

#include "Bindings/Frei0r/In/Pixels.h"
#include "Effects/Support/EffectPatch.h"
#include "Platform/Foundation/NSReason.h"
#include "Ports/VRTImage.h"
#include "TarnCore/TCPixelFormat.h"

#include <algorithm>
#include <array>
#include <new>

namespace vorto::frei0r {
namespace {

using effects::BitmapRef;

constexpr std::array<std::uint32_t, 3> kFormatOfDepth{VortoPixelFormat::RGBA8, VortoPixelFormat::RGBA16,
                                                      VortoPixelFormat::RGBAFloat};
constexpr int kLargestEdge = 65536;

struct ImagePort {
  const char* key;
  const char* name;
};
constexpr ImagePort kFilterImage{"inputImage", "Image"};
constexpr ImagePort kMixerImages[] = {
    {"inputBackgroundImage", "Background"}, {"inputForegroundImage", "Foreground"}, {"inputThirdImage", "Third image"}};

const ImagePort& imagePort(ForeignKind kind, unsigned index) {
  return kind == ForeignKind::Filter ? kFilterImage : kMixerImages[index];
}

PropertyList kindAttributes(const ForeignEffect& effect, const std::string& name, const std::string& description) {
  switch (effect.kind) {
    case ForeignKind::Source:
      return effects::effectAttributes(name, description, "generator", {{"outputImagePort", "outputImage"}});
    case ForeignKind::Filter:
      return effects::effectAttributes(name, description, "filter",
                                       {{"inputImagePort", "inputImage"}, {"outputImagePort", "outputImage"}});
    default:
      return effects::effectAttributes(name, description, "blendMode",
                                       {{"inputBackgroundImagePort", "inputBackgroundImage"},
                                        {"inputForegroundImagePort", "inputForegroundImage"},
                                        {"outputImagePort", "outputImage"}});
  }
}

std::string descriptionOf(const ForeignEffect& effect, const std::string& author) {
  std::string text = tidyLine(effect.explanation);
  if (!text.empty() && std::string_view(".!?").find(text.back()) == std::string_view::npos) text += '.';
  return text + (text.empty() ? "" : " ") + "A frei0r plug-in" + (author.empty() ? "" : " by " + author) +
         "; works at 8 bits.";
}

}  // namespace

ForeignNode::ForeignNode(const std::string& name, std::string plugInPath, ForeignEffect described)
    : plugIn(std::move(plugInPath)), effect(std::make_shared<ForeignEffect>(std::move(described))) {
  const std::string author = tidyLine(effect->author);
  attributes = kindAttributes(*effect, name, descriptionOf(*effect, author));
  // Plug-ins do not say which of both they do.
  attributes.set("dependsOnTime", PropertyList::boolean(true));
  attributes.set("keepsState", PropertyList::boolean(true));
  attributes.set("author", PropertyList::string(author));
  attributes.set("version", PropertyList::string(std::to_string(effect->majorVersion) + '.' +
                                                 std::to_string(effect->minorVersion)));
  attributes.set("category", PropertyList::string("frei0r"));
  attributes.set("foreign", PropertyList::string("frei0r"));
  attributes.set("foreignPath", PropertyList::string(tidyLine(plugIn)));
}

ForeignPatch::ForeignPatch(std::shared_ptr<const ForeignNode> node)
    : QCPatch(node->attributes), node_(std::move(node)), process_(node_->plugIn) {
  const ForeignEffect& effect = *node_->effect;
  for (unsigned i = 0; i < effect.inputCount(); ++i) {
    const ImagePort& port = imagePort(effect.kind, i);
    images_.push_back(addInputPort<QCImagePort>(port.key, effects::portAttributes(port.name)));
  }
  parameters_.emplace(*this, node_->effect, std::vector<std::string>{"inputWidth", "inputHeight", "inputDepth"});
  if (effect.kind == ForeignKind::Source) {
    width_ = addInputPort<QCIndexPort>("inputWidth", effects::indexAttributes("Width", 1, kLargestEdge, 1920));
    height_ = addInputPort<QCIndexPort>("inputHeight", effects::indexAttributes("Height", 1, kLargestEdge, 1080));
    depth_ = addInputPort<QCIndexPort>("inputDepth", effects::menuAttributes("Depth", {"8-bit", "16-bit", "Float"}, 0));
  }
  outputImage_ = addOutputPort<QCImagePort>("outputImage", effects::portAttributes("Image"));
}

bool ForeignPatch::execute(double time, std::string* reason) {
  VRTImage::setBitmapOfPort(*outputImage_, nullptr);  // a failure must not leave the last frame's image behind
  std::optional<BitmapRef> image;
  try {
    image = render(time, reason);
  } catch (const std::bad_alloc&) {
    NSRefuse(reason, "no memory to work in");
  }
  if (!image) return false;
  if (*image) VRTImage::setBitmapOfPort(*outputImage_, std::move(*image));
  return true;
}

std::optional<BitmapRef> ForeignPatch::render(double time, std::string* reason) {
  std::vector<BitmapRef> inputs;
  if (!readInputs(inputs, reason)) return std::nullopt;
  for (unsigned i = 0; i < neededInputs(); ++i) {
    if (!inputs[i]) return nullptr;
  }
  std::optional<Target> target;
  if (inputs.empty()) {
    target = targetOfPorts(reason);
    if (!target) return std::nullopt;
  } else {
    target = Target{inputs[0]->width, inputs[0]->height, inputs[0]->formatCode};
    if (target->width == 0 || target->height == 0) return inputs[0];
  }
  const auto out = effects::makeBitmap(target->width, target->height, target->formatCode, reason);
  if (!out) return std::nullopt;
  const FrameSize size = frameSizeFor(target->width, target->height);
  if (!process_.begin(size, reason) || !setInputs(inputs, *target, size, reason) ||
      !process_.render(time, parameters_->values(), reason)) {
    return std::nullopt;
  }
  fromFrame(process_.output(), node_->effect->colors, size, *out);
  return out;
}

unsigned ForeignPatch::neededInputs() const {
  return std::min(node_->effect->inputCount(), 2U);
}

bool ForeignPatch::readInputs(std::vector<BitmapRef>& inputs, std::string* reason) const {
  for (const auto& port : images_) {
    std::optional<BitmapRef> image = effects::inputBitmap(*port, reason);
    if (!image) return false;
    inputs.push_back(std::move(*image));
  }
  BitmapRef first, second;
  return neededInputs() < 2 || effects::inputPair(*images_[0], *images_[1], first, second, reason);
}

std::optional<ForeignPatch::Target> ForeignPatch::targetOfPorts(std::string* reason) const {
  const std::uint32_t width = width_->indexValue();
  const std::uint32_t height = height_->indexValue();
  const std::uint32_t depth = depth_->indexValue();
  if (width == 0 || height == 0) {
    NSRefuse(reason, "an image of " + std::to_string(width) + " x " + std::to_string(height) + " pixels is empty");
    return std::nullopt;
  }
  if (depth >= kFormatOfDepth.size()) {
    NSRefuse(reason, "inputDepth: there is no depth " + std::to_string(depth));
    return std::nullopt;
  }
  return Target{width, height, kFormatOfDepth[depth]};
}

bool ForeignPatch::setInputs(const std::vector<BitmapRef>& inputs, const Target& target, const FrameSize& size,
                             std::string* reason) {
  for (unsigned i = 0; i < inputs.size(); ++i) {
    std::uint32_t* const frame = process_.input(i);
    if (!inputs[i]) {
      std::fill_n(frame, size.pixels(), 0U);
      continue;
    }
    const BitmapRef image = effects::fittedBitmap(inputs[i], target.width, target.height, reason);
    if (!image) return false;
    toFrame(*image, node_->effect->colors, size, frame);
  }
  return true;
}

}  // namespace vorto::frei0r
