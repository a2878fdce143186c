// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/General/Channels.h"

#include "Platform/Foundation/NSReason.h"

#include <algorithm>

namespace host {
namespace {

int channelNamed(const OIIO::ImageSpec& spec, const std::string& name) {
  for (int channel = 0; channel < spec.nchannels; ++channel) {
    if (spec.channelnames[static_cast<std::size_t>(channel)] == name) return channel;
  }
  return -1;
}

int alphaChannel(const OIIO::ImageSpec& spec) {
  return spec.alpha_channel >= 0 && spec.alpha_channel < spec.nchannels ? spec.alpha_channel : channelNamed(spec, "A");
}

// Files whose channels carry names (EXR keeps them sorted, among any number of others), then files that go by order.
bool findColors(const OIIO::ImageSpec& spec, const std::string& prefix, int alpha, std::array<int, 4>* index) {
  const int red = channelNamed(spec, prefix + "R");
  const int green = channelNamed(spec, prefix + "G");
  const int blue = channelNamed(spec, prefix + "B");
  if (red >= 0 && green >= 0 && blue >= 0) {
    *index = {red, green, blue, alpha};
    return true;
  }
  const int luminance = channelNamed(spec, prefix + "Y");
  const int colors = spec.nchannels - (alpha >= 0 ? 1 : 0);
  const bool isSingle = colors == 1 && prefix.empty();
  if (luminance >= 0 || isSingle) {
    const int gray = luminance >= 0 ? luminance : alpha == 0 ? 1 : 0;
    *index = {gray, gray, gray, alpha};
    return true;
  }
  if (colors >= 3 && (alpha < 0 || alpha >= 3) && channelNamed(spec, prefix + "channel0") == 0) {
    *index = {0, 1, 2, alpha};
    return true;
  }
  return false;
}

bool depthOf(const OIIO::TypeDesc& type, Depth* depth, SampleType* sample) {
  switch (type.basetype) {
    case OIIO::TypeDesc::UINT8:
      *depth = Depth::Bits8;
      *sample = SampleType::UInt8;
      return true;
    case OIIO::TypeDesc::UINT16:
      *depth = Depth::Bits16;
      *sample = SampleType::UInt16;
      return true;
    case OIIO::TypeDesc::HALF:
      *depth = Depth::Half;
      *sample = SampleType::Float;
      return true;
    case OIIO::TypeDesc::FLOAT:
    case OIIO::TypeDesc::DOUBLE:
      *depth = Depth::Float;
      *sample = SampleType::Float;
      return true;
    default:
      return false;
  }
}

}  // namespace

std::vector<std::string> layersOf(const OIIO::ImageSpec& spec) {
  std::vector<std::string> layers;
  for (const std::string& name : spec.channelnames) {
    const std::size_t dot = name.rfind('.');
    if (dot == std::string::npos || dot == 0) continue;
    const std::string layer = name.substr(0, dot);
    if (std::ranges::find(layers, layer) == layers.end()) layers.push_back(layer);
  }
  return layers;
}

bool findColorChannels(const OIIO::ImageSpec& spec, const std::string& layer, ColorChannels* channels,
                       std::string* reason) {
  const std::string prefix = layer.empty() ? "" : layer + ".";
  const int alpha = prefix.empty() ? alphaChannel(spec) : channelNamed(spec, prefix + "A");
  if (!findColors(spec, prefix, alpha, &channels->index)) {
    return NSRefuse(reason, "it has no channels that make a gray or an RGB picture");
  }
  channels->first = spec.nchannels;
  channels->end = 0;
  bool first = true;
  for (const int channel : channels->index) {
    if (channel < 0) continue;
    channels->first = std::min(channels->first, channel);
    channels->end = std::max(channels->end, channel + 1);
    Depth depth;
    SampleType sample;
    if (!depthOf(spec.channelformat(channel), &depth, &sample)) {
      return NSRefuse(reason, std::string("its samples are of the type ") + spec.channelformat(channel).c_str() +
                                  "; 8 and 16 bits without a sign, half and float are read");
    }
    if (first || depth > channels->depth) {
      channels->depth = depth;
      channels->sample = sample;
    }
    first = false;
  }
  if (alpha < 0) {
    channels->alpha = AlphaKind::None;
  } else {
    const bool straight = spec.get_int_attribute("oiio:UnassociatedAlpha", 0) != 0;
    channels->alpha = straight ? AlphaKind::Straight : AlphaKind::Premultiplied;
  }
  return true;
}

}  // namespace host
