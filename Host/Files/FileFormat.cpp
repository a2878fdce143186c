// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Files/FileFormat.h"

#include "Host/Messages/CloseNames.h"
#include "Host/Messages/Failure.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <sstream>
#include <string_view>
#include <vector>

namespace host {
namespace {

constexpr FormatTraits kFormats[] = {
    {FileFormat::Png, "PNG", "png", true, true, false, false, AlphaKind::Straight, true, true},
    {FileFormat::Jpeg, "JPEG", "jpg jpeg", true, false, false, false, AlphaKind::None, true, true},
    {FileFormat::Tiff, "TIFF", "tif tiff", true, true, false, true, AlphaKind::Premultiplied, true, true},
    {FileFormat::Exr, "EXR", "exr", false, false, true, true, AlphaKind::Premultiplied, true, false},
    {FileFormat::WebP, "WebP", "webp", true, false, false, false, AlphaKind::Straight, false, false},
    {FileFormat::Bmp, "BMP", "bmp", true, false, false, false, AlphaKind::None, false, false},
    {FileFormat::Targa, "TGA", "tga", true, false, false, false, AlphaKind::Straight, true, false},
    {FileFormat::Dpx, "DPX", "dpx", true, true, false, false, AlphaKind::None, false, false},
    {FileFormat::Hdr, "HDR", "hdr", false, false, false, true, AlphaKind::None, false, false},
    {FileFormat::Jpeg2000, "JPEG 2000", "jp2 j2k", true, true, false, false, AlphaKind::Straight, true, false},
    {FileFormat::Heif, "HEIF", "heic heif avif", true, false, false, false, AlphaKind::Straight, false, false},
    {FileFormat::Ppm, "PPM", "ppm", true, true, false, false, AlphaKind::None, false, false},
    {FileFormat::Pnm, "PNM", "pnm", true, true, false, false, AlphaKind::None, true, false},
    {FileFormat::Pfm, "PFM", "pfm", false, false, false, true, AlphaKind::None, true, false},
    {FileFormat::Clip, "a clip", "", true, true, false, false, AlphaKind::Straight, false, false},
};

template <class Function>
void forEachExtension(const FormatTraits& traits, Function function) {
  std::istringstream extensions(traits.extensions);
  for (std::string extension; extensions >> extension;) function(extension);
}

std::optional<FileFormat> formatWithExtension(const std::string& wanted) {
  std::optional<FileFormat> found;
  for (const FormatTraits& traits : kFormats) {
    forEachExtension(traits, [&](const std::string& extension) {
      if (extension == wanted) found = traits.format;
    });
  }
  return found;
}

// "png, jpg, ... or pfm"
std::string knownExtensions() {
  std::vector<std::string> names;
  for (const FormatTraits& traits : kFormats) {
    forEachExtension(traits, [&](const std::string& extension) { names.push_back(extension); });
  }
  return joinedNames(names, " or ");
}

std::string lowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return text;
}

}  // namespace

const FormatTraits& traitsOf(FileFormat format) {
  return *std::ranges::find(kFormats, format, &FormatTraits::format);
}

FileFormat fileFormatOf(const std::string& path) {
  const std::string extension = lowerCase(std::filesystem::path(path).extension().string());
  if (const auto format = formatWithExtension(extension.empty() ? "" : extension.substr(1))) return *format;
  const std::string found = extension.empty() ? "no extension" : "the extension \"" + extension.substr(1) + "\"";
  throw Failure(ExitCode::Usage, "cannot write " + path + ": a picture needs the extension " + knownExtensions() +
                                     ", and this name has " + found);
}

FileFormat fileFormatNamed(const std::string& extension) {
  if (const auto format = formatWithExtension(lowerCase(extension))) return *format;
  throw Failure(ExitCode::Usage,
                "--format " + extension + ": give " + knownExtensions() + "; y4m or raw for --output -");
}

std::optional<FileFormat> formatOfBytes(std::span<const std::uint8_t> file) {
  using namespace std::string_view_literals;
  const auto startsWith = [&](std::string_view magic) {
    return file.size() >= magic.size() && std::memcmp(file.data(), magic.data(), magic.size()) == 0;
  };
  if (startsWith("\x89PNG\r\n\x1a\n"sv)) return FileFormat::Png;
  if (startsWith("\xff\xd8\xff"sv)) return FileFormat::Jpeg;
  if (startsWith("\x76\x2f\x31\x01"sv)) return FileFormat::Exr;
  for (const auto magic : {"II\x2a\0"sv, "MM\0\x2a"sv, "II\x2b\0"sv, "MM\0\x2b"sv}) {
    if (startsWith(magic)) return FileFormat::Tiff;
  }
  return std::nullopt;
}

Depth storedDepth(FileFormat format, Depth depth) {
  const FormatTraits& traits = traitsOf(format);
  if (depth == Depth::Bits8 && traits.holds8) return depth;
  if (depth == Depth::Bits16 && traits.holds16) return depth;
  if ((depth == Depth::Bits8 || depth == Depth::Half) && traits.holdsHalf) return Depth::Half;
  if (traits.holdsFloat) return Depth::Float;
  return traits.holds16 ? Depth::Bits16 : Depth::Bits8;
}

SampleType sampleTypeOf(Depth depth) {
  switch (depth) {
    case Depth::Bits8:
      return SampleType::UInt8;
    case Depth::Bits16:
      return SampleType::UInt16;
    case Depth::Half:
    case Depth::Float:
      break;
  }
  return SampleType::Float;
}

std::optional<Depth> depthNamed(const std::string& name) {
  if (name == "8") return Depth::Bits8;
  if (name == "16") return Depth::Bits16;
  if (name == "half") return Depth::Half;
  if (name == "float") return Depth::Float;
  return std::nullopt;
}

}  // namespace host
