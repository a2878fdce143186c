// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Preview/PreviewValues.h"

#include "Host/Clips/MetadataMessage.h"

#include <utility>

namespace host {
namespace {

void put(MessageWriter& message, const Chromaticity& point) {
  message.value(point.x);
  message.value(point.y);
}

Chromaticity takeChromaticity(MessageReader& message) {
  const auto x = message.value<double>();
  return {x, message.value<double>()};
}

void put(MessageWriter& message, const Primaries& primaries) {
  for (const Chromaticity& point : {primaries.red, primaries.green, primaries.blue, primaries.white}) {
    put(message, point);
  }
}

Primaries takePrimaries(MessageReader& message) {
  Primaries primaries;
  for (Chromaticity* point : {&primaries.red, &primaries.green, &primaries.blue, &primaries.white}) {
    *point = takeChromaticity(message);
  }
  return primaries;
}

void put(MessageWriter& message, const Framing& framing) {
  putMaybe(message, framing.size, [&](const PictureSize& size) { put(message, size); });
  message.value(framing.scaling.filter);
  message.value(framing.scaling.fit);
  putMaybe(message, framing.place, [&](const Place& place) {
    message.value(place.left);
    message.value(place.top);
    putMaybe(message, place.offset, [&](const Placement& offset) {
      message.value(offset.x);
      message.value(offset.y);
    });
    putMaybe(message, place.fit, [&](ScalingFit fit) { message.value(fit); });
  });
}

Framing takeFraming(MessageReader& message) {
  Framing framing;
  framing.size = takeMaybe(message, [&] { return takeSize(message); });
  framing.scaling.filter = takeEnumUpTo(message, ScalingFilter::Lanczos);
  framing.scaling.fit = takeEnumUpTo(message, ScalingFit::Fill);
  framing.place = takeMaybe(message, [&] {
    Place place;
    place.left = message.value<double>();
    place.top = message.value<double>();
    place.offset = takeMaybe(message, [&] {
      const auto x = message.value<std::int64_t>();
      return Placement{x, message.value<std::int64_t>()};
    });
    place.fit = takeMaybe(message, [&] { return takeEnumUpTo(message, ScalingFit::Fill); });
    return place;
  });
  return framing;
}

void putMaybeSpace(MessageWriter& message, const std::optional<ColorSpace>& space) {
  putMaybe(message, space, [&](const ColorSpace& value) { put(message, value); });
}

std::optional<ColorSpace> takeMaybeSpace(MessageReader& message) {
  return takeMaybe(message, [&] { return takeColorSpace(message); });
}

}  // namespace

void refuseMessage() {
  throw Failure(ExitCode::Unexpected, "a helper process sent what nobody understands");
}

void putTexts(MessageWriter& message, const std::vector<std::string>& texts) {
  putList(message, texts, [&](const std::string& text) { message.text(text); });
}

std::vector<std::string> takeTexts(MessageReader& message) {
  return takeListOf<std::string>(message, [&] { return message.text(); });
}

void put(MessageWriter& message, const PictureSize& size) {
  message.value(size.width);
  message.value(size.height);
}

PictureSize takeSize(MessageReader& message) {
  const auto width = message.value<std::uint32_t>();
  return {width, message.value<std::uint32_t>()};
}

void put(MessageWriter& message, const ColorSpace& space) {
  message.value(space.kind);
  message.value(space.origin);
  message.value(space.known);
  message.text(space.name);
  putFlag(message, space.profile != nullptr);
  if (space.profile) message.bytes(*space.profile);
  put(message, space.primaries);
  message.value(space.curve.kind);
  message.value(space.curve.exponent);
  for (const std::uint8_t code : {space.codes.primaries, space.codes.transfer, space.codes.matrix}) message.value(code);
  for (const bool flag : {space.codes.isFullRange, space.isLinear, space.isDisplay, space.isGray}) {
    putFlag(message, flag);
  }
}

ColorSpace takeColorSpace(MessageReader& message) {
  ColorSpace space;
  space.kind = takeEnumUpTo(message, ColorSpace::Kind::Stated);
  space.origin = takeEnumUpTo(message, ColorSpace::Origin::Told);
  space.known = takeEnumUpTo(message, KnownSpace::Aces2065);
  space.name = message.text();
  if (takeFlag(message)) space.profile = std::make_shared<const Bytes>(message.bytes());
  if (!space.profile && space.kind == ColorSpace::Kind::Profile) refuseMessage();
  space.primaries = takePrimaries(message);
  space.curve.kind = takeEnumUpTo(message, TransferCurve::Kind::Power);
  space.curve.exponent = message.value<double>();
  for (std::uint8_t* code : {&space.codes.primaries, &space.codes.transfer, &space.codes.matrix}) {
    *code = message.value<std::uint8_t>();
  }
  for (bool* flag : {&space.codes.isFullRange, &space.isLinear, &space.isDisplay, &space.isGray}) {
    *flag = takeFlag(message);
  }
  return space;
}

void put(MessageWriter& message, const PictureInfo& info) {
  message.value(info.width);
  message.value(info.height);
  message.value(info.sample);
  message.value(info.depth);
  message.value(info.alpha);
  message.value(info.channels);
  message.value(info.orientation);
  put(message, info.metadata);
}

PictureInfo takePictureInfo(MessageReader& message) {
  PictureInfo info;
  info.width = message.value<std::uint32_t>();
  info.height = message.value<std::uint32_t>();
  info.sample = takeEnumUpTo(message, SampleType::Float);
  info.depth = takeEnumUpTo(message, Depth::Float);
  info.alpha = takeEnumUpTo(message, AlphaKind::Premultiplied);
  info.channels = takeEnumUpTo(message, Channels::RGBA);
  info.orientation = message.value<int>();
  info.metadata = takeMetadata(message);
  return info;
}

void put(MessageWriter& message, const PreviewSetup& setup) {
  message.text(setup.effect);
  putTexts(message, setup.inputs);
  putTexts(message, setup.pictures);
  putTexts(message, setup.python);
  put(message, setup.framing);
  putMaybe(message, setup.depth, [&](Depth depth) { message.value(depth); });
  putMaybeSpace(message, setup.colors.working);
  putMaybeSpace(message, setup.colors.output);
  putList(message, setup.colors.inputs, [&](const auto& space) { putMaybeSpace(message, space); });
  putMaybe(message, setup.time, [&](double time) { message.value(time); });
  putMaybe(message, setup.frames, [&](const FrameRange& frames) {
    message.value(frames.first);
    message.value(frames.last);
  });
  putMaybe(message, setup.rate, [&](double rate) { message.value(rate); });
}

PreviewSetup takeSetup(MessageReader& message) {
  PreviewSetup setup;
  setup.effect = message.text();
  setup.inputs = takeTexts(message);
  setup.pictures = takeTexts(message);
  setup.python = takeTexts(message);
  setup.framing = takeFraming(message);
  setup.depth = takeMaybe(message, [&] { return takeEnumUpTo(message, Depth::Float); });
  setup.colors.working = takeMaybeSpace(message);
  setup.colors.output = takeMaybeSpace(message);
  setup.colors.inputs = takeListOf<std::optional<ColorSpace>>(message, [&] { return takeMaybeSpace(message); });
  setup.time = takeMaybe(message, [&] { return message.value<double>(); });
  setup.frames = takeMaybe(message, [&] {
    const auto first = message.value<std::uint32_t>();
    return FrameRange{first, message.value<std::uint32_t>()};
  });
  setup.rate = takeMaybe(message, [&] { return message.value<double>(); });
  return setup;
}

}  // namespace host
