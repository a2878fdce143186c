// SPDX-License-Identifier: BSD-3-Clause
#include "Bindings/Frei0r/Out/Module/Instance.h"

#include "Bindings/Frei0r/Out/Module/Frames.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Utf8.h"
#include "Host/Rendering/Inputs.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Ports/VRTImage.h"
#include "Registry/VRTExecutionTraits.h"
#include "TarnCore/TCBitmap.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace frei0r {
namespace {

using host::Failure;

constexpr std::size_t kMostMessages = 100;  // of one instance

// Results of other sizes than the frame are shown whole, in its middle.
host::Framing framingOf(std::uint32_t width, std::uint32_t height) {
  host::Framing framing;
  framing.size = {width, height};
  framing.scaling.fit = host::ScalingFit::Fit;
  return framing;
}

std::size_t roleInputs(const PlugIn& plugIn) {
  return plugIn.inputs - (plugIn.pictureKey.empty() ? 0 : 1);
}

Value valueAt(f0r_param_t value, Parameter::Kind kind) {
  switch (kind) {
    case Parameter::Kind::Paint: {
      const auto& color = *static_cast<const f0r_param_color_t*>(value);
      return Color{color.r, color.g, color.b};
    }
    case Parameter::Kind::Point: {
      const auto& point = *static_cast<const f0r_param_position_t*>(value);
      return Position{point.x, point.y};
    }
    case Parameter::Kind::Text: {
      const char* text = *static_cast<const f0r_param_string*>(value);
      return std::string(text ? text : "");
    }
    default:
      return *static_cast<const double*>(value);
  }
}

}  // namespace

Instance::Instance(const Effect& effect, std::uint32_t width, std::uint32_t height)
    : effect_(effect),
      width_(width),
      height_(height),
      rendering_(effect.plugIn().effect, roleInputs(effect.plugIn()), framingOf(width, height), host::Depth::Bits8) {
  if (width == 0 || height == 0 || !host::fitsBitmap(width, height, 4)) {
    throw Failure(host::ExitCode::Usage, "frames of " + std::to_string(width) + " x " + std::to_string(height) +
                                             " pixels are none that an effect can render");
  }
  for (const Parameter& parameter : effect.parameters()) {
    Slot slot{valueOf(rendering_.patch(), parameter), {}, {}};
    if (parameter.kind == Parameter::Kind::Text) {
      slot.initial = rendering_.patch().inputPortForKey(parameter.key)->stateValue();
    }
    slots_.push_back(std::move(slot));
  }
}

// Of ports that are no strings an empty text is the value that they had at first.
bool Instance::isEmptyText(const Parameter& parameter, const Value& value) const {
  const auto* text = std::get_if<std::string>(&value);
  return text && text->empty() &&
         host::portKindOf(*rendering_.patch().inputPortForKey(parameter.key)) != host::PortKind::String;
}

void Instance::apply(std::size_t index, const Value& value) {
  const Parameter& parameter = effect_.parameters()[index];
  const std::lock_guard lock(registryLock());
  if (!isEmptyText(parameter, value)) return setValue(rendering_.patch(), parameter, value);
  QCPort& port = *rendering_.patch().inputPortForKey(parameter.key);
  if (slots_[index].initial) {
    port.setStateValue(*slots_[index].initial, nullptr);
  } else {
    port.setValue(nullptr);
  }
}

void Instance::set(int index, f0r_param_t value) try {
  if (index < 0 || static_cast<std::size_t>(index) >= slots_.size()) return;
  Slot& slot = slots_[static_cast<std::size_t>(index)];
  const Value given = valueAt(value, effect_.parameters()[static_cast<std::size_t>(index)].kind);
  const auto* text = std::get_if<std::string>(&given);
  // Hosts set all of them before every frame.
  if (text && slot.refused == *text) return;
  slot.refused.reset();
  if (given == slot.given) return;
  if (text) slot.refused = *text;
  apply(static_cast<std::size_t>(index), given);
  slot.refused.reset();
  slot.given = given;
} catch (...) {
  say(host::caughtFailure().what());
}

