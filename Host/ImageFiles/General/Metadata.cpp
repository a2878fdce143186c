// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/General/Metadata.h"

#include <OpenImageIO/tiffutils.h>
#include <string_view>

namespace host {
namespace {

constexpr OIIO::TypeDesc kTimeCode(OIIO::TypeDesc::UINT, OIIO::TypeDesc::SCALAR, OIIO::TypeDesc::TIMECODE, 2);
constexpr OIIO::TypeDesc kRational(OIIO::TypeDesc::INT, OIIO::TypeDesc::VEC2, OIIO::TypeDesc::RATIONAL);

Bytes profileOf(const OIIO::ImageSpec& spec) {
  const OIIO::ParamValue* profile = spec.find_attribute("ICCProfile");
  if (!profile || profile->type().basetype != OIIO::TypeDesc::UINT8) return {};
  const auto* bytes = static_cast<const std::uint8_t*>(profile->data());
  return Bytes(bytes, bytes + profile->type().size());
}

std::optional<Resolution> resolutionOf(const OIIO::ImageSpec& spec) {
  const auto x = static_cast<double>(spec.get_float_attribute("XResolution"));
  const auto y = static_cast<double>(spec.get_float_attribute("YResolution"));
  const std::string unit = spec.get_string_attribute("ResolutionUnit");
  if (!(x > 0) || !(y > 0) || (unit != "in" && unit != "cm")) return std::nullopt;
  return Resolution{x, y, unit == "in" ? Resolution::Unit::Inch : Resolution::Unit::Centimeter};
}

bool hasExif(const OIIO::ImageSpec& spec) {
  for (const OIIO::ParamValue& attribute : spec.extra_attribs) {
    const std::string_view name(attribute.name().c_str());
    for (const std::string_view known : {"Exif:", "GPS:"}) {
      if (name.starts_with(known)) return true;
    }
    for (const std::string_view known : {"Make", "Model", "Artist", "Copyright", "ImageDescription"}) {
      if (name == known) return true;
    }
  }
  return false;
}

Bytes exifOf(OIIO::ImageSpec spec) {
  if (!hasExif(spec)) return {};
  spec.attribute("Orientation", 1);
  std::vector<char> block;
  OIIO::encode_exif(spec, block);
  return Bytes(block.begin(), block.end());
}

// Only where the file itself tells: the library names sRGB for every file that does not.
std::string spaceNamedBy(const OIIO::ImageSpec& spec) {
  const std::string transfer = spec.get_string_attribute("dpx:Transfer");
  return transfer.empty() || transfer == "Undefined" || transfer == "User defined"
             ? ""
             : spec.get_string_attribute("oiio:ColorSpace");
}

}  // namespace

FileMetadata metadataOf(const OIIO::ImageSpec& spec) {
  FileMetadata metadata;
  metadata.color.iccProfile = profileOf(spec);
  metadata.color.name = spaceNamedBy(spec);
  metadata.exif = exifOf(spec);
  metadata.resolution = resolutionOf(spec);
  const float aspect = spec.get_float_attribute("PixelAspectRatio");
  if (aspect > 0 && aspect != 1) metadata.pixelAspect = aspect;
  if (const auto* rate = spec.find_attribute("FramesPerSecond", kRational)) {
    const auto* numbers = static_cast<const int*>(rate->data());
    if (numbers[1] > 0) metadata.frameRate = Rational{numbers[0], static_cast<std::uint32_t>(numbers[1])};
  } else if (const float number = spec.get_float_attribute("FramesPerSecond"); number > 0 && number < 1000000) {
    metadata.frameRate = Rational{static_cast<std::int32_t>(number * 1000 + 0.5f), 1000};
  }
  if (const auto* code = spec.find_attribute("smpte:TimeCode")) {
    const auto* numbers = static_cast<const unsigned*>(code->data());
    if (code->type().size() == sizeof(unsigned) * 2) metadata.timeCode = TimeCode{numbers[0], numbers[1]};
  }
  return metadata;
}

void setMetadata(const FileMetadata& metadata, OIIO::ImageSpec* spec) {
  if (!metadata.exif.empty()) {
    OIIO::decode_exif(OIIO::string_view(reinterpret_cast<const char*>(metadata.exif.data()), metadata.exif.size()),
                      *spec);
  }
  if (const Bytes& profile = metadata.color.iccProfile; !profile.empty()) {
    spec->attribute("ICCProfile", OIIO::TypeDesc(OIIO::TypeDesc::UINT8, static_cast<int>(profile.size())),
                    profile.data());
  }
  if (metadata.resolution) {
    spec->attribute("XResolution", static_cast<float>(metadata.resolution->x));
    spec->attribute("YResolution", static_cast<float>(metadata.resolution->y));
    spec->attribute("ResolutionUnit", metadata.resolution->unit == Resolution::Unit::Inch ? "in" : "cm");
  }
  if (metadata.pixelAspect) spec->attribute("PixelAspectRatio", static_cast<float>(*metadata.pixelAspect));
  if (metadata.frameRate) {
    const float rate =
        static_cast<float>(metadata.frameRate->numerator) / static_cast<float>(metadata.frameRate->denominator);
    spec->attribute("FramesPerSecond", rate);
  }
  if (metadata.timeCode) {
    const unsigned code[] = {metadata.timeCode->timeAndFlags, metadata.timeCode->userData};
    spec->attribute("smpte:TimeCode", kTimeCode, code);
  }
}

}  // namespace host
