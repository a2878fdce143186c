// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Exr/ExrMetadata.h"

#include "Host/ImageFiles/Exr/ExrHeaderBytes.h"
#include "Host/ImageFiles/Exr/ExrValues.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <string_view>

namespace host::exr {
namespace {

constexpr double kCentimetersOfInch = 2.54;
constexpr std::size_t kLongestName = 255;

// Attributes about how pixels are stored, or in which colors the file says again that they are, which the next file has
// its own of.
constexpr std::string_view kStructural[] = {
    "acesImageContainerFlag",
    "channels",
    "chunkCount",
    "compression",
    "dataWindow",
    "displayWindow",
    "dwaCompressionLevel",
    "lineOrder",
    "multiView",
    "name",
    "oiio:ColorSpace",
    "preview",
    "tiles",
    "maxSamplesPerPixel",
    "type",
    "version",
    "pixelAspectRatio",
    "Orientation",
};

template <class Names>
bool isAmong(std::string_view name, const Names& names) {
  return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

std::uint32_t word(const Attribute& attribute, std::size_t index) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < 4; ++i) value |= static_cast<std::uint32_t>(attribute.value[index * 4 + i]) << 8 * i;
  return value;
}
double real(const Attribute& attribute, std::size_t index) {
  return std::bit_cast<float>(word(attribute, index));
}

bool isDefaultWindow(const Attribute& attribute) {
  if (attribute.name == "screenWindowCenter" && attribute.type == "v2f") {
    return real(attribute, 0) == 0 && real(attribute, 1) == 0;
  }
  return attribute.name == "screenWindowWidth" && attribute.type == "float" && real(attribute, 0) == 1;
}

bool isWindowOfItsType(const HeaderAttribute& attribute) {
  if (attribute.name == "screenWindowCenter") return attribute.type == "v2f";
  return attribute.name != "screenWindowWidth" || attribute.type == "float";
}

bool isFinite(const Primaries& primaries) {
  const auto isColorFinite = [](const Chromaticity& color) {
    return std::isfinite(static_cast<float>(color.x)) && std::isfinite(static_cast<float>(color.y));
  };
  return isColorFinite(primaries.red) && isColorFinite(primaries.green) && isColorFinite(primaries.blue) &&
         isColorFinite(primaries.white);
}

bool isUsable(double number) {
  return std::isfinite(number) && number > 0;
}

// Takes what a member of the metadata holds; false when none does.
bool take(const Attribute& attribute, FileMetadata* metadata, double* density) {
  const std::string_view name = attribute.name;
  const std::string_view type = attribute.type;
  if (name == "chromaticities" && type == "chromaticities") {
    const auto color = [&](std::size_t index) {
      return Chromaticity{real(attribute, index * 2), real(attribute, index * 2 + 1)};
    };
    const Primaries primaries{color(0), color(1), color(2), color(3)};
    if (isFinite(primaries)) metadata->color.primaries = primaries;
  } else if (name == "colorInteropID" && type == "string" && !attribute.value.empty()) {
    metadata->color.name.assign(attribute.value.begin(), attribute.value.end());
  } else if (name == "framesPerSecond" && type == "rational" && word(attribute, 1) != 0) {
    metadata->frameRate = Rational{static_cast<std::int32_t>(word(attribute, 0)), word(attribute, 1)};
  } else if (name == "timeCode" && type == "timecode") {
    metadata->timeCode = TimeCode{word(attribute, 0), word(attribute, 1)};
  } else if (name == "xDensity" && type == "float" && isUsable(real(attribute, 0))) {
    *density = real(attribute, 0);
  } else {
    return false;
  }
  return true;
}

const Attribute* attributeNamed(const Part& part, std::string_view name, std::string_view type) {
  const auto found = std::find_if(part.attributes.begin(), part.attributes.end(), [&](const Attribute& attribute) {
    return attribute.name == name && attribute.type == type;
  });
  return found == part.attributes.end() ? nullptr : &*found;
}

void putReals(const char* name, const char* type, std::initializer_list<double> values,
              std::vector<HeaderAttribute>* attributes) {
  ByteWriter bytes;
  for (const double value : values) bytes.real(static_cast<float>(value));
  attributes->push_back({name, type, bytes.take()});
}

void putWords(const char* name, const char* type, std::uint32_t first, std::uint32_t second,
              std::vector<HeaderAttribute>* attributes) {
  ByteWriter bytes;
  bytes.number(first, 4);
  bytes.number(second, 4);
  attributes->push_back({name, type, bytes.take()});
}

void putMembers(const FileMetadata& metadata, std::vector<HeaderAttribute>* attributes) {
  if (const auto& p = metadata.color.primaries; p && isFinite(*p)) {
    putReals("chromaticities", "chromaticities",
             {p->red.x, p->red.y, p->green.x, p->green.y, p->blue.x, p->blue.y, p->white.x, p->white.y}, attributes);
  }
  if (const std::string& name = metadata.color.name; !name.empty()) {
    attributes->push_back({"colorInteropID", "string", Bytes(name.begin(), name.end())});
  }
  if (const auto& rate = metadata.frameRate) {
    putWords("framesPerSecond", "rational", static_cast<std::uint32_t>(rate->numerator), rate->denominator, attributes);
  }
  if (const auto& time = metadata.timeCode) {
    putWords("timeCode", "timecode", time->timeAndFlags, time->userData, attributes);
  }
  if (const auto& resolution = metadata.resolution; resolution && isUsable(resolution->x)) {
    const bool isMetric = resolution->unit == Resolution::Unit::Centimeter;
    putReals("xDensity", "float", {resolution->x * (isMetric ? kCentimetersOfInch : 1)}, attributes);
  }
}

// What can stand in a header, where a byte of zero ends names.
bool isWritable(const HeaderAttribute& attribute) {
  const auto isName = [](const std::string& name) {
    return !name.empty() && name.size() <= kLongestName && name.find('\0') == std::string::npos;
  };
  return isName(attribute.name) && isName(attribute.type) && isAttributeWhole(attribute.type, attribute.value) &&
         isValueSound(attribute.type, attribute.value) && isWindowOfItsType(attribute) &&
         !isAmong(attribute.name, kStructural);
}

}  // namespace