void Instance::get(int index, f0r_param_t value) const {
  if (index < 0 || static_cast<std::size_t>(index) >= slots_.size()) return;
  const Value& given = slots_[static_cast<std::size_t>(index)].given;
  if (const auto* color = std::get_if<Color>(&given)) {
    *static_cast<f0r_param_color_t*>(value) = {(*color)[0], (*color)[1], (*color)[2]};
  } else if (const auto* point = std::get_if<Position>(&given)) {
    *static_cast<f0r_param_position_t*>(value) = {(*point)[0], (*point)[1]};
  } else if (const auto* text = std::get_if<std::string>(&given)) {
    *static_cast<f0r_param_string*>(value) = const_cast<char*>(text->c_str());  // hosts do not change it
  } else {
    *static_cast<double*>(value) = std::get<double>(given);
  }
}

void Instance::update(double time, const std::uint32_t* const* inputs, std::uint32_t* output) {
  try {
    return render(time, inputs, output);
  } catch (...) {
    say(host::caughtFailure().what());
  }
  const std::size_t bytes = std::size_t{width_} * height_ * sizeof *output;
  if (effect_.plugIn().inputs == 1 && inputs[0]) {
    std::memmove(output, inputs[0], bytes);
  } else {
    std::memset(output, 0, bytes);
  }
}

void Instance::render(double time, const std::uint32_t* const* inputs, std::uint32_t* output) {
  // The host's memory for as long as it is there, in bitmaps that are without pixels afterwards.
  struct Frames {
    ~Frames() {
      instance.disconnect();
      for (std::size_t i = 0; i < bitmaps.size(); ++i) releaseFrame(*bitmaps[i], inputs[i]);
    }
    Instance& instance;
    const std::uint32_t* const* inputs;
    std::vector<host::MutableBitmapRef> bitmaps = {};
  } frames{*this, inputs};
  const bool isKept = keepsState(rendering_.patch());
  for (std::size_t i = 0; i < effect_.plugIn().inputs; ++i) {
    if (!inputs[i]) throw Failure(host::ExitCode::Input, "a frame is missing");
    frames.bitmaps.push_back(isKept ? copyOfFrame(inputs[i], width_, height_)
                                    : bitmapOfFrame(inputs[i], width_, height_));
  }
  connect(frames.bitmaps);
  writeFrame(*rendering_.result(timeFor(time)), output);
}

void Instance::connect(const std::vector<host::MutableBitmapRef>& frames) {
  host::InputPictures pictures;
  pictures.bitmaps.assign(frames.begin(), frames.begin() + static_cast<std::ptrdiff_t>(roleInputs(effect_.plugIn())));
  rendering_.connect(pictures);
  if (!effect_.plugIn().pictureKey.empty()) setExtraPicture(frames.back());
}

// Of filters and mixers alone: what a source gave is used again.
void Instance::disconnect() {
  for (QCPort* port : rendering_.roles().inputs) VRTImage::setBitmapOfPort(dynamic_cast<QCImagePort&>(*port), nullptr);
  if (!effect_.plugIn().pictureKey.empty()) setExtraPicture(nullptr);
}

void Instance::setExtraPicture(const host::BitmapRef& bitmap) {
  if (auto* port = dynamic_cast<QCImagePort*>(rendering_.patch().inputPortForKey(effect_.plugIn().pictureKey))) {
    VRTImage::setBitmapOfPort(*port, bitmap);
  }
}

// The time of a transition is that which its port was given.
double Instance::timeFor(double seconds) const {
  const auto* port = dynamic_cast<const QCNumberPort*>(rendering_.roles().time);
  return port ? port->doubleValue() : seconds;
}

void Instance::say(const std::string& message) {
  if (said_.size() >= kMostMessages || !said_.insert(message).second) return;
  std::fprintf(stderr, "vorto: %s: %s\n", effect_.plugIn().effect.c_str(), host::printable(message).c_str());
}

}  // namespace frei0r
