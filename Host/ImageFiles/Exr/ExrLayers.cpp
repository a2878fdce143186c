// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Exr/ExrLayers.h"

#include "Platform/Foundation/NSReason.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string_view>

namespace host::exr {
namespace {

// What stands before the last dot of a channel's name, and what behind it.
std::string_view layerOf(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  return dot == std::string_view::npos ? std::string_view() : name.substr(0, dot);
}
std::string_view baseOf(std::string_view name) {
  return name.substr(name.rfind('.') + 1);
}

bool isAlpha(std::string_view base) {
  const auto isSame = [base](std::string_view word) {
    return std::equal(base.begin(), base.end(), word.begin(), word.end(),
                      [](char left, char right) { return (left | 0x20) == right; });
  };
  return isSame("a") || isSame("alpha");
}

// Which channels of a layer are its colors; red and the like go before Y, and one channel alone is gray whatever its
// name.
struct Found {
  int red = -1, green = -1, blue = -1, luminance = -1, alpha = -1, other = -1;
  int colorCount = 0;
  int difference = -1;

  void add(int channel, std::string_view base) {
    if (isAlpha(base)) {
      if (alpha < 0) alpha = channel;
      return;
    }
    ++colorCount;
    other = channel;
    if (base == "R") red = channel;
    if (base == "G") green = channel;
    if (base == "B") blue = channel;
    if (base == "Y") luminance = channel;
    if (base == "RY" || base == "BY") difference = channel;
  }

  // Luminance is no gray picture where differences make it one in color.
  bool hasDifferences() const { return luminance >= 0 && difference >= 0 && (red < 0 || green < 0 || blue < 0); }

  bool select(Selection* selection) const {
    if (red >= 0 && green >= 0 && blue >= 0) {
      selection->channels = {red, green, blue, alpha};
      selection->kind = alpha < 0 ? Channels::RGB : Channels::RGBA;
      return true;
    }
    const int gray = luminance >= 0 ? luminance : colorCount == 1 ? other : -1;
    selection->channels = {gray, gray, gray, alpha};
    selection->kind = alpha < 0 ? Channels::Gray : Channels::GrayAlpha;
    return gray >= 0;
  }
};

enum class Which { Layer, All };

Found find(const Part& part, Which which, std::string_view layer) {
  Found found;
  for (std::size_t i = 0; i < part.channels.size(); ++i) {
    const std::string_view name = part.channels[i].name;
    if (which == Which::All || layerOf(name) == layer) found.add(static_cast<int>(i), baseOf(name));
  }
  return found;
}

std::set<std::string> layersOf(const Part& part) {
  std::set<std::string> layers;
  for (const Channel& channel : part.channels) {
    if (const auto layer = layerOf(channel.name); !layer.empty()) layers.emplace(layer);
  }
  return layers;
}

// A part, and a layer in it, which may be empty.
struct Place {
  std::size_t part = 0;
  std::string layer;
};

// Parts by name go first, then layers in any part, then a part's name, a dot and a layer in it.
std::optional<Place> placeOf(const File& file, const std::string& layer) {
  if (layer.empty()) return Place();
  for (std::size_t i = 0; i < file.parts.size(); ++i) {
    if (file.parts[i].name == layer) return Place{i, {}};
  }
  for (std::size_t i = 0; i < file.parts.size(); ++i) {
    if (layersOf(file.parts[i]).count(layer) > 0) return Place{i, layer};
  }
  for (std::size_t i = 0; i < file.parts.size(); ++i) {
    const std::string& name = file.parts[i].name;
    if (name.empty() || layer.size() <= name.size() || layer[name.size()] != '.' || layer.rfind(name, 0) != 0) continue;
    const std::string inPart = layer.substr(name.size() + 1);
    if (layersOf(file.parts[i]).count(inPart) > 0) return Place{i, inPart};
  }
  return std::nullopt;
}

std::string listOfLayers(const File& file) {
  std::string list;
  const auto add = [&list](const std::string& name) { list += (list.empty() ? "" : ", ") + name; };
  for (const Part& part : file.parts) {
    if (!part.name.empty()) add(part.name);
    for (const std::string& layer : layersOf(part)) add(part.name.empty() ? layer : part.name + "." + layer);
  }
  return list;
}

bool refuseLayer(const File& file, const std::string& layer, std::string* reason) {
  const std::string list = listOfLayers(file);
  return NSRefuse(reason, "it has no layer \"" + layer + "\"; " +
                              (list.empty() ? "it has no layers at all" : "its layers are " + list));
}

// A part that is read by its name may put all its channels into one layer, often of the same name.
bool selectChannels(const Part& part, const Place& place, bool isNamed, Selection* selection) {
  if (find(part, Which::Layer, place.layer).select(selection)) return true;
  if (!place.layer.empty()) return false;
  const auto layers = layersOf(part);
  if (isNamed && layers.size() == 1 && find(part, Which::Layer, *layers.begin()).select(selection)) return true;
  const Found all = find(part, Which::All, {});
  return all.colorCount == 1 && all.select(selection);
}

// The general module's library does not read them either.
bool checkSampling(const Part& part, std::string* reason) {
  const auto found = std::find_if(part.channels.begin(), part.channels.end(),
                                  [](const Channel& channel) { return channel.isSubsampled(); });
  return found == part.channels.end() ||
         NSRefuse(reason, "its channel \"" + found->name + "\" has one sample for " + std::to_string(found->columns) +
                              " x " + std::to_string(found->rows) + " pixels; one for each is read");
}

bool checkDifferences(const Part& part, const Place& place, std::string* reason) {
  const Found found = find(part, Which::Layer, place.layer);
  return !found.hasDifferences() ||
         NSRefuse(reason, "its channel \"" + part.channels[static_cast<std::size_t>(found.difference)].name +
                              "\" is a difference from its luminance; red, green and blue or gray alone are read");
}

bool refuseChannels(const File& file, std::string* reason) {
  const std::string list = listOfLayers(file);
  return NSRefuse(reason, "it has no channels that make a gray or an RGB picture" +
                              (list.empty() ? std::string() : "; its layers are " + list));
}

bool checkSamples(const Part& part, Selection* selection, std::string* reason) {
  selection->depth = Depth::Half;
  for (const int channel : selection->channels) {
    if (channel < 0) continue;
    const SampleKind kind = part.channels[static_cast<std::size_t>(channel)].kind;
    if (kind == SampleKind::UInt) {
      return NSRefuse(reason,
                      "its samples are of the type uint; 8 and 16 bits without a sign, half and float are read");
    }
    if (kind == SampleKind::Float) selection->depth = Depth::Float;
  }
  return true;
}

}  // namespace

bool selectPicture(const File& file, const std::string& layer, Selection* selection, std::string* reason) {
  const auto place = placeOf(file, layer);
  if (!place) return refuseLayer(file, layer, reason);
  const Part& part = file.parts[place->part];
  if (part.isDeep) return NSRefuse(reason, "it is a deep image, which has no single color at a pixel");
  if (!checkSampling(part, reason) || !checkDifferences(part, *place, reason)) return false;
  selection->part = place->part;
  if (!selectChannels(part, *place, !layer.empty(), selection)) return refuseChannels(file, reason);
  return checkSamples(part, selection, reason);
}

}  // namespace host::exr
