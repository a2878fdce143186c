// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Exr/ExrHeaderBytes.h"

#include <algorithm>

namespace host::exr {
namespace {

constexpr std::size_t kLongestShortName = 31;

HeaderAttribute attributeOf(const char* name, const char* type, ByteWriter value) {
  return {name, type, value.take()};
}

Bytes channelList(const std::vector<Channel>& channels) {
  ByteWriter list;
  for (const Channel& channel : channels) {
    list.text(channel.name);
    list.number(static_cast<std::uint32_t>(channel.kind), 4);
    list.number(channel.isPerceptuallyLinear ? 1 : 0, 4);
    list.integer(channel.columns);
    list.integer(channel.rows);
  }
  list.number(0, 1);
  return list.take();
}

ByteWriter boxBytes(const Box& box) {
  ByteWriter bytes;
  for (const std::int64_t edge : {box.left, box.top, box.right, box.bottom}) bytes.integer(edge);
  return bytes;
}

ByteWriter byte(std::uint8_t value) {
  ByteWriter bytes;
  bytes.number(value, 1);
  return bytes;
}

ByteWriter reals(std::initializer_list<float> values) {
  ByteWriter bytes;
  for (const float value : values) bytes.real(value);
  return bytes;
}

ByteWriter oneTile(const Box& box) {
  ByteWriter bytes;
  bytes.number(box.width(), 4);
  bytes.number(box.height(), 4);
  bytes.number(0, 1);  // one level
  return bytes;
}

void addUnlessThere(HeaderAttribute attribute, std::vector<HeaderAttribute>* attributes) {
  const auto isSame = [&](const HeaderAttribute& other) { return other.name == attribute.name; };
  if (std::none_of(attributes->begin(), attributes->end(), isSame)) attributes->push_back(std::move(attribute));
}

}  // namespace

Bytes headerBytes(const HeaderValues& values, std::vector<HeaderAttribute> attributes) {
  attributes.push_back({"channels", "chlist", channelList(*values.channels)});
  attributes.push_back(attributeOf("compression", "compression", byte(values.compression)));
  attributes.push_back(attributeOf("dataWindow", "box2i", boxBytes(values.data)));
  attributes.push_back(attributeOf("displayWindow", "box2i", boxBytes(values.display)));
  attributes.push_back(attributeOf("lineOrder", "lineOrder", byte(0)));
  attributes.push_back(attributeOf("pixelAspectRatio", "float", reals({values.pixelAspect})));
  if (values.isOneTile) attributes.push_back(attributeOf("tiles", "tiledesc", oneTile(values.data)));
  addUnlessThere(attributeOf("screenWindowCenter", "v2f", reals({0, 0})), &attributes);
  addUnlessThere(attributeOf("screenWindowWidth", "float", reals({1})), &attributes);
  std::stable_sort(attributes.begin(), attributes.end(),
                   [](const auto& left, const auto& right) { return left.name < right.name; });

  const bool hasLongNames = std::any_of(attributes.begin(), attributes.end(), [](const HeaderAttribute& attribute) {
    return std::max(attribute.name.size(), attribute.type.size()) > kLongestShortName;
  });
  const bool hasLongChannels =
      std::any_of(values.channels->begin(), values.channels->end(),
                  [](const Channel& channel) { return channel.name.size() > kLongestShortName; });
  ByteWriter header;
  header.number(20000630, 4);
  header.number(2u | (values.isOneTile ? 0x200u : 0u) | (hasLongNames || hasLongChannels ? 0x400u : 0u), 4);
  for (const HeaderAttribute& attribute : attributes) {
    header.text(attribute.name);
    header.text(attribute.type);
    header.number(attribute.value.size(), 4);
    header.bytes(attribute.value);
  }
  header.number(0, 1);
  return header.take();
}

}  // namespace host::exr
