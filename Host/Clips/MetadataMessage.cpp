// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/MetadataMessage.h"

#include "Host/Messages/Failure.h"

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

template <class Value, class Put>
void putOptional(MessageWriter& message, const std::optional<Value>& value, Put putValue) {
  message.value(static_cast<std::uint8_t>(value.has_value()));
  if (value) putValue(*value);
}

template <class Take>
auto takeOptional(MessageReader& message, Take takeValue) -> std::optional<decltype(takeValue())> {
  if (message.value<std::uint8_t>() == 0) return std::nullopt;
  return takeValue();
}

void put(MessageWriter& message, const ColorTag& tag) {
  message.bytes(tag.iccProfile);
  putOptional(message, tag.codePoints, [&](const CodePoints& codes) {
    for (const std::uint8_t code : {codes.primaries, codes.transfer, codes.matrix}) message.value(code);
    message.value(static_cast<std::uint8_t>(codes.isFullRange));
  });
  putOptional(message, tag.sRGBIntent, [&](std::uint8_t intent) { message.value(intent); });
  putOptional(message, tag.gamma, [&](double gamma) { message.value(gamma); });
  putOptional(message, tag.primaries, [&](const Primaries& primaries) {
    for (const Chromaticity& point : {primaries.red, primaries.green, primaries.blue, primaries.white}) {
      put(message, point);
    }
  });
  message.text(tag.name);
}

ColorTag takeColorTag(MessageReader& message) {
  ColorTag tag;
  tag.iccProfile = message.bytes();
  tag.codePoints = takeOptional(message, [&] {
    CodePoints codes;
    for (std::uint8_t* code : {&codes.primaries, &codes.transfer, &codes.matrix}) *code = message.value<std::uint8_t>();
    codes.isFullRange = message.value<std::uint8_t>() != 0;
    return codes;
  });
  tag.sRGBIntent = takeOptional(message, [&] { return message.value<std::uint8_t>(); });
  tag.gamma = takeOptional(message, [&] { return message.value<double>(); });
  tag.primaries = takeOptional(message, [&] {
    Primaries primaries;
    for (Chromaticity* point : {&primaries.red, &primaries.green, &primaries.blue, &primaries.white}) {
      *point = takeChromaticity(message);
    }
    return primaries;
  });
  tag.name = message.text();
  return tag;
}

}  // namespace

void put(MessageWriter& message, const Rational& rational) {
  message.value(rational.numerator);
  message.value(rational.denominator);
}

Rational takeRational(MessageReader& message) {
  Rational result;
  result.numerator = message.value<std::int32_t>();
  result.denominator = message.value<std::uint32_t>();
  if (result.denominator == 0) throw Failure(ExitCode::Unexpected, "a helper process sent a number that is none");
  return result;
}

void put(MessageWriter& message, const FileMetadata& metadata) {
  put(message, metadata.color);
  putOptional(message, metadata.pixelAspect, [&](double aspect) { message.value(aspect); });
  putOptional(message, metadata.frameRate, [&](const Rational& rate) { put(message, rate); });
  putOptional(message, metadata.timeCode, [&](const TimeCode& code) {
    message.value(code.timeAndFlags);
    message.value(code.userData);
  });
}

FileMetadata takeMetadata(MessageReader& message) {
  FileMetadata metadata;
  metadata.color = takeColorTag(message);
  metadata.pixelAspect = takeOptional(message, [&] { return message.value<double>(); });
  metadata.frameRate = takeOptional(message, [&] { return takeRational(message); });
  metadata.timeCode = takeOptional(message, [&] {
    const auto time = message.value<std::uint32_t>();
    return TimeCode{time, message.value<std::uint32_t>()};
  });
  return metadata;
}

}  // namespace host
