// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/WriterMessages.h"

#include "Host/Clips/MetadataMessage.h"

namespace host {
namespace {

void put(MessageWriter& message, const ClipSettings& settings) {
  message.text(settings.codec);
  message.text(settings.speed);
  message.text(settings.sampling);
  message.value(settings.quality);
}

ClipSettings takeSettings(MessageReader& message) {
  ClipSettings settings;
  settings.codec = message.text();
  settings.speed = message.text();
  settings.sampling = message.text();
  settings.quality = message.value<int>();
  return settings;
}

void put(MessageWriter& message, const std::optional<ClipAudio>& audio) {
  message.value(audio.has_value());
  if (!audio) return;
  message.text(audio->path);
  message.value(audio->start);
  message.value(audio->duration.has_value());
  if (audio->duration) message.value(*audio->duration);
}

std::optional<ClipAudio> takeAudio(MessageReader& message) {
  if (!message.value<bool>()) return std::nullopt;
  ClipAudio audio;
  audio.path = message.text();
  audio.start = message.value<double>();
  if (message.value<bool>()) audio.duration = message.value<double>();
  return audio;
}

}  // namespace

void put(MessageWriter& message, const ClipTarget& target) {
  message.text(target.path);
  message.text(target.container);
  put(message, target.settings);
  put(message, target.rate);
  put(message, target.timeBase);
  message.value(target.kind.width);
  message.value(target.kind.height);
  message.value(target.kind.sample);
  message.value(target.kind.channels);
  message.value(target.kind.alpha);
  message.value(target.bits);
  put(message, target.metadata);
  put(message, target.audio);
}

ClipTarget takeClipTarget(MessageReader& message) {
  ClipTarget target;
  target.path = message.text();
  target.container = message.text();
  target.settings = takeSettings(message);
  target.rate = takeRational(message);
  target.timeBase = takeRational(message);
  target.kind.width = message.value<std::uint32_t>();
  target.kind.height = message.value<std::uint32_t>();
  target.kind.sample = message.value<SampleType>();
  target.kind.channels = message.value<Channels>();
  target.kind.alpha = message.value<AlphaKind>();
  target.bits = message.value<int>();
  target.metadata = takeMetadata(message);
  target.audio = takeAudio(message);
  return target;
}

}  // namespace host
