// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Files/FileFormat.h"

#include "Host/Messages/Failure.h"

#include <algorithm>
#include <filesystem>

namespace host {
namespace {

std::string lowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return text;
}

}  // namespace

FileFormat fileFormatOf(const std::string& path) {
  const std::string extension = lowerCase(std::filesystem::path(path).extension().string());
  if (extension == ".png") return FileFormat::Png;
  if (extension == ".jpg" || extension == ".jpeg") return FileFormat::Jpeg;
  if (extension == ".tif" || extension == ".tiff") return FileFormat::Tiff;
  if (extension == ".exr") return FileFormat::Exr;
  const std::string found = extension.empty() ? "no extension" : "the extension \"" + extension.substr(1) + "\"";
  throw Failure(ExitCode::Usage, "cannot write " + path +
                                     ": a picture needs the extension png, jpg, jpeg, tif, tiff or " +
                                     "exr, and this name has " + found);
}

Depth storedDepth(FileFormat format, Depth depth) {
  const bool integer = depth == Depth::Bits8 || depth == Depth::Bits16;
  switch (format) {
    case FileFormat::Png:
      return depth == Depth::Bits8 ? Depth::Bits8 : Depth::Bits16;
    case FileFormat::Jpeg:
      return Depth::Bits8;
    case FileFormat::Tiff:
      return integer ? depth : Depth::Float;
    case FileFormat::Exr:
      break;
  }
  return depth == Depth::Bits8 || depth == Depth::Half ? Depth::Half : Depth::Float;
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
