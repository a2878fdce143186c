// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Rendering/EffectRendering.h"

#include "Host/Messages/Failure.h"
#include "Host/Messages/Json.h"
#include "Host/Rendering/InputWatch.h"
#include "Host/Rendering/PortValues.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Ports/VRTImage.h"
#include "Registry/VRTExecutionTraits.h"
#include "TarnCore/TCBitmap.h"

#include <utility>

namespace host {
namespace {

const char* expectedInputs(EffectKind kind) {
  switch (kind) {
    case EffectKind::Filter:
      return "a filter: it takes one --input";
    case EffectKind::Transition:
      return "a transition: it takes two, --input A B";
    case EffectKind::Generator:
      return "a generator: it takes no --input";
    case EffectKind::BlendMode:
      break;
  }
  return "a blend mode: it takes two, --input BACKGROUND FOREGROUND";
}

bool setIndexPort(QCPatch& patch, const char* key, std::uint32_t value) {
  auto* port = dynamic_cast<QCIndexPort*>(patch.portForKey(key));
  if (port) setPortFromText(*port, std::to_string(value));
  return port;
}

Depth depthOfSamples(SampleType sample) {
  switch (sample) {
    case SampleType::UInt8:
      return Depth::Bits8;
    case SampleType::UInt16:
      return Depth::Bits16;
    case SampleType::Float:
      break;
  }
  return Depth::Float;
}

}  // namespace

void checkInputCount(const QCPatch& patch, const std::string& effect, std::size_t inputCount) {
  std::string expected;
  for (const EffectKind kind : effectKindsOf(patch)) {
    if (effectRoles(patch, kind).inputs.size() == inputCount) return;
    expected += (expected.empty() ? "" : "; ") + std::string(expectedInputs(kind));
  }
  if (expected.empty()) {
    throw Failure(ExitCode::Effect,
                  "the effect \"" + effect + "\" declares no protocols, which say what kind of effect it is");
  }
  throw Failure(ExitCode::Usage, "\"" + effect + "\" is " + expected + "; " + std::to_string(inputCount) +
                                     (inputCount == 1 ? " was given" : " were given"));
}

EffectRendering::EffectRendering(const std::string& effect, std::size_t inputCount, const Framing& framing,
                                 std::optional<Depth> depth)
    : effect_(effect), framing_(framing), depth_(depth), patch_(makeEffect(effect)) {
  chooseKind(inputCount);
  checkRoles();
  if (kind_ == EffectKind::Generator) askGenerator();
  watch_ = std::make_unique<InputWatch>(*patch_);
}

EffectRendering::~EffectRendering() = default;

void EffectRendering::chooseKind(std::size_t inputCount) {
  checkInputCount(*patch_, effect_, inputCount);
  for (const EffectKind kind : effectKindsOf(*patch_)) {
    kind_ = kind;
    roles_ = effectRoles(*patch_, kind);
    if (roles_.inputs.size() == inputCount) return;
  }
}

void EffectRendering::checkRoles() const {
  bool complete = dynamic_cast<QCImagePort*>(roles_.output) != nullptr;
  for (QCPort* input : roles_.inputs) complete = complete && dynamic_cast<QCImagePort*>(input);
  if (!complete) {
    throw Failure(ExitCode::Effect, "the effect \"" + effect_ + "\" does not say which of its ports carry its images");
  }
}

void EffectRendering::askGenerator() {
  if (framing_.size) {
    setIndexPort(*patch_, "inputWidth", framing_.size->width);
    setIndexPort(*patch_, "inputHeight", framing_.size->height);
  }
  if (depth_) {
    const std::uint32_t index = *depth_ == Depth::Bits8 ? 0 : *depth_ == Depth::Bits16 ? 1 : 2;
    setIndexPort(*patch_, "inputDepth", index);
  }
}

BitmapRef EffectRendering::result(double time) {
  if (isLastResultGood(time)) return lastResult_;
  lastResult_ = nullptr;
  setTime(time);
  watch_->forget();
  std::string reason;
  if (!patch_->executeAtTime(time, &reason)) {
    throw Failure(ExitCode::Effect, described() + " could not render" + (reason.empty() ? "" : ": " + reason));
  }
  BitmapRef result = VRTImage::bitmapOfPort(dynamic_cast<QCImagePort&>(*roles_.output));
  if (!result) throw Failure(ExitCode::Effect, described() + " gave no image");
  sampleTypeOfResult(*result, described());
  if (framing_.size) result = scaledBitmap(result, *framing_.size, framing_.scaling);
  if (!keepsState(*patch_)) lastResult_ = result;
  lastTime_ = time;
  return result;
}

MutableBitmapRef EffectRendering::takenResult(double time) {
  BitmapRef result;
  const auto letGo = [&] {
    lastResult_ = nullptr;
    for (QCPort* input : roles_.inputs) VRTImage::setBitmapOfPort(dynamic_cast<QCImagePort&>(*input), nullptr);
    VRTImage::setBitmapOfPort(dynamic_cast<QCImagePort&>(*roles_.output), nullptr);
  };
  try {
    result = this->result(time);
  } catch (...) {
    letGo();
    throw;
  }
  letGo();
  // Patches may have handed on what they were given, or have it inside.
  if (result.use_count() > 1) return std::make_shared<VortoBitmap>(*result);
  return std::const_pointer_cast<VortoBitmap>(result);
}

bool EffectRendering::isLastResultGood(double time) const {
  const bool changesWithTime = roles_.time || dependsOnTime(*patch_);
  return lastResult_ && !watch_->hasSeenChange() && (!changesWithTime || time == lastTime_);
}

Depth EffectRendering::depthOf(const VortoBitmap& result) const {
  return depth_.value_or(inputDepth_.value_or(depthOfSamples(sampleTypeOfResult(result, described()))));
}

std::string EffectRendering::described() const {
  return "the effect \"" + effect_ + "\"";
}

void EffectRendering::connect(const InputPictures& pictures) {
  const std::vector<BitmapRef> bitmaps = onOneCanvas(pictures.bitmaps, framing_);
  for (std::size_t i = 0; i < bitmaps.size(); ++i) {
    auto& port = dynamic_cast<QCImagePort&>(*roles_.inputs[i]);
    // Those who watch the port would take the same still for a new image.
    if (VRTImage::bitmapOfPort(port) != bitmaps[i]) VRTImage::setBitmapOfPort(port, bitmaps[i]);
  }
  if (!bitmaps.empty()) inputDepth_ = pictures.depth;
}

void EffectRendering::setTime(double time) {
  if (roles_.time) setPortFromText(*roles_.time, numberText(time));
}

}  // namespace host
