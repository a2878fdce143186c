// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/WriterMessages.h"

#include <type_traits>

namespace host {
namespace {

// One list of what is in a target, for both ways.

class Putting {
 public:
  explicit Putting(MessageWriter& message) : message_(message) {}
  void operator()(const std::string& text) { message_.text(text); }
  template <class Value>
  requires std::is_arithmetic_v<Value> || std::is_enum_v<Value>
  void operator()(const Value& value) { message_.value(value); }
  template <class Value>
  bool has(const std::optional<Value>& value) {
    message_.value(value.has_value());
    return value.has_value();
  }

 private:
  MessageWriter& message_;
};

class Taking {
 public:
  explicit Taking(MessageReader& message) : message_(message) {}
  void operator()(std::string& text) { text = message_.text(); }
  template <class Value>
  requires std::is_arithmetic_v<Value> || std::is_enum_v<Value>
  void operator()(Value& value) { value = message_.value<Value>(); }
  template <class Value>
  bool has(std::optional<Value>& value) {
    if (message_.value<bool>()) value.emplace();
    return value.has_value();
  }

 private:
  MessageReader& message_;
};

template <class Way, class Number>
void passRational(Way& way, Number& number) {
  way(number.numerator);
  way(number.denominator);
}

template <class Way, class Target>
void passMetadata(Way& way, Target& metadata) {
  if (way.has(metadata.color.codePoints)) {
    way(metadata.color.codePoints->primaries);
    way(metadata.color.codePoints->transfer);
  }
  if (way.has(metadata.color.sRGBIntent)) way(*metadata.color.sRGBIntent);
  if (way.has(metadata.pixelAspect)) way(*metadata.pixelAspect);
  if (way.has(metadata.timeCode)) {
    way(metadata.timeCode->timeAndFlags);
    way(metadata.timeCode->userData);
  }
}

template <class Way, class Target>
void pass(Way& way, Target& target) {
  way(target.path);
  way(target.container);
  way(target.settings.codec);
  way(target.settings.speed);
  way(target.settings.sampling);
  way(target.settings.quality);
  passRational(way, target.rate);
  passRational(way, target.timeBase);
  way(target.kind.width);
  way(target.kind.height);
  way(target.kind.sample);
  way(target.kind.channels);
  way(target.kind.alpha);
  way(target.bits);
  passMetadata(way, target.metadata);
  if (!way.has(target.audio)) return;
  way(target.audio->path);
  way(target.audio->start);
  if (way.has(target.audio->duration)) way(*target.audio->duration);
}

}  // namespace

void put(MessageWriter& message, const ClipTarget& target) {
  Putting way(message);
  pass(way, target);
}

ClipTarget takeClipTarget(MessageReader& message) {
  Taking way(message);
  ClipTarget target;
  pass(way, target);
  return target;
}

}  // namespace host