FileMetadata metadataOf(const Part& part) {
  FileMetadata metadata;
  double density = 0;
  for (const Attribute& attribute : part.attributes) {
    if (isAmong(attribute.name, kStructural) || isDefaultWindow(attribute) ||
        !isValueSound(attribute.type, attribute.value) || take(attribute, &metadata, &density)) {
      continue;
    }
    metadata.attributes.push_back(
        {attribute.name, attribute.type, Bytes(attribute.value.begin(), attribute.value.end())});
  }
  const Attribute* const aspect = attributeNamed(part, "pixelAspectRatio", "float");
  if (aspect && isUsable(real(*aspect, 0)) && real(*aspect, 0) != 1) metadata.pixelAspect = real(*aspect, 0);
  if (density > 0) metadata.resolution = Resolution{density, density * metadata.pixelAspect.value_or(1)};
  return metadata;
}

int orientationOf(const Part& part) {
  const Attribute* const attribute = attributeNamed(part, "Orientation", "int");
  const std::uint32_t orientation = attribute ? word(*attribute, 0) : 1;
  return orientation >= 1 && orientation <= 8 ? static_cast<int>(orientation) : 1;
}

std::vector<HeaderAttribute> attributesOf(const FileMetadata& metadata) {
  std::vector<HeaderAttribute> attributes;
  putMembers(metadata, &attributes);
  for (const HeaderAttribute& attribute : metadata.attributes) {
    const auto isSame = [&](const HeaderAttribute& other) { return other.name == attribute.name; };
    if (isWritable(attribute) && std::none_of(attributes.begin(), attributes.end(), isSame)) {
      attributes.push_back(attribute);
    }
  }
  return attributes;
}

float pixelAspectOf(const FileMetadata& metadata) {
  if (metadata.pixelAspect && isUsable(*metadata.pixelAspect)) return static_cast<float>(*metadata.pixelAspect);
  const auto& resolution = metadata.resolution;
  const double ratio = resolution && isUsable(resolution->x) ? resolution->y / resolution->x : 1;
  return isUsable(ratio) ? static_cast<float>(ratio) : 1;
}

}  // namespace host::exr
