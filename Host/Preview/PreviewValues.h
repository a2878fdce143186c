// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/ClipInfo.h"
#include "Host/Color/ColorSpace.h"
#include "Host/Messages/Failure.h"
#include "Host/Pixels/Resampling.h"
#include "Host/Preview/PreviewSetup.h"
#include "Host/Processes/Message.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

// Values in messages. What takes them throws Failure for what they cannot be.

[[noreturn]] void refuseMessage();

inline void putFlag(MessageWriter& message, bool flag) {
  message.value(static_cast<std::uint8_t>(flag));
}
inline bool takeFlag(MessageReader& message) {
  return message.value<std::uint8_t>() != 0;
}

template <class Enum>
Enum takeEnumUpTo(MessageReader& message, Enum last) {
  const auto value = message.value<Enum>();
  if (value < Enum{} || value > last) refuseMessage();
  return value;
}

template <class Items, class Put>
void putList(MessageWriter& message, const Items& items, Put putItem) {
  message.value<std::uint64_t>(items.size());
  for (const auto& item : items) putItem(item);
}

// Every item takes a byte at least, so that a count that is wrong ends with the message and not with the memory.
template <class Item, class Take>
std::vector<Item> takeListOf(MessageReader& message, Take takeItem) {
  std::vector<Item> items;
  for (auto count = message.value<std::uint64_t>(); count > 0; --count) items.push_back(takeItem());
  return items;
}

template <class Value, class Put>
void putMaybe(MessageWriter& message, const std::optional<Value>& value, Put putValue) {
  putFlag(message, value.has_value());
  if (value) putValue(*value);
}

template <class Take>
auto takeMaybe(MessageReader& message, Take takeValue) -> std::optional<decltype(takeValue())> {
  if (!takeFlag(message)) return std::nullopt;
  return takeValue();
}

void putTexts(MessageWriter& message, const std::vector<std::string>& texts);
std::vector<std::string> takeTexts(MessageReader& message);
void put(MessageWriter& message, const PictureSize& size);
PictureSize takeSize(MessageReader& message);
void put(MessageWriter& message, const ColorSpace& space);
ColorSpace takeColorSpace(MessageReader& message);
void put(MessageWriter& message, const PictureInfo& info);  // without Exif, resolution and attributes
PictureInfo takePictureInfo(MessageReader& message);
void put(MessageWriter& message, const PreviewSetup& setup);
PreviewSetup takeSetup(MessageReader& message);

}  // namespace host
