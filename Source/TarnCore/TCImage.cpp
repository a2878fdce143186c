// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCImage.h"

#include <tuple>

bool VortoImageAttributes::operator==(const VortoImageAttributes& o) const {
  const auto compared = [](const VortoImageAttributes& a) {
    return std::tie(a.imageTag, a.width, a.height, a.bitsPerChannel, a.channels, a.rowPadding, a.reserved,
                    a.textureTarget);
  };
  return compared(*this) == compared(o);
}

VortoImage::VortoImage(std::uint32_t w, std::uint32_t h, std::uint32_t bits, std::uint32_t channelCount,
                       std::uint32_t padding)
    : width(w), height(h), bitsPerChannel(bits), channels(channelCount), rowPadding(padding) {}

VortoImage::~VortoImage() = default;

void VortoImage::getAttributes(VortoImageAttributes& attributes) const {
  attributes.imageTag = imageTag;
  attributes.width = width;
  attributes.height = height;
  attributes.bitsPerChannel = bitsPerChannel;
  attributes.channels = channels;
  attributes.rowPadding = rowPadding;
}

std::uint32_t VortoImage::getSize() const {
  return (width + rowPadding) * height * (bitsPerChannel / 8) * channels;
}

void VortoImage::draw() {}
